// A Z-Wave connection: {"type": "ZWAVE", "homeId": ..., "nodeId": ...}.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/Connection.h"

namespace smarthome {
namespace V3API {

class ZWAVE : public Connection {
public:
    ZWAVE(const std::string& homeId, const std::string& nodeId)
        : Connection(ConnectionType::ZWAVE), homeId(homeId), nodeId(nodeId) {}

    [[nodiscard]] JSONValue getJsonObj(rapidjson::CrtAllocator& allocator) const override;

private:
    std::string homeId;
    std::string nodeId;
};

}  // namespace V3API
}  // namespace smarthome
