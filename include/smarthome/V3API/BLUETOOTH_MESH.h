// A Bluetooth mesh connection: {"type": "BLUETOOTH_MESH", "deviceUuid": ...}.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/Connection.h"

namespace smarthome {
namespace V3API {

class BLUETOOTH_MESH : public Connection {
public:
    explicit BLUETOOTH_MESH(const std::string& deviceUuid)
        : Connection(ConnectionType::BLUETOOTH_MESH), deviceUuid(deviceUuid) {}

    [[nodiscard]] JSONValue getJsonObj(rapidjson::CrtAllocator& allocator) const override;

private:
    std::string deviceUuid;
};

}  // namespace V3API
}  // namespace smarthome
