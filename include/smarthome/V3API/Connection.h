// A connection descriptor of an endpoint reported to the cloud: over which radio or
// transport the hub reaches the endpoint, and by which address. Each form writes itself as
// a JSON object whose strings are copied into the given allocator (the allocator of the
// document that will hold the object).
//
// Ownership: plain values; the returned JSON object belongs to the caller.
// Thread-safety: immutable after construction; any number of threads may write one.
#pragma once

#include <string>

#include "smarthome/JSONUtil.h"

namespace smarthome {
namespace V3API {

class Connection {
public:
    enum class ConnectionType {
        TCP_IP = 0,
        ZIGBEE = 1,
        ZWAVE = 2,
        BLE = 3,
        BLUETOOTH_MESH = 4,
        LOCALSKILL = 5,
        MATTER = 6,
    };

    explicit Connection(ConnectionType type) : type(type) {}
    virtual ~Connection() = default;

    // The JSON object of this connection; its "type" member comes first.
    [[nodiscard]] virtual JSONValue getJsonObj(rapidjson::CrtAllocator& allocator) const = 0;

    // "TCP_IP", "ZIGBEE", ...; any other value gives "UNKNOWN" after the warning
    // "toString:UNKNOWN".
    [[nodiscard]] static std::string toString(ConnectionType type);

    [[nodiscard]] ConnectionType getType() const { return type; }

protected:
    ConnectionType type;
};

}  // namespace V3API
}  // namespace smarthome
