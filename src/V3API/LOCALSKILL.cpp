#include "smarthome/V3API/LOCALSKILL.h"

namespace smarthome {
namespace V3API {

JSONValue LOCALSKILL::getJsonObj(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    object.AddMember("type", JSONValue(toString(type), allocator), allocator);
    object.AddMember("id", JSONValue(id, allocator), allocator);
    object.AddMember("version", JSONValue(version, allocator), allocator);
    return object;
}

}  // namespace V3API
}  // namespace smarthome
