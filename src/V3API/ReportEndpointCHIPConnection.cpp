#include "smarthome/V3API/ReportEndpointCHIPConnection.h"

#include <ctime>
#include <utility>

namespace smarthome {
namespace V3API {

ReportEndpointCHIPConnection::ReportEndpointCHIPConnection(std::string manualPairingCode,
                                                           ExpiryTime expiry,
                                                           unsigned short discriminator)
    : ReportEndpointCHIPConnection("", "", std::move(manualPairingCode), expiry, discriminator,
                                   false) {}

ReportEndpointCHIPConnection::ReportEndpointCHIPConnection(std::string id, std::string version,
                                                           std::string manualPairingCode,
                                                           ExpiryTime expiry,
                                                           unsigned short discriminator,
                                                           bool discriminatorProvided)
    : ReportEndpointConnection("MATTER", std::move(id), std::move(version)),
      manualPairingCode(std::move(manualPairingCode)),
      expiry(expiry),
      discriminator(discriminator),
      discriminatorProvided(discriminatorProvided) {}

bool ReportEndpointCHIPConnection::isValidManualPairingCode(const std::string& code) {
    // Verhoeff's dihedral-group tables: multiplication and position permutation.
    static constexpr unsigned char kMultiply[10][10] = {
        {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 2, 3, 4, 0, 6, 7, 8, 9, 5},
        {2, 3, 4, 0, 1, 7, 8, 9, 5, 6}, {3, 4, 0, 1, 2, 8, 9, 5, 6, 7},
        {4, 0, 1, 2, 3, 9, 5, 6, 7, 8}, {5, 9, 8, 7, 6, 0, 4, 3, 2, 1},
        {6, 5, 9, 8, 7, 1, 0, 4, 3, 2}, {7, 6, 5, 9, 8, 2, 1, 0, 4, 3},
        {8, 7, 6, 5, 9, 3, 2, 1, 0, 4}, {9, 8, 7, 6, 5, 4, 3, 2, 1, 0}};
    static constexpr unsigned char kPermute[8][10] = {
        {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 5, 7, 6, 2, 8, 3, 0, 9, 4},
        {5, 8, 0, 3, 7, 9, 6, 1, 4, 2}, {8, 9, 1, 6, 0, 4, 3, 5, 2, 7},
        {9, 4, 5, 3, 1, 2, 6, 8, 7, 0}, {4, 2, 8, 6, 5, 7, 3, 9, 1, 0},
        {2, 7, 9, 3, 8, 0, 6, 4, 1, 5}, {7, 0, 4, 6, 9, 1, 3, 2, 5, 8}};
    if (code.size() != 11 && code.size() != 21) {
        return false;
    }
    for (const char c : code) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    const int first = code.front() - '0';
    if (first > 7 || (first >= 4) != (code.size() == 21)) {
        return false;
    }
    unsigned check = 0;
    for (std::size_t position = 0; position < code.size(); ++position) {
        const auto digit = static_cast<unsigned>(code[code.size() - 1 - position] - '0');
        check = kMultiply[check][kPermute[position % 8][digit]];
    }
    return check == 0;
}

void ReportEndpointCHIPConnection::writeMembers(JsonTextWriter& writer) const {
    ReportEndpointConnection::writeMembers(writer);
    writer.Key("protocolData");
    writer.StartObject();
    writer.Key("manualPairingCode");
    writer.String(manualPairingCode.data(),
                  static_cast<rapidjson::SizeType>(manualPairingCode.size()));
    if (discriminatorProvided) {
        writer.Key("discriminator");
        writer.Uint(discriminator);
    }
    // Through seconds, not the system clock's nanoseconds: an expiry far in the future
    // (any year up to 9999 reads) stays in range.
    const auto seconds = static_cast<std::time_t>(
        std::chrono::duration_cast<std::chrono::seconds>(expiry.time_since_epoch()).count());
    std::tm calendar{};
    char text[32] = {};
    if (localtime_r(&seconds, &calendar) != nullptr) {
        static_cast<void>(std::strftime(text, sizeof text, kTimestampFormat, &calendar));
    }
    writer.Key("commissioningWindowExpirationTimestamp");
    writer.String(text);
    writer.EndObject();
}

}  // namespace V3API
}  // namespace smarthome
