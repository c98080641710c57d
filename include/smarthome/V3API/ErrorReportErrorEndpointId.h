// One identifier of an endpoint involved in a failed setup: its type and value.
//
// JSON: {"type", "value"} in this order.
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

class ErrorReportErrorEndpointId {
public:
    enum class IdentifierType {
        UNKNOWN = 0,
        BLE_MAC_ADDRESS = 1,
        ZIGBEE_MAC_ADDRESS = 2,
        BLUETOOTH_MESH_UUID = 3,
    };
    // The wire strings, indexed by value.
    static constexpr std::array<const char*, 4> kIdentifierTypeNames = {
        "UNKNOWN", "BLE_MAC_ADDRESS", "ZIGBEE_MAC_ADDRESS", "BLUETOOTH_MESH_UUID"};

    ErrorReportErrorEndpointId(IdentifierType type, std::string value);

    // "" for a value outside the table.
    [[nodiscard]] static std::string toString(IdentifierType value);

    // The object as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The object as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above; an absent or null member keeps its default (empty text,
    // value 0, no part). A member of the wrong kind logs "fromJson:event=parserError,
    // reason=valueNotAString|valueNotAnObject|valueNotAnArray|valueNotAnInt,action=invalid,
    // key=<member>" and gives an empty pointer; an unknown enumeration string reads as 0
    // after the warning "fromJson:unknownEnumerationValue,key=<member>".
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorEndpointId> fromJson(
        const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorEndpointId> fromJson(
        const JSONValue& value);

    [[nodiscard]] IdentifierType getType() const { return type; }
    [[nodiscard]] const std::string& getValue() const { return value; }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReportErrorEndpointId& other) const;
    [[nodiscard]] bool operator!=(const ErrorReportErrorEndpointId& other) const {
        return !(*this == other);
    }

private:
    template <class Value>
    static std::shared_ptr<ErrorReportErrorEndpointId> read(const Value& value);

    IdentifierType type;
    std::string value;
};

}  // namespace V3API
}  // namespace smarthome
