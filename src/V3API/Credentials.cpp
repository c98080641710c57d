#include "smarthome/V3API/Credentials.h"

#include <utility>

#include "V3API/OptionalStrings.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("Credentials");

}  // namespace

Credentials::Credentials(std::shared_ptr<std::string> discoveryKey,
                         std::shared_ptr<std::string> controlKey)
    : discoveryKey(std::move(discoveryKey)), controlKey(std::move(controlKey)) {}

template <class Value>
std::shared_ptr<Credentials> Credentials::read(const Value& value) {
    auto credentials = std::make_shared<Credentials>(nullptr, nullptr);
    credentials->error =
        !detail::requireObject(value, "credentials", logger) ||
        !detail::readOptionalString(value, "discoveryKey", &credentials->discoveryKey, logger) ||
        !detail::readOptionalString(value, "controlKey", &credentials->controlKey, logger);
    if (credentials->error) {
        credentials->discoveryKey.reset();
        credentials->controlKey.reset();
    }
    return credentials;
}

std::shared_ptr<Credentials> Credentials::create(const JSONValue& value) {
    return read(value);
}

std::shared_ptr<Credentials> Credentials::create(const rapidjson::Value& value) {
    return read(value);
}

void Credentials::write(JsonTextWriter& writer) const {
    writer.StartObject();
    detail::writeOptionalString(writer, "discoveryKey", discoveryKey);
    detail::writeOptionalString(writer, "controlKey", controlKey);
    writer.EndObject();
}

}  // namespace V3API
}  // namespace smarthome
