#include "smarthome/V3API/ReportEndpoint.h"

#include <utility>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ReportEndpoint");

// The member when present and not null.
template <class Value>
const Value* presentMember(const Value& object, const char* key) {
    const auto member = object.FindMember(key);
    if (member == object.MemberEnd() || member->value.IsNull()) {
        return nullptr;
    }
    return &member->value;
}

}  // namespace

ReportEndpoint::ReportEndpoint(std::vector<std::shared_ptr<ReportEndpointConnection>> connections,
                               std::shared_ptr<Credentials> credentials,
                               std::shared_ptr<Identifiers> identifiers)
    : connections(std::move(connections)),
      credentials(std::move(credentials)),
      identifiers(std::move(identifiers)) {}

std::shared_ptr<ReportEndpoint> ReportEndpoint::getErrorEndpoint() {
    auto endpoint = std::make_shared<ReportEndpoint>(
        std::vector<std::shared_ptr<ReportEndpointConnection>>(), nullptr, nullptr);
    endpoint->error = true;
    return endpoint;
}

template <class Value>
std::shared_ptr<ReportEndpoint> ReportEndpoint::read(const Value& value) {
    const Value* list = value.IsObject() ? presentMember(value, "connections") : nullptr;
    if (list == nullptr || !list->IsArray()) {
        logger.e("%s:event=parserError,reason=valueNotAnArray,action=invalid,key=%s", "create",
                 "connections");
        return getErrorEndpoint();
    }
    std::vector<std::shared_ptr<ReportEndpointConnection>> connections;
    connections.reserve(list->Size());
    for (const auto& element : list->GetArray()) {
        auto connection = ReportEndpointConnection::create(element);
        if (connection->hasError()) {
            return getErrorEndpoint();
        }
        connections.push_back(std::move(connection));
    }
    std::shared_ptr<Credentials> credentials;
    if (const Value* member = presentMember(value, "credentials")) {
        credentials = Credentials::create(*member);
        if (credentials->hasError()) {
            return getErrorEndpoint();
        }
    }
    std::shared_ptr<Identifiers> identifiers;
    if (const Value* member = presentMember(value, "identifiers")) {
        identifiers = Identifiers::create(*member);
        if (identifiers->hasError()) {
            return getErrorEndpoint();
        }
    }
    return std::make_shared<ReportEndpoint>(std::move(connections), std::move(credentials),
                                            std::move(identifiers));
}

std::shared_ptr<ReportEndpoint> ReportEndpoint::create(const JSONValue& value) {
    return read(value);
}

std::shared_ptr<ReportEndpoint> ReportEndpoint::create(const rapidjson::Value& value) {
    return read(value);
}

void ReportEndpoint::write(JsonTextWriter& writer) const {
    writer.StartObject();
    writer.Key("connections");
    writer.StartArray();
    for (const auto& connection : connections) {
        connection->write(writer);
    }
    writer.EndArray();
    if (credentials) {
        writer.Key("credentials");
        credentials->write(writer);
    }
    if (identifiers) {
        writer.Key("identifiers");
        identifiers->write(writer);
    }
    writer.EndObject();
}

}  // namespace V3API
}  // namespace smarthome
