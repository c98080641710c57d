#include "smarthome/V3API/Event.h"

#include <utility>

namespace smarthome {
namespace V3API {

Event::Event(std::string nameSpace, std::string name, std::shared_ptr<EventResponsePayload> payload)
    : nameSpace(std::move(nameSpace)), name(std::move(name)), payload(std::move(payload)) {}

std::string Event::toJson() const {
    JSONDocument envelope(rapidjson::kObjectType);
    auto& allocator = envelope.GetAllocator();

    JSONDocument header(rapidjson::kObjectType, &allocator);
    JSONDocument endpoint(rapidjson::kObjectType, &allocator);
    JSONValue body(rapidjson::kObjectType);
    if (payload) {
        payload->buildHeader(header);
        payload->buildEndpoint(endpoint);
        body = payload->buildPayload(allocator);
        // The header names this event, not the directive it answers; the members keep
        // their places.
        header.FindMember("namespace")->value.SetString(nameSpace, allocator);
        header.FindMember("name")->value.SetString(name, allocator);
    } else {
        header.AddMember("namespace", JSONValue(nameSpace, allocator), allocator);
        header.AddMember("name", JSONValue(name, allocator), allocator);
    }

    JSONValue event(rapidjson::kObjectType);
    event.AddMember("header", JSONValue(header, allocator), allocator);
    event.AddMember("endpoint", JSONValue(endpoint, allocator), allocator);
    event.AddMember("payload", body, allocator);
    envelope.AddMember("event", event, allocator);
    return JSONUtil::getStringForJSON(envelope);
}

}  // namespace V3API
}  // namespace smarthome
