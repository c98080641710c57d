// One error of an error report: the application protocol, the error's detail and the
// endpoint involved.
//
// JSON: {"applicationProtocol", "errorDetail", "endpointDetails"} in this order.
// Ownership: a value holding its parts by shared_ptr.
// Thread-safety: immutable after construction; safe to write and compare from any thread.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/ErrorReportErrorDetail.h"
#include "smarthome/V3API/ErrorReportErrorEndpoint.h"
#include "smarthome/V3API/ErrorReportErrorProtocol.h"

namespace smarthome {
namespace V3API {

class ErrorReportError {
public:
    ErrorReportError(std::shared_ptr<ErrorReportErrorProtocol> applicationProtocol,
                     std::shared_ptr<ErrorReportErrorDetail> errorDetail,
                     std::shared_ptr<ErrorReportErrorEndpoint> endpointDetails);

    // The object as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The object as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above; an absent or null member keeps its default (empty text,
    // value 0, no part). A member of the wrong kind logs "fromJson:event=parserError,
    // reason=valueNotAString|valueNotAnObject|valueNotAnArray|valueNotAnInt,action=invalid,
    // key=<member>" and gives an empty pointer; an unknown enumeration string reads as 0
    // after the warning "fromJson:unknownEnumerationValue,key=<member>".
    [[nodiscard]] static std::shared_ptr<ErrorReportError> fromJson(const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReportError> fromJson(const JSONValue& value);

    [[nodiscard]] std::shared_ptr<ErrorReportErrorProtocol> getApplicationProtocol() const {
        return applicationProtocol;
    }
    [[nodiscard]] std::shared_ptr<ErrorReportErrorDetail> getErrorDetail() const {
        return errorDetail;
    }
    [[nodiscard]] std::shared_ptr<ErrorReportErrorEndpoint> getEndpointDetails() const {
        return endpointDetails;
    }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReportError& other) const;
    [[nodiscard]] bool operator!=(const ErrorReportError& other) const { return !(*this == other); }

private:
    template <class Value>
    static std::shared_ptr<ErrorReportError> read(const Value& value);

    std::shared_ptr<ErrorReportErrorProtocol> applicationProtocol;
    std::shared_ptr<ErrorReportErrorDetail> errorDetail;
    std::shared_ptr<ErrorReportErrorEndpoint> endpointDetails;
};

}  // namespace V3API
}  // namespace smarthome
