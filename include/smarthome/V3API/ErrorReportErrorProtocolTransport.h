// The transport under an error report's application protocol, and its version.
//
// JSON: {"type", "version"} in this order.
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

class ErrorReportErrorProtocolTransport {
public:
    enum class TransportType {
        UNKNOWN = 0,
        ZIGBEE_700MHZ = 1,
        ZIGBEE_800MHZ = 2,
        ZIGBEE_900MHZ = 3,
        ZIGBEE_2_4GHZ = 4,
        ZIGBEE = 5,
        BLUETOOTH_MESH = 6,
    };
    // The wire strings, indexed by value.
    static constexpr std::array<const char*, 7> kTransportTypeNames = {
        "UNKNOWN",       "ZIGBEE_700MHZ", "ZIGBEE_800MHZ", "ZIGBEE_900MHZ",
        "ZIGBEE_2_4GHZ", "ZIGBEE",        "BLUETOOTH_MESH"};

    ErrorReportErrorProtocolTransport(TransportType type, std::string version);

    // "" for a value outside the table.
    [[nodiscard]] static std::string toString(TransportType value);

    // The object as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The object as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above; an absent or null member keeps its default (empty text,
    // value 0, no part). A member of the wrong kind logs "fromJson:event=parserError,
    // reason=valueNotAString|valueNotAnObject|valueNotAnArray|valueNotAnInt,action=invalid,
    // key=<member>" and gives an empty pointer; an unknown enumeration string reads as 0
    // after the warning "fromJson:unknownEnumerationValue,key=<member>".
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorProtocolTransport> fromJson(
        const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorProtocolTransport> fromJson(
        const JSONValue& value);

    [[nodiscard]] TransportType getType() const { return type; }
    [[nodiscard]] const std::string& getVersion() const { return version; }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReportErrorProtocolTransport& other) const;
    [[nodiscard]] bool operator!=(const ErrorReportErrorProtocolTransport& other) const {
        return !(*this == other);
    }

private:
    template <class Value>
    static std::shared_ptr<ErrorReportErrorProtocolTransport> read(const Value& value);

    TransportType type;
    std::string version;
};

}  // namespace V3API
}  // namespace smarthome
