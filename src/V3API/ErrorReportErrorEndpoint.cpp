#include "smarthome/V3API/ErrorReportErrorEndpoint.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReportErrorEndpoint");

}  // namespace

ErrorReportErrorEndpoint::ErrorReportErrorEndpoint(
    std::vector<std::shared_ptr<ErrorReportErrorEndpointId>> identifiers, int rssiScore,
    std::string softwareVersion, std::string model, std::string manufacturer)
    : identifiers(std::move(identifiers)),
      rssiScore(rssiScore),
      softwareVersion(std::move(softwareVersion)),
      model(std::move(model)),
      manufacturer(std::move(manufacturer)) {}

std::string ErrorReportErrorEndpoint::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReportErrorEndpoint::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addArray(object, "identifiers", identifiers, allocator);
    object.AddMember("rssiScore", JSONValue(rssiScore), allocator);
    detail::addString(object, "softwareVersion", softwareVersion, allocator);
    detail::addString(object, "model", model, allocator);
    detail::addString(object, "manufacturer", manufacturer, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReportErrorEndpoint> ErrorReportErrorEndpoint::read(const Value& value) {
    std::vector<std::shared_ptr<ErrorReportErrorEndpointId>> identifiers;
    int rssiScore = 0;
    std::string softwareVersion;
    std::string model;
    std::string manufacturer;
    detail::MemberReader<Value> reader(value, logger);
    reader.parts("identifiers", &identifiers)
        .integer("rssiScore", &rssiScore)
        .text("softwareVersion", &softwareVersion)
        .text("model", &model)
        .text("manufacturer", &manufacturer);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReportErrorEndpoint>(std::move(identifiers), rssiScore,
                                                      std::move(softwareVersion), std::move(model),
                                                      std::move(manufacturer));
}

std::shared_ptr<ErrorReportErrorEndpoint> ErrorReportErrorEndpoint::fromJson(
    const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReportErrorEndpoint> ErrorReportErrorEndpoint::fromJson(
    const JSONValue& value) {
    return read(value);
}

bool ErrorReportErrorEndpoint::operator==(const ErrorReportErrorEndpoint& other) const {
    return detail::sameElements(identifiers, other.identifiers) && rssiScore == other.rssiScore &&
           softwareVersion == other.softwareVersion && model == other.model &&
           manufacturer == other.manufacturer;
}

}  // namespace V3API
}  // namespace smarthome
