// A TCP_IP connection: {"type": "TCP_IP", "macAddress": <address>}.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/MacAddressConnection.h"

namespace smarthome {
namespace V3API {

class TCP_IP : public MacAddressConnection {
public:
    explicit TCP_IP(const std::string& macAddress)
        : MacAddressConnection(ConnectionType::TCP_IP, macAddress) {}
};

}  // namespace V3API
}  // namespace smarthome
