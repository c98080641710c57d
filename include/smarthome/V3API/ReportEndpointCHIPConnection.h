// A Matter connection of a discovery report: the manual pairing code, the time the
// commissioning window closes and, in automation testing only, the discriminator, read
// from the connection's "protocolData" object.
//
// Reading, in this order (the first failure logs its line, then "create:Cannot construct
// ReportEndpointCHIPConnection, manualPairingCode=<code>,
// commissioningWindowExpirationTimestamp=<text>", and gives an error connection):
// - "manualPairingCode" must be a string holding a valid manual pairing code (below), else
//   "create:reason=InvalidManualPairingCode";
// - only when the Boolean system property "matter.automation.testing" is true is
//   "discriminator" read: when present it must be an unsigned integer, else
//   "create:event=parserError,reason=valueNotAUnsignedInt,action=invalid,key=discriminator";
//   its low 16 bits are kept and "create:FullDiscriminatorProvided=<value>" is logged
//   (info). Otherwise the discriminator is 0 and hasDiscriminator() false;
// - "commissioningWindowExpirationTimestamp" must be a string, else
//   "create:reason=InvalidCommissioningWindowExpirationTimestamp"; it is parsed as local
//   time in the form "%Y-%m-%dT%H:%M:%S" (the whole text), else
//   "create:event=FailedToParseInputTime: <text>"; a time the calendar cannot convert logs
//   the InvalidCommissioningWindowExpirationTimestamp line; success logs
//   "create:CommissioningExpirationTimestampParsed=<text>" (info).
//
// A valid manual pairing code is 11 or 21 decimal digits whose last digit is the Verhoeff
// check digit of the others, and whose first digit (0-7) says which length it has: 4 or
// more announces the vendor and product ids of the 21-digit form, below 4 the 11-digit
// form.
//
// Ownership: held by shared_ptr by its endpoint. Thread-safety: immutable after reading.
#pragma once

#include <chrono>
#include <string>

#include "smarthome/V3API/ReportEndpointConnection.h"

namespace smarthome {
namespace V3API {

class ReportEndpointCHIPConnection : public ReportEndpointConnection {
public:
    using ExpiryTime =
        std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

    // The form of "commissioningWindowExpirationTimestamp" (local time).
    static constexpr const char* kTimestampFormat = "%Y-%m-%dT%H:%M:%S";

    // Type "MATTER", empty id and version.
    ReportEndpointCHIPConnection(std::string manualPairingCode, ExpiryTime expiry,
                                 unsigned short discriminator);
    ReportEndpointCHIPConnection(std::string id, std::string version, std::string manualPairingCode,
                                 ExpiryTime expiry, unsigned short discriminator,
                                 bool discriminatorProvided);

    [[nodiscard]] const std::string& getManualPairingCode() const { return manualPairingCode; }
    [[nodiscard]] ExpiryTime getCommissioningWindowExpiration() const { return expiry; }
    [[nodiscard]] unsigned short getDiscriminator() const { return discriminator; }
    [[nodiscard]] bool hasDiscriminator() const { return discriminatorProvided; }

    // The rule above.
    [[nodiscard]] static bool isValidManualPairingCode(const std::string& code);

protected:
    // The base members, then "protocolData": {"manualPairingCode", "discriminator" (when it
    // was read), "commissioningWindowExpirationTimestamp" (local time, the form above)}.
    void writeMembers(JsonTextWriter& writer) const override;

private:
    std::string manualPairingCode;
    ExpiryTime expiry;
    unsigned short discriminator;
    bool discriminatorProvided;
};

}  // namespace V3API
}  // namespace smarthome
