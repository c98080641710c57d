#include "smarthome/V3API/ErrorReportErrorProtocolTransport.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReportErrorProtocolTransport");

}  // namespace

ErrorReportErrorProtocolTransport::ErrorReportErrorProtocolTransport(TransportType type,
                                                                     std::string version)
    : type(type), version(std::move(version)) {}

std::string ErrorReportErrorProtocolTransport::toString(TransportType value) {
    return detail::enumToString(value, kTransportTypeNames);
}

std::string ErrorReportErrorProtocolTransport::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReportErrorProtocolTransport::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addString(object, "type", toString(type), allocator);
    detail::addString(object, "version", version, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReportErrorProtocolTransport> ErrorReportErrorProtocolTransport::read(
    const Value& value) {
    TransportType type = TransportType::UNKNOWN;
    std::string version;
    detail::MemberReader<Value> reader(value, logger);
    reader.enumeration("type", kTransportTypeNames, &type).text("version", &version);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReportErrorProtocolTransport>(type, std::move(version));
}

std::shared_ptr<ErrorReportErrorProtocolTransport> ErrorReportErrorProtocolTransport::fromJson(
    const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReportErrorProtocolTransport> ErrorReportErrorProtocolTransport::fromJson(
    const JSONValue& value) {
    return read(value);
}

bool ErrorReportErrorProtocolTransport::operator==(
    const ErrorReportErrorProtocolTransport& other) const {
    return type == other.type && version == other.version;
}

}  // namespace V3API
}  // namespace smarthome
