// The application protocol an error report's setup ran over: its type, name and version,
// and the transport under it. The unknown protocol name is written "UNKNWON", as the
// receiving side expects.
//
// JSON: {"type", "name", "version", "transportProtocol"} in this order.
// Ownership: a value holding its parts by shared_ptr.
// Thread-safety: immutable after construction; safe to write and compare from any thread.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/ErrorReportErrorProtocolTransport.h"

namespace smarthome {
namespace V3API {

class ErrorReportErrorProtocol {
public:
    enum class ProtocolType {
        OTHER = 0,
        ZIGBEE = 1,
        BLUETOOTH_MESH = 2,
    };
    // The wire strings, indexed by value.
    static constexpr std::array<const char*, 3> kProtocolTypeNames = {"OTHER", "ZIGBEE",
                                                                      "BLUETOOTH_MESH"};
    enum class ProtocolName {
        UNKNWON = 0,
        PHILIPS_BLE = 1,
    };
    // The wire strings, indexed by value.
    static constexpr std::array<const char*, 2> kProtocolNameNames = {"UNKNWON", "PHILIPS_BLE"};

    ErrorReportErrorProtocol(ProtocolType type, ProtocolName name, std::string version,
                             std::shared_ptr<ErrorReportErrorProtocolTransport> transportProtocol);

    // "" for a value outside the table.
    [[nodiscard]] static std::string toString(ProtocolType value);
    // "" for a value outside the table.
    [[nodiscard]] static std::string toString(ProtocolName value);

    // The object as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The object as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above; an absent or null member keeps its default (empty text,
    // value 0, no part). A member of the wrong kind logs "fromJson:event=parserError,
    // reason=valueNotAString|valueNotAnObject|valueNotAnArray|valueNotAnInt,action=invalid,
    // key=<member>" and gives an empty pointer; an unknown enumeration string reads as 0
    // after the warning "fromJson:unknownEnumerationValue,key=<member>".
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorProtocol> fromJson(
        const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorProtocol> fromJson(const JSONValue& value);

    [[nodiscard]] ProtocolType getType() const { return type; }
    [[nodiscard]] ProtocolName getName() const { return name; }
    [[nodiscard]] const std::string& getVersion() const { return version; }
    [[nodiscard]] std::shared_ptr<ErrorReportErrorProtocolTransport> getTransportProtocol() const {
        return transportProtocol;
    }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReportErrorProtocol& other) const;
    [[nodiscard]] bool operator!=(const ErrorReportErrorProtocol& other) const {
        return !(*this == other);
    }

private:
    template <class Value>
    static std::shared_ptr<ErrorReportErrorProtocol> read(const Value& value);

    ProtocolType type;
    ProtocolName name;
    std::string version;
    std::shared_ptr<ErrorReportErrorProtocolTransport> transportProtocol;
};

}  // namespace V3API
}  // namespace smarthome
