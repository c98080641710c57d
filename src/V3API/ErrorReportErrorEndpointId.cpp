#include "smarthome/V3API/ErrorReportErrorEndpointId.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReportErrorEndpointId");

}  // namespace

ErrorReportErrorEndpointId::ErrorReportErrorEndpointId(IdentifierType type, std::string value)
    : type(type), value(std::move(value)) {}

std::string ErrorReportErrorEndpointId::toString(IdentifierType value) {
    return detail::enumToString(value, kIdentifierTypeNames);
}

std::string ErrorReportErrorEndpointId::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReportErrorEndpointId::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addString(object, "type", toString(type), allocator);
    detail::addString(object, "value", value, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReportErrorEndpointId> ErrorReportErrorEndpointId::read(const Value& json) {
    IdentifierType type = IdentifierType::UNKNOWN;
    std::string value;
    detail::MemberReader<Value> reader(json, logger);
    reader.enumeration("type", kIdentifierTypeNames, &type).text("value", &value);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReportErrorEndpointId>(type, std::move(value));
}

std::shared_ptr<ErrorReportErrorEndpointId> ErrorReportErrorEndpointId::fromJson(
    const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReportErrorEndpointId> ErrorReportErrorEndpointId::fromJson(
    const JSONValue& value) {
    return read(value);
}

bool ErrorReportErrorEndpointId::operator==(const ErrorReportErrorEndpointId& other) const {
    return type == other.type && value == other.value;
}

}  // namespace V3API
}  // namespace smarthome
