#include "smarthome/V3API/ErrorReportErrorDetail.h"

#include <utility>

#include "V3API/ErrorReportJson.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ErrorReportErrorDetail");

}  // namespace

ErrorReportErrorDetail::ErrorReportErrorDetail(ErrorCode errorCode, ErrorStep errorStep,
                                               std::string errorMessage)
    : errorCode(errorCode), errorStep(errorStep), errorMessage(std::move(errorMessage)) {}

std::string ErrorReportErrorDetail::toString(ErrorCode value) {
    return detail::enumToString(value, kErrorCodeNames);
}

std::string ErrorReportErrorDetail::toString(ErrorStep value) {
    return detail::enumToString(value, kErrorStepNames);
}

std::string ErrorReportErrorDetail::toJsonString() const {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(toJson(allocator));
}

JSONValue ErrorReportErrorDetail::toJson(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    detail::addString(object, "errorCode", toString(errorCode), allocator);
    detail::addString(object, "errorStep", toString(errorStep), allocator);
    detail::addString(object, "errorMessage", errorMessage, allocator);
    return object;
}

template <class Value>
std::shared_ptr<ErrorReportErrorDetail> ErrorReportErrorDetail::read(const Value& value) {
    ErrorCode errorCode = ErrorCode::INVALID;
    ErrorStep errorStep = ErrorStep::INVALID;
    std::string errorMessage;
    detail::MemberReader<Value> reader(value, logger);
    reader.enumeration("errorCode", kErrorCodeNames, &errorCode)
        .enumeration("errorStep", kErrorStepNames, &errorStep)
        .text("errorMessage", &errorMessage);
    if (!reader.ok()) {
        return nullptr;
    }
    return std::make_shared<ErrorReportErrorDetail>(errorCode, errorStep, std::move(errorMessage));
}

std::shared_ptr<ErrorReportErrorDetail> ErrorReportErrorDetail::fromJson(
    const rapidjson::Value& value) {
    return read(value);
}

std::shared_ptr<ErrorReportErrorDetail> ErrorReportErrorDetail::fromJson(const JSONValue& value) {
    return read(value);
}

bool ErrorReportErrorDetail::operator==(const ErrorReportErrorDetail& other) const {
    return errorCode == other.errorCode && errorStep == other.errorStep &&
           errorMessage == other.errorMessage;
}

}  // namespace V3API
}  // namespace smarthome
