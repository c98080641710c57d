// An error report: why a device setup (scan, connect, provision, verify) ended, the
// session it belonged to, the provisioner that ran it and the errors met.
//
// JSON: {"cause", "sessionToken", "provisionerDetails", "errors"} in this order; nested
// objects as their own classes write them (see ErrorReportError.h and the classes it
// names), an absent part is left out.
//
// The convenience constructor builds the nested objects from flat values: one error whose
// application protocol has the given type and name (version ""), with a transport of the
// given type (version ""), an endpoint with the given identifiers and RSSI score (software
// version, model and manufacturer ""), and a detail of the given code, step and message.
// The two factories fill the radio's values:
//   createZigbeeErrorReport: protocol ZIGBEE, name UNKNWON, transport ZIGBEE_2_4GHZ, the
//     identifier a ZIGBEE_MAC_ADDRESS;
//   createBleMeshErrorReport: protocol BLUETOOTH_MESH, name UNKNWON, transport
//     BLUETOOTH_MESH, the identifier a BLUETOOTH_MESH_UUID;
// their arguments are (cause, the device's identifier, RSSI score, error code, error step,
// error message); the session token is empty and the provisioner's strings are empty.
//
// Ownership: a value holding its parts by shared_ptr.
// Thread-safety: immutable after construction; safe to write and compare from any thread.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/ErrorReportError.h"
#include "smarthome/V3API/ErrorReportProvisioner.h"

namespace smarthome {
namespace V3API {

class ErrorReport {
public:
    enum class Cause {
        UNKNOWN = 0,
        CUSTOMER_INITIATED = 1,
        ZQS = 2,
    };
    // The wire strings, indexed by value.
    static constexpr std::array<const char*, 3> kCauseNames = {"UNKNOWN", "CUSTOMER_INITIATED",
                                                               "ZQS"};

    ErrorReport(Cause cause, std::string sessionToken,
                std::shared_ptr<ErrorReportProvisioner> provisionerDetails,
                std::vector<std::shared_ptr<ErrorReportError>> errors);
    ErrorReport(Cause cause, ErrorReportErrorProtocol::ProtocolType protocolType,
                ErrorReportErrorProtocol::ProtocolName protocolName,
                ErrorReportErrorProtocolTransport::TransportType transportType,
                std::vector<std::shared_ptr<ErrorReportErrorEndpointId>> identifiers, int rssiScore,
                ErrorReportErrorDetail::ErrorCode errorCode,
                ErrorReportErrorDetail::ErrorStep errorStep, std::string errorMessage);

    [[nodiscard]] static ErrorReport createZigbeeErrorReport(
        Cause cause, std::string deviceIdentifier, int rssiScore,
        ErrorReportErrorDetail::ErrorCode errorCode, ErrorReportErrorDetail::ErrorStep errorStep,
        std::string errorMessage);
    [[nodiscard]] static ErrorReport createBleMeshErrorReport(
        Cause cause, std::string deviceIdentifier, int rssiScore,
        ErrorReportErrorDetail::ErrorCode errorCode, ErrorReportErrorDetail::ErrorStep errorStep,
        std::string errorMessage);

    // "" for a value outside the table.
    [[nodiscard]] static std::string toString(Cause value);

    // The report as compact JSON text.
    [[nodiscard]] std::string toJsonString() const;
    // The report as a JSON value whose strings are copied into allocator.
    [[nodiscard]] JSONValue toJson(rapidjson::CrtAllocator& allocator) const;
    // Reads the members above, as the nested classes' fromJson do; an empty pointer after
    // the parser error line naming the member of the wrong kind.
    [[nodiscard]] static std::shared_ptr<ErrorReport> fromJson(const rapidjson::Value& value);
    [[nodiscard]] static std::shared_ptr<ErrorReport> fromJson(const JSONValue& value);

    [[nodiscard]] Cause getCause() const { return cause; }
    [[nodiscard]] const std::string& getSessionToken() const { return sessionToken; }
    [[nodiscard]] std::shared_ptr<ErrorReportProvisioner> getProvisionerDetails() const {
        return provisionerDetails;
    }
    [[nodiscard]] const std::vector<std::shared_ptr<ErrorReportError>>& getErrors() const {
        return errors;
    }

    // Equal members; parts compare by value.
    [[nodiscard]] bool operator==(const ErrorReport& other) const;
    [[nodiscard]] bool operator!=(const ErrorReport& other) const { return !(*this == other); }

private:
    template <class Value>
    static std::shared_ptr<ErrorReport> read(const Value& value);

    Cause cause;
    std::string sessionToken;
    std::shared_ptr<ErrorReportProvisioner> provisionerDetails;
    std::vector<std::shared_ptr<ErrorReportError>> errors;
};

}  // namespace V3API
}  // namespace smarthome
