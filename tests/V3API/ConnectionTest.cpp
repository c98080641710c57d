#include <android/log.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "smarthome/V3API/AddOrUpdateMatterConnection.h"
#include "smarthome/V3API/BLE.h"
#include "smarthome/V3API/BLUETOOTH_MESH.h"
#include "smarthome/V3API/LOCALSKILL.h"
#include "smarthome/V3API/TCP_IP.h"
#include "smarthome/V3API/ZIGBEE.h"
#include "smarthome/V3API/ZWAVE.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace V3API {
namespace {

std::string written(const Connection& connection) {
    rapidjson::CrtAllocator allocator;
    return JSONUtil::getStringForJSON(connection.getJsonObj(allocator));
}

TEST(Connection, EachFormWritesItsMembersInOrder) {
    struct Case {
        std::function<std::unique_ptr<Connection>()> make;
        const char* json;
    };
    const Case cases[] = {
        {[] { return std::make_unique<TCP_IP>("aa:bb"); },
         R"({"type":"TCP_IP","macAddress":"aa:bb"})"},
        {[] { return std::make_unique<ZIGBEE>("00:11"); },
         R"({"type":"ZIGBEE","macAddress":"00:11"})"},
        {[] { return std::make_unique<BLE>("cc:dd"); }, R"({"type":"BLE","macAddress":"cc:dd"})"},
        {[] { return std::make_unique<ZWAVE>("h1", "n2"); },
         R"({"type":"ZWAVE","homeId":"h1","nodeId":"n2"})"},
        {[] { return std::make_unique<BLUETOOTH_MESH>("u-1"); },
         R"({"type":"BLUETOOTH_MESH","deviceUuid":"u-1"})"},
        {[] { return std::make_unique<LOCALSKILL>("skill", "2.1"); },
         R"({"type":"LOCALSKILL","id":"skill","version":"2.1"})"},
        {[] {
             return std::make_unique<AddOrUpdateMatterConnection>(65535, 4937, 3840, "m:1",
                                                                  "THREAD");
         },
         R"({"type":"MATTER","matterProductId":65535,"matterVendorId":4937,"matterDiscriminator":3840,)"
         R"("macAddress":"m:1","macNetworkInterface":"THREAD"})"},
        // Interfaces match case-sensitively; anything else, the empty one included, is left out.
        {[] { return std::make_unique<AddOrUpdateMatterConnection>(1, 2, 3, "m:1", "wifi"); },
         R"({"type":"MATTER","matterProductId":1,"matterVendorId":2,"matterDiscriminator":3,"macAddress":"m:1"})"},
        {[] { return std::make_unique<AddOrUpdateMatterConnection>(1, 2, 3, "", "WIFI"); },
         R"({"type":"MATTER","matterProductId":1,"matterVendorId":2,"matterDiscriminator":3,)"
         R"("macNetworkInterface":"WIFI"})"},
        {[] { return std::make_unique<AddOrUpdateMatterConnection>(0, 0, 0, ""); },
         R"({"type":"MATTER","matterProductId":0,"matterVendorId":0,"matterDiscriminator":0})"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(written(*c.make()), c.json);
    }
    for (const char* known : {"BLE", "ETHERNET"}) {
        EXPECT_NE(written(AddOrUpdateMatterConnection(1, 2, 3, "", known)).find(known),
                  std::string::npos);
    }
}

TEST(Connection, AnUnknownTypeIsWrittenUnknownWithAWarning) {
    test::LogCapture log;
    EXPECT_EQ(Connection::toString(Connection::ConnectionType::MATTER), "MATTER");
    EXPECT_TRUE(log.texts().empty());
    EXPECT_EQ(Connection::toString(static_cast<Connection::ConnectionType>(7)), "UNKNOWN");
    EXPECT_EQ(log.texts(ANDROID_LOG_WARN, "SmartHome:Connections"),
              std::vector<std::string>{"toString:UNKNOWN"});
}

}  // namespace
}  // namespace V3API
}  // namespace smarthome
