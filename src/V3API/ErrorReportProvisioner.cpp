#include "smarthome/V3API/ErrorReportProvisioner.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReportProvisioner");

}  // namespace

ErrorReportProvisioner::ErrorReportProvisioner(std::string type, std::string manufacturer,
                                               std::string model, std::string serialNumber,
                                               std::string softwareVersion)
    : type(std::move(type)),
      manufacturer(std::move(manufacturer)),
      model(std::move(model)),
      serialNumber(std::move(serialNumber)),
      softwareVersion(std::move(softwareVersion)) {}

std::string ErrorReportProvisioner::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReportProvisioner::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addString(object, "type", type, allocator);
    detail::addString(object, "manufacturer", manufacturer, allocator);
    detail::addString(object, "model", model, allocator);
    detail::addString(object, "serialNumber", serialNumber, allocator);
    detail::addString(object, "softwareVersion", softwareVersion, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReportProvisioner> ErrorReportProvisioner::read(const Value& value) {
    std::string type;
    std::string manufacturer;
    std::string model;
    std::string serialNumber;
    std::string softwareVersion;
    detail::MemberReader<Value> reader(value, logger);
    reader.text("type", &type)
        .text("manufacturer", &manufacturer)
        .text("model", &model)
        .text("serialNumber", &serialNumber)
        .text("softwareVersion", &softwareVersion);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReportProvisioner>(std::move(type), std::move(manufacturer),
                                                    std::move(model), std::move(serialNumber),
                                                    std::move(softwareVersion));
}

std::shared_ptr<ErrorReportProvisioner> ErrorReportProvisioner::fromJson(
    const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReportProvisioner> ErrorReportProvisioner::fromJson(const JSONValue& value) {
    return read(value);
}

bool ErrorReportProvisioner::operator==(const ErrorReportProvisioner& other) const {
    return type == other.type && manufacturer == other.manufacturer && model == other.model &&
           serialNumber == other.serialNumber && softwareVersion == other.softwareVersion;
}

}  // namespace V3API
}  // namespace smarthome
