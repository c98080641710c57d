// An endpoint involved in a failed setup: its identifiers, signal strength ("rssiScore", a
// JSON integer), software version, model and manufacturer.
//
// JSON: {"identifiers", "rssiScore", "softwareVersion", "model", "manufacturer"} in this order.
// Ownership: a value holding its parts by shared_ptr.
// Thread-safety: immutable after construction; safe to write and compare from any thread.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/ErrorReportErrorEndpointId.h"

namespace smarthome {
namespace V3API {

class ErrorReportErrorEndpoint {
public:
    ErrorReportErrorEndpoint(std::vector<std::shared_ptr<ErrorReportErrorEndpointId>> identifiers,
                             int rssiScore, std::string softwareVersion, std::string model,
                             std::string manufacturer);

    // The object as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The object as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above; an absent or null member keeps its default (empty text,
    // value 0, no part). A member of the wrong kind logs "fromJson:event=parserError,
    // reason=valueNotAString|valueNotAnObject|valueNotAnArray|valueNotAnInt,action=invalid,
    // key=<member>" and gives an empty pointer; an unknown enumeration string reads as 0
    // after the warning "fromJson:unknownEnumerationValue,key=<member>".
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorEndpoint> fromJson(
        const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorEndpoint> fromJson(const JSONValue& value);

    [[nodiscard]] const std::vector<std::shared_ptr<ErrorReportErrorEndpointId>>& getIdentifiers()
        const {
        return identifiers;
    }
    [[nodiscard]] int getRssiScore() const { return rssiScore; }
    [[nodiscard]] const std::string& getSoftwareVersion() const { return softwareVersion; }
    [[nodiscard]] const std::string& getModel() const { return model; }
    [[nodiscard]] const std::string& getManufacturer() const { return manufacturer; }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReportErrorEndpoint& other) const;
    [[nodiscard]] bool operator!=(const ErrorReportErrorEndpoint& other) const {
        return !(*this == other);
    }

private:
    template <class Value>
    static std::shared_ptr<ErrorReportErrorEndpoint> read(const Value& value);

    std::vector<std::shared_ptr<ErrorReportErrorEndpointId>> identifiers;
    int rssiScore;
    std::string softwareVersion;
    std::string model;
    std::string manufacturer;
};

}  // namespace V3API
}  // namespace smarthome
