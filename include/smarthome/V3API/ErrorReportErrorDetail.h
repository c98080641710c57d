// What went wrong in a failed setup, at which step, and a message.
//
// JSON: {"errorCode", "errorStep", "errorMessage"} in this order.
// Ownership: a value holding its parts by shared_ptr.
// Thread-safety: immutable after construction; safe to write and compare from any thread.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"

namespace smarthome {
namespace V3API {

class ErrorReportErrorDetail {
public:
    enum class ErrorCode {
        INVALID = 0,
        NETWORK_NOT_READY = 1,
        INTERNAL_ERROR = 2,
        NO_DEVICE_FOUND = 3,
        ENDPOINT_DISCONNECTED = 4,
        ENDPOINT_BUSY = 5,
        DEVICE_TYPE_NOT_SUPPORTED = 6,
        DEVICE_CAPABILITIES_NOT_SUPPORTED = 7,
        ENDPOINT_OUT_OF_RANGE = 8,
        FAILED_TO_CONNECT = 9,
        PROVISIONER_BUSY = 10,
        SCAN_FAILURE = 11,
        TIMEOUT = 12,
    };
    // The wire strings, indexed by value.
    static constexpr std::array<const char*, 13> kErrorCodeNames = {
        "INVALID",
        "NETWORK_NOT_READY",
        "INTERNAL_ERROR",
        "NO_DEVICE_FOUND",
        "ENDPOINT_DISCONNECTED",
        "ENDPOINT_BUSY",
        "DEVICE_TYPE_NOT_SUPPORTED",
        "DEVICE_CAPABILITIES_NOT_SUPPORTED",
        "ENDPOINT_OUT_OF_RANGE",
        "FAILED_TO_CONNECT",
        "PROVISIONER_BUSY",
        "SCAN_FAILURE",
        "TIMEOUT"};
    enum class ErrorStep {
        INVALID = 0,
        PREREQUISITION = 1,
        SCAN = 2,
        CONNECT = 3,
        PROVISION = 4,
        DEVICE_VERIFICATION = 5,
    };
    // The wire strings, indexed by value.
    static constexpr std::array<const char*, 6> kErrorStepNames = {
        "INVALID", "PREREQUISITION", "SCAN", "CONNECT", "PROVISION", "DEVICE_VERIFICATION"};

    ErrorReportErrorDetail(ErrorCode errorCode, ErrorStep errorStep, std::string errorMessage);

    // "" for a value outside the table.
    [[nodiscard]] static std::string toString(ErrorCode value);
    // "" for a value outside the table.
    [[nodiscard]] static std::string toString(ErrorStep value);

    // The object as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The object as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above; an absent or null member keeps its default (empty text,
    // value 0, no part). A member of the wrong kind logs "fromJson:event=parserError,
    // reason=valueNotAString|valueNotAnObject|valueNotAnArray|valueNotAnInt,action=invalid,
    // key=<member>" and gives an empty pointer; an unknown enumeration string reads as 0
    // after the warning "fromJson:unknownEnumerationValue,key=<member>".
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorDetail> fromJson(
        const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReportErrorDetail> fromJson(const JSONValue& value);

    [[nodiscard]] ErrorCode getErrorCode() const { return errorCode; }
    [[nodiscard]] ErrorStep getErrorStep() const { return errorStep; }
    [[nodiscard]] const std::string& getErrorMessage() const { return errorMessage; }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReportErrorDetail& other) const;
    [[nodiscard]] bool operator!=(const ErrorReportErrorDetail& other) const {
        return !(*this == other);
    }

private:
    template <class Value>
    static std::shared_ptr<ErrorReportErrorDetail> read(const Value& value);

    ErrorCode errorCode;
    ErrorStep errorStep;
    std::string errorMessage;
};

}  // namespace V3API
}  // namespace smarthome
