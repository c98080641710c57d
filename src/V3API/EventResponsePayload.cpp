#include "smarthome/V3API/EventResponsePayload.h"

#include <tvkcommon/utils/UuidGeneration.h>

#include <utility>

namespace smarthome {
namespace V3API {

namespace {

const Context& contextOrEmpty(const std::shared_ptr<Context>& context) {
    static const Context empty("", "", "", "", "", "");
    return context ? *context : empty;
}

void makeObject(JSONDocument& document) {
    if (!document.IsObject()) {
        document.SetObject();
    }
}

}  // namespace

EventResponsePayload::EventResponsePayload(std::string payload, std::shared_ptr<Context> context)
    : payload(std::move(payload)),
      context(std::move(context)),
      messageId(tavraClientSDK::tvkCommon::utils::uuidGeneration::generateUUID()) {}

void EventResponsePayload::buildHeader(JSONDocument& document) const {
    makeObject(document);
    const Context& source = contextOrEmpty(context);
    auto& allocator = document.GetAllocator();
    document.AddMember("namespace", JSONValue(source.getNamespace(), allocator), allocator);
    document.AddMember("name", JSONValue(source.getName(), allocator), allocator);
    document.AddMember("messageId", JSONValue(messageId, allocator), allocator);
    document.AddMember("payloadVersion", JSONValue(source.getPayloadVersion(), allocator),
                       allocator);
    document.AddMember("correlationToken", JSONValue(source.getCorrelationToken(), allocator),
                       allocator);
}

void EventResponsePayload::buildEndpoint(JSONDocument& document) const {
    makeObject(document);
    auto& allocator = document.GetAllocator();
    document.AddMember("endpointId", JSONValue(contextOrEmpty(context).getEndpointId(), allocator),
                       allocator);
}

JSONValue EventResponsePayload::buildPayload(rapidjson::CrtAllocator& allocator) const {
    JSONDocument parsed;
    if (JSONUtil::parse(parsed, payload).IsError() || !parsed.IsObject()) {
        return JSONValue(rapidjson::kObjectType);
    }
    return JSONValue(parsed, allocator);
}

}  // namespace V3API
}  // namespace smarthome
