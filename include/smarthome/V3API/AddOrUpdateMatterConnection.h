// A Matter connection to add or update: {"type": "MATTER", "matterProductId",
// "matterVendorId", "matterDiscriminator" (unsigned JSON numbers), then "macAddress" only
// when the address is not empty, then "macNetworkInterface" only when the interface is
// exactly "BLE", "WIFI", "ETHERNET" or "THREAD" (case-sensitive; any other text, the empty
// one included, leaves the member out)}.
// Ownership: a plain value. Thread-safety: immutable after construction.
#pragma once

#include <string>

#include "smarthome/V3API/Connection.h"

namespace smarthome {
namespace V3API {

class AddOrUpdateMatterConnection : public Connection {
public:
    AddOrUpdateMatterConnection(unsigned short matterProductId, unsigned short matterVendorId,
                                unsigned short matterDiscriminator, const std::string& macAddress,
                                const std::string& macNetworkInterface);
    // No network interface.
    AddOrUpdateMatterConnection(unsigned short matterProductId, unsigned short matterVendorId,
                                unsigned short matterDiscriminator, const std::string& macAddress);

    [[nodiscard]] JSONValue getJsonObj(rapidjson::CrtAllocator& allocator) const override;

private:
    unsigned short matterProductId;
    unsigned short matterVendorId;
    unsigned short matterDiscriminator;
    std::string macAddress;
    std::string macNetworkInterface;
};

}  // namespace V3API
}  // namespace smarthome
