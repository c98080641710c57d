// A BLE connection: {"type": "BLE", "macAddress": <address>}.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/MacAddressConnection.h"

namespace smarthome {
namespace V3API {

class BLE : public MacAddressConnection {
public:
    explicit BLE(const std::string& macAddress)
        : MacAddressConnection(ConnectionType::BLE, macAddress) {}
};

}  // namespace V3API
}  // namespace smarthome
