#include "smarthome/V3API/MacAddressConnection.h"

namespace smarthome {
namespace V3API {

JSONValue MacAddressConnection::getJsonObj(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    object.AddMember("type", JSONValue(toString(type), allocator), allocator);
    object.AddMember("macAddress", JSONValue(macAddress, allocator), allocator);
    return object;
}

}  // namespace V3API
}  // namespace smarthome
