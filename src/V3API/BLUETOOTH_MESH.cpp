#include "smarthome/V3API/BLUETOOTH_MESH.h"

namespace smarthome {
namespace V3API {

JSONValue BLUETOOTH_MESH::getJsonObj(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    object.AddMember("type", JSONValue(toString(type), allocator), allocator);
    object.AddMember("deviceUuid", JSONValue(deviceUuid, allocator), allocator);
    return object;
}

}  // namespace V3API
}  // namespace smarthome
