// A local skill's connection: {"type": "LOCALSKILL", "id": ..., "version": ...}.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/Connection.h"

namespace smarthome {
namespace V3API {

class LOCALSKILL : public Connection {
public:
    LOCALSKILL(const std::string& id, const std::string& version)
        : Connection(ConnectionType::LOCALSKILL), id(id), version(version) {}

    [[nodiscard]] JSONValue getJsonObj(rapidjson::CrtAllocator& allocator) const override;

private:
    std::string id;
    std::string version;
};

}  // namespace V3API
}  // namespace smarthome
