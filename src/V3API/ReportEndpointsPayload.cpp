#include "smarthome/V3API/ReportEndpointsPayload.h"

#include <utility>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ReportEndpointsPayload");

}  // namespace

ReportEndpointsPayload::ReportEndpointsPayload(
    std::vector<std::shared_ptr<ReportEndpoint>> endpoints)
    : endpoints(std::move(endpoints)) {}

std::shared_ptr<ReportEndpointsPayload> ReportEndpointsPayload::getErrorEndpointsPayload() {
    auto payload =
        std::make_shared<ReportEndpointsPayload>(std::vector<std::shared_ptr<ReportEndpoint>>());
    payload->error = true;
    return payload;
}

template <class Value>
std::shared_ptr<ReportEndpointsPayload> ReportEndpointsPayload::read(const Value& value) {
    const Value* list = nullptr;
    if (value.IsObject()) {
        const auto member = value.FindMember("endpoints");
        if (member != value.MemberEnd() && member->value.IsArray()) {
            list = &member->value;
        }
    }
    if (list == nullptr) {
        logger.e("%s:event=parserError,reason=valueNotAnArray,action=invalid,key=%s", "create",
                 "endpoints");
        return getErrorEndpointsPayload();
    }
    std::vector<std::shared_ptr<ReportEndpoint>> endpoints;
    endpoints.reserve(list->Size());
    for (const auto& element : list->GetArray()) {
        auto endpoint = ReportEndpoint::create(element);
        if (endpoint->hasError()) {
            return getErrorEndpointsPayload();
        }
        endpoints.push_back(std::move(endpoint));
    }
    return std::make_shared<ReportEndpointsPayload>(std::move(endpoints));
}

std::shared_ptr<ReportEndpointsPayload> ReportEndpointsPayload::create(const JSONValue& value) {
    return read(value);
}

std::shared_ptr<ReportEndpointsPayload> ReportEndpointsPayload::create(
    const rapidjson::Value& value) {
    return read(value);
}

void ReportEndpointsPayload::write(JsonTextWriter& writer) const {
    writer.StartObject();
    writer.Key("endpoints");
    writer.StartArray();
    for (const auto& endpoint : endpoints) {
        endpoint->write(writer);
    }
    writer.EndArray();
    writer.EndObject();
}

std::string ReportEndpointsPayload::toJsonString() const {
    rapidjson::StringBuffer buffer;
    JsonTextWriter writer(buffer);
    write(writer);
    return std::string(buffer.GetString(), buffer.GetSize());
}

}  // namespace V3API
}  // namespace smarthome
