#include "smarthome/V3API/ZWAVE.h"

namespace smarthome {
namespace V3API {

JSONValue ZWAVE::getJsonObj(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    object.AddMember("type", "ZWAVE", allocator);
    object.AddMember("homeId", JSONValue(homeId, allocator), allocator);
    object.AddMember("nodeId", JSONValue(nodeId, allocator), allocator);
    return object;
}

}  // namespace V3API
}  // namespace smarthome
