#include "smarthome/V3API/Identifiers.h"

#include <utility>

#include "V3API/OptionalStrings.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("Identifiers");

}  // namespace

Identifiers::Identifiers(std::shared_ptr<std::string> customIdentifier,
                         std::shared_ptr<std::string> serialNumber,
                         std::shared_ptr<std::string> macAddress)
    : customIdentifier(std::move(customIdentifier)),
      serialNumber(std::move(serialNumber)),
      macAddress(std::move(macAddress)) {}

template <class Value>
std::shared_ptr<Identifiers> Identifiers::read(const Value& value) {
    auto identifiers = std::make_shared<Identifiers>(nullptr, nullptr, nullptr);
    identifiers->error =
        !detail::requireObject(value, "identifiers", logger) ||
        !detail::readOptionalString(value, "customIdentifier", &identifiers->customIdentifier,
                                    logger) ||
        !detail::readOptionalString(value, "serialNumber", &identifiers->serialNumber, logger) ||
        !detail::readOptionalString(value, "macAddress", &identifiers->macAddress, logger);
    if (identifiers->error) {
        identifiers->customIdentifier.reset();
        identifiers->serialNumber.reset();
        identifiers->macAddress.reset();
    }
    return identifiers;
}

std::shared_ptr<Identifiers> Identifiers::create(const JSONValue& value) {
    return read(value);
}

std::shared_ptr<Identifiers> Identifiers::create(const rapidjson::Value& value) {
    return read(value);
}

void Identifiers::write(JsonTextWriter& writer) const {
    writer.StartObject();
    detail::writeOptionalString(writer, "customIdentifier", customIdentifier);
    detail::writeOptionalString(writer, "serialNumber", serialNumber);
    detail::writeOptionalString(writer, "macAddress", macAddress);
    writer.EndObject();
}

}  // namespace V3API
}  // namespace smarthome
