// The connection forms addressed by one MAC address (TCP_IP, ZIGBEE, BLE) share this
// writer: {"type": <type's text>, "macAddress": <address>}. A TCP/IP connection is keyed
// "macAddress" too.
//
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/Connection.h"

namespace smarthome {
namespace V3API {

class MacAddressConnection : public Connection {
public:
    MacAddressConnection(ConnectionType type, std::string macAddress)
        : Connection(type), macAddress(std::move(macAddress)) {}

    [[nodiscard]] JSONValue getJsonObj(rapidjson::CrtAllocator& allocator) const override;

    [[nodiscard]] const std::string& getMacAddress() const { return macAddress; }

private:
    std::string macAddress;
};

}  // namespace V3API
}  // namespace smarthome
