// The provisioner that ran the failed setup: its type, manufacturer, model, serial number
// and software version.
//
// JSON: {"type", "manufacturer", "model", "serialNumber", "softwareVersion"} in this order.
// Ownership: a value holding its parts by shared_ptr.
// Thread-safety: immutable after construction; safe to write and compare from any thread.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"

namespace smarthome {
namespace V3API {

class ErrorReportProvisioner {
public:
    ErrorReportProvisioner(std::string type, std::string manufacturer, std::string model,
                           std::string serialNumber, std::string softwareVersion);

    // The object as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The object as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above; an absent or null member keeps its default (empty text,
    // value 0, no part). A member of the wrong kind logs "fromJson:event=parserError,
    // reason=valueNotAString|valueNotAnObject|valueNotAnArray|valueNotAnInt,action=invalid,
    // key=<member>" and gives an empty pointer; an unknown enumeration string reads as 0
    // after the warning "fromJson:unknownEnumerationValue,key=<member>".
    [[nodiscard]] static std::shared_ptr<ErrorReportProvisioner> fromJson(
        const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReportProvisioner> fromJson(const JSONValue& value);

    [[nodiscard]] const std::string& getType() const { return type; }
    [[nodiscard]] const std::string& getManufacturer() const { return manufacturer; }
    [[nodiscard]] const std::string& getModel() const { return model; }
    [[nodiscard]] const std::string& getSerialNumber() const { return serialNumber; }
    [[nodiscard]] const std::string& getSoftwareVersion() const { return softwareVersion; }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReportProvisioner& other) const;
    [[nodiscard]] bool operator!=(const ErrorReportProvisioner& other) const {
        return !(*this == other);
    }

private:
    template <class Value>
    static std::shared_ptr<ErrorReportProvisioner> read(const Value& value);

    std::string type;
    std::string manufacturer;
    std::string model;
    std::string serialNumber;
    std::string softwareVersion;
};

}  // namespace V3API
}  // namespace smarthome
