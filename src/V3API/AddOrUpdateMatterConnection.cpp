#include "smarthome/V3API/AddOrUpdateMatterConnection.h"

#include <array>

namespace smarthome {
namespace V3API {

namespace {

bool isKnownNetworkInterface(const std::string& name) {
    static const std::array<const char*, 4> known = {"BLE", "WIFI", "ETHERNET", "THREAD"};
    for (const char* candidate : known) {
        if (name == candidate) {
            return true;
        }
    }
    return false;
}

}  // namespace

AddOrUpdateMatterConnection::AddOrUpdateMatterConnection(unsigned short matterProductId,
                                                         unsigned short matterVendorId,
                                                         unsigned short matterDiscriminator,
                                                         const std::string& macAddress,
                                                         const std::string& macNetworkInterface)
    : Connection(ConnectionType::MATTER),
      matterProductId(matterProductId),
      matterVendorId(matterVendorId),
      matterDiscriminator(matterDiscriminator),
      macAddress(macAddress),
      macNetworkInterface(macNetworkInterface) {}

AddOrUpdateMatterConnection::AddOrUpdateMatterConnection(unsigned short matterProductId,
                                                         unsigned short matterVendorId,
                                                         unsigned short matterDiscriminator,
                                                         const std::string& macAddress)
    : AddOrUpdateMatterConnection(matterProductId, matterVendorId, matterDiscriminator, macAddress,
                                  std::string()) {}

JSONValue AddOrUpdateMatterConnection::getJsonObj(rapidjson::CrtAllocator& allocator) const {
    JSONValue object(rapidjson::kObjectType);
    object.AddMember("type", "MATTER", allocator);
    object.AddMember("matterProductId", JSONValue(static_cast<unsigned>(matterProductId)),
                     allocator);
    object.AddMember("matterVendorId", JSONValue(static_cast<unsigned>(matterVendorId)), allocator);
    object.AddMember("matterDiscriminator", JSONValue(static_cast<unsigned>(matterDiscriminator)),
                     allocator);
    if (!macAddress.empty()) {
        object.AddMember("macAddress", JSONValue(macAddress, allocator), allocator);
    }
    if (isKnownNetworkInterface(macNetworkInterface)) {
        object.AddMember("macNetworkInterface", JSONValue(macNetworkInterface, allocator),
                         allocator);
    }
    return object;
}

}  // namespace V3API
}  // namespace smarthome
