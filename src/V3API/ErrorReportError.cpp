#include "smarthome/V3API/ErrorReportError.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReportError");

}  // namespace

ErrorReportError::ErrorReportError(std::shared_ptr<ErrorReportErrorProtocol> applicationProtocol,
                                   std::shared_ptr<ErrorReportErrorDetail> errorDetail,
                                   std::shared_ptr<ErrorReportErrorEndpoint> endpointDetails)
    : applicationProtocol(std::move(applicationProtocol)),
      errorDetail(std::move(errorDetail)),
      endpointDetails(std::move(endpointDetails)) {}

std::string ErrorReportError::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReportError::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addObject(object, "applicationProtocol", applicationProtocol, allocator);
    detail::addObject(object, "errorDetail", errorDetail, allocator);
    detail::addObject(object, "endpointDetails", endpointDetails, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReportError> ErrorReportError::read(const Value& value) {
    std::shared_ptr<ErrorReportErrorProtocol> applicationProtocol;
    std::shared_ptr<ErrorReportErrorDetail> errorDetail;
    std::shared_ptr<ErrorReportErrorEndpoint> endpointDetails;
    detail::MemberReader<Value> reader(value, logger);
    reader.part("applicationProtocol", &applicationProtocol)
        .part("errorDetail", &errorDetail)
        .part("endpointDetails", &endpointDetails);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReportError>(std::move(applicationProtocol),
                                              std::move(errorDetail), std::move(endpointDetails));
}

std::shared_ptr<ErrorReportError> ErrorReportError::fromJson(const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReportError> ErrorReportError::fromJson(const JSONValue& value) {
    return read(value);
}

bool ErrorReportError::operator==(const ErrorReportError& other) const {
    return detail::samePointee(applicationProtocol, other.applicationProtocol) &&
           detail::samePointee(errorDetail, other.errorDetail) &&
           detail::samePointee(endpointDetails, other.endpointDetails);
}

}  // namespace V3API
}  // namespace smarthome
