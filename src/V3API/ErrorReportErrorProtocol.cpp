#include "smarthome/V3API/ErrorReportErrorProtocol.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReportErrorProtocol");

}  // namespace

ErrorReportErrorProtocol::ErrorReportErrorProtocol(
    ProtocolType type, ProtocolName name, std::string version,
    std::shared_ptr<ErrorReportErrorProtocolTransport> transportProtocol)
    : type(type),
      name(name),
      version(std::move(version)),
      transportProtocol(std::move(transportProtocol)) {}

std::string ErrorReportErrorProtocol::toString(ProtocolType value) {
    return detail::enumToString(value, kProtocolTypeNames);
}

std::string ErrorReportErrorProtocol::toString(ProtocolName value) {
    return detail::enumToString(value, kProtocolNameNames);
}

std::string ErrorReportErrorProtocol::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReportErrorProtocol::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addString(object, "type", toString(type), allocator);
    detail::addString(object, "name", toString(name), allocator);
    detail::addString(object, "version", version, allocator);
    detail::addObject(object, "transportProtocol", transportProtocol, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReportErrorProtocol> ErrorReportErrorProtocol::read(const Value& value) {
    ProtocolType type = ProtocolType::OTHER;
    ProtocolName name = ProtocolName::UNKNWON;
    std::string version;
    std::shared_ptr<ErrorReportErrorProtocolTransport> transportProtocol;
    detail::MemberReader<Value> reader(value, logger);
    reader.enumeration("type", kProtocolTypeNames, &type)
        .enumeration("name", kProtocolNameNames, &name)
        .text("version", &version)
        .part("transportProtocol", &transportProtocol);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReportErrorProtocol>(type, name, std::move(version),
                                                      std::move(transportProtocol));
}

std::shared_ptr<ErrorReportErrorProtocol> ErrorReportErrorProtocol::fromJson(
    const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReportErrorProtocol> ErrorReportErrorProtocol::fromJson(
    const JSONValue& value) {
    return read(value);
}

bool ErrorReportErrorProtocol::operator==(const ErrorReportErrorProtocol& other) const {
    return type == other.type && name == other.name && version == other.version &&
           detail::samePointee(transportProtocol, other.transportProtocol);
}

}  // namespace V3API
}  // namespace smarthome
