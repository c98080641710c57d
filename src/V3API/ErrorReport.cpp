#include "smarthome/V3API/ErrorReport.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReport");

using Detail = ErrorReportErrorDetail;
using Protocol = ErrorReportErrorProtocol;
using Transport = ErrorReportErrorProtocolTransport;
using EndpointId = ErrorReportErrorEndpointId;

std::vector<std::shared_ptr<EndpointId>> oneIdentifier(EndpointId::IdentifierType type,
                                                       std::string value) {
    return {std::make_shared<EndpointId>(type, std::move(value))};
}

}  // namespace

ErrorReport::ErrorReport(Cause cause, std::string sessionToken,
                         std::shared_ptr<ErrorReportProvisioner> provisionerDetails,
                         std::vector<std::shared_ptr<ErrorReportError>> errors)
    : cause(cause),
      sessionToken(std::move(sessionToken)),
      provisionerDetails(std::move(provisionerDetails)),
      errors(std::move(errors)) {}

ErrorReport::ErrorReport(Cause cause, Protocol::ProtocolType protocolType,
                         Protocol::ProtocolName protocolName,
                         Transport::TransportType transportType,
                         std::vector<std::shared_ptr<EndpointId>> identifiers, int rssiScore,
                         Detail::ErrorCode errorCode, Detail::ErrorStep errorStep,
                         std::string errorMessage)
    : ErrorReport(cause, "", std::make_shared<ErrorReportProvisioner>("", "", "", "", ""),
                  {std::make_shared<ErrorReportError>(
                      std::make_shared<Protocol>(protocolType, protocolName, "",
                                                 std::make_shared<Transport>(transportType, "")),
                      std::make_shared<Detail>(errorCode, errorStep, std::move(errorMessage)),
                      std::make_shared<ErrorReportErrorEndpoint>(std::move(identifiers), rssiScore,
                                                                 "", "", ""))}) {}

ErrorReport ErrorReport::createZigbeeErrorReport(Cause cause, std::string deviceIdentifier,
                                                 int rssiScore, Detail::ErrorCode errorCode,
                                                 Detail::ErrorStep errorStep,
                                                 std::string errorMessage) {
    return ErrorReport(
        cause, Protocol::ProtocolType::ZIGBEE, Protocol::ProtocolName::UNKNWON,
        Transport::TransportType::ZIGBEE_2_4GHZ,
        oneIdentifier(EndpointId::IdentifierType::ZIGBEE_MAC_ADDRESS, std::move(deviceIdentifier)),
        rssiScore, errorCode, errorStep, std::move(errorMessage));
}

ErrorReport ErrorReport::createBleMeshErrorReport(Cause cause, std::string deviceIdentifier,
                                                  int rssiScore, Detail::ErrorCode errorCode,
                                                  Detail::ErrorStep errorStep,
                                                  std::string errorMessage) {
    return ErrorReport(
        cause, Protocol::ProtocolType::BLUETOOTH_MESH, Protocol::ProtocolName::UNKNWON,
        Transport::TransportType::BLUETOOTH_MESH,
        oneIdentifier(EndpointId::IdentifierType::BLUETOOTH_MESH_UUID, std::move(deviceIdentifier)),
        rssiScore, errorCode, errorStep, std::move(errorMessage));
}

std::string ErrorReport::toString(Cause value) {
    return detail::enumToString(value, kCauseNames);
}

std::string ErrorReport::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReport::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addString(object, "cause", toString(cause), allocator);
    detail::addString(object, "sessionToken", sessionToken, allocator);
    detail::addObject(object, "provisionerDetails", provisionerDetails, allocator);
    detail::addArray(object, "errors", errors, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReport> ErrorReport::read(const Value& value) {
    Cause cause = Cause::UNKNOWN;
    std::string sessionToken;
    std::shared_ptr<ErrorReportProvisioner> provisionerDetails;
    std::vector<std::shared_ptr<ErrorReportError>> errors;
    detail::MemberReader<Value> reader(value, logger);
    reader.enumeration("cause", kCauseNames, &cause)
        .text("sessionToken", &sessionToken)
        .part("provisionerDetails", &provisionerDetails)
        .parts("errors", &errors);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReport>(cause, std::move(sessionToken),
                                         std::move(provisionerDetails), std::move(errors));
}

std::shared_ptr<ErrorReport> ErrorReport::fromJson(const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReport> ErrorReport::fromJson(const JSONValue& value) {
    return read(value);
}

bool ErrorReport::operator==(const ErrorReport& other) const {
    return cause == other.cause && sessionToken == other.sessionToken &&
           detail::samePointee(provisionerDetails, other.provisionerDetails) &&
           detail::sameElements(errors, other.errors);
}

}  // namespace V3API
}  // namespace smarthome
