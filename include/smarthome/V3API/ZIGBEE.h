// A ZIGBEE connection: {"type": "ZIGBEE", "macAddress": <address>}.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/MacAddressConnection.h"

namespace smarthome {
namespace V3API {

class ZIGBEE : public MacAddressConnection {
public:
    explicit ZIGBEE(const std::string& macAddress)
        : MacAddressConnection(ConnectionType::ZIGBEE, macAddress) {}
};

}  // namespace V3API
}  // namespace smarthome
