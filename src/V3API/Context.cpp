#include "smarthome/V3API/Context.h"

#include <utility>

#include "smarthome/JSONUtil.h"

namespace smarthome {
namespace V3API {

Context::Context(std::string nameSpace, std::string name, std::string payloadVersion,
                 std::string correlationToken, std::string endpointId, std::string eventRequestId)
    : nameSpace(std::move(nameSpace)),
      name(std::move(name)),
      payloadVersion(std::move(payloadVersion)),
      correlationToken(std::move(correlationToken)),
      endpointId(std::move(endpointId)),
      eventRequestId(std::move(eventRequestId)) {}

std::string Context::toJson() const {
    JSONDocument document(rapidjson::kObjectType);
    auto& allocator = document.GetAllocator();
    document.AddMember("namespace", JSONValue(nameSpace, allocator), allocator);
    document.AddMember("name", JSONValue(name, allocator), allocator);
    document.AddMember("payloadVersion", JSONValue(payloadVersion, allocator), allocator);
    document.AddMember("correlationToken", JSONValue(correlationToken, allocator), allocator);
    document.AddMember("endpointId", JSONValue(endpointId, allocator), allocator);
    document.AddMember("eventRequestId", JSONValue(eventRequestId, allocator), allocator);
    return JSONUtil::getStringForJSON(document);
}

}  // namespace V3API
}  // namespace smarthome
