// What an application protocol of the hub can commission: the device types (may be empty:
// any) and the display categories it accepts.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace smarthome {

struct CommissioneeTypes {
    CommissioneeTypes() = default;
    CommissioneeTypes(std::vector<std::string> deviceTypes,
                      std::vector<std::string> displayCategories)
        : deviceTypes(std::move(deviceTypes)), displayCategories(std::move(displayCategories)) {}

    std::vector<std::string> deviceTypes;
    std::vector<std::string> displayCategories;
};

}  // namespace smarthome
