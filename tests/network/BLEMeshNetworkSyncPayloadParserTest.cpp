#include "smarthome/BLEMeshNetworkSyncPayloadParser.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include "smarthome/JSONUtil.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const std::set<std::string> kNetworkKeys = {"$schema",  "id",      "version",
                                            "meshName", "netKeys", "appKeys",
                                            "scenes",   "groups",  "provisioners"};
const std::set<std::string> kNodeKeys = {"name",
                                         "deviceKey",
                                         "security",
                                         "cid",
                                         "pid",
                                         "vid",
                                         "crpl",
                                         "features",
                                         "elements",
                                         "configComplete",
                                         "networkTransmit",
                                         "defaultTTL",
                                         "blacklisted",
                                         "netKeys",
                                         "appKeys",
                                         "relayRetransmit",
                                         "secureNetworkBeacon"};

std::string readData(const std::string& name) {
    const char* dir = std::getenv("SMARTHOME_TEST_DATA_DIR");
    std::ifstream file(std::string(dir != nullptr ? dir : "tests/data") + "/mesh-cdb/" + name,
                       std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// The kept members of original, in their order, must be exactly the members of simplified,
// with their values (but for the one named changed, whose content is checked separately).
void expectKeptInOrder(const JSONValue& original, const JSONValue& simplified,
                       const std::set<std::string>& removed, const std::string& where,
                       const std::string& changed = "") {
    auto kept = simplified.MemberBegin();
    for (const auto& member : original.GetObject()) {
        const std::string name = member.name.GetString();
        if (removed.count(name) != 0) {
            continue;
        }
        ASSERT_NE(kept, simplified.MemberEnd()) << where << ": " << name << " missing";
        EXPECT_EQ(std::string(kept->name.GetString()), name) << where;
        EXPECT_TRUE(name == changed || kept->value == member.value) << where << ": " << name;
        ++kept;
    }
    EXPECT_EQ(kept, simplified.MemberEnd()) << where << ": a listed key is left";
}

TEST(BLEMeshNetworkSyncPayloadParser, RealExportsLoseExactlyTheListedKeys) {
    for (const char* name :
         {"sig_cdb_example_brian_and_mary.json", "export_dfutest_ios_and_android.json",
          "export_nrf_mesh_android_3_nodes.json", "export_ios_with_network_exclusions.json"}) {
        SCOPED_TRACE(name);
        const std::string payload = R"({"networkInfo":)" + readData(name) + R"(,"other":[1]})";
        JSONDocument original;
        ASSERT_FALSE(JSONUtil::parse(original, payload).IsError());
        JSONDocument simplified;
        ASSERT_FALSE(
            JSONUtil::parse(simplified, BLEMeshNetworkSyncPayloadParser::simplifyPayload(payload))
                .IsError());
        expectKeptInOrder(original, simplified, {}, "root", "networkInfo");
        const JSONValue& network = original["networkInfo"];
        expectKeptInOrder(network, simplified["networkInfo"], kNetworkKeys, "networkInfo", "nodes");
        // Nodes compared one by one: same count, same order, each without the node keys.
        const auto& nodes = network["nodes"].GetArray();
        const auto& simplifiedNodes = simplified["networkInfo"]["nodes"].GetArray();
        ASSERT_EQ(nodes.Size(), simplifiedNodes.Size());
        ASSERT_GT(nodes.Size(), 0U);
        for (rapidjson::SizeType i = 0; i < nodes.Size(); ++i) {
            expectKeptInOrder(nodes[i], simplifiedNodes[i], kNodeKeys, "node " + std::to_string(i));
        }
    }
}

TEST(BLEMeshNetworkSyncPayloadParser, ReturnsThePayloadUnchangedWhenThereIsNothingToSimplify) {
    const std::string withKeys = R"({ "networkInfo" : {"meshName":"home","netKeys":[]}, "x":1 })";
    for (const std::string& payload :
         {withKeys, std::string(R"({"networkInfo":{"meshName":"m","nodes":{}}})"),
          std::string(R"({"networkInfo":[] })"), std::string(R"({"other":{"nodes":[]}})"),
          std::string("[1,2]"), std::string("\"text\"")}) {
        test::LogCapture log;
        EXPECT_EQ(BLEMeshNetworkSyncPayloadParser::simplifyPayload(payload), payload);
        EXPECT_TRUE(log.texts().empty()) << payload;
    }
    test::LogCapture log;
    const std::string notJson = "{\"networkInfo\": {\"nodes\": [}";
    EXPECT_EQ(BLEMeshNetworkSyncPayloadParser::simplifyPayload(notJson), notJson);
    EXPECT_EQ(log.texts(ANDROID_LOG_ERROR, "SmartHome:BLEMeshNetworkSyncPayloadParser"),
              std::vector<std::string>{
                  "simplifyPayload:event=parserError,reason=failedToParse,action=invalid,"
                  "parseError=Invalid value.,source=" +
                  notJson});
}

TEST(BLEMeshNetworkSyncPayloadParser, NodesWithoutListedKeysAndNonObjectNodesStayAsTheyAre) {
    EXPECT_EQ(BLEMeshNetworkSyncPayloadParser::simplifyPayload(
                  R"({"networkInfo":{"id":"x","nodes":[{"UUID":"u","unicastAddress":"0001"},7,)"
                  R"({"name":"n","UUID":"v","cid":"0059","excluded":false}],"meshUUID":"m"}})"),
              R"({"networkInfo":{"nodes":[{"UUID":"u","unicastAddress":"0001"},7,)"
              R"({"UUID":"v","excluded":false}],"meshUUID":"m"}})");
}

TEST(BLEMeshNetworkSyncPayloadParser, DeepAndHugeInputsAreRefusedOrHandledWithoutCrashing) {
    const std::string deep(100000, '[');
    EXPECT_EQ(BLEMeshNetworkSyncPayloadParser::simplifyPayload(deep), deep);
    std::string many = R"({"networkInfo":{"nodes":[)";
    std::string expected = many;
    for (int i = 0; i < 200000; ++i) {
        many += i == 0 ? R"({"name":"n","UUID":"u"})" : R"(,{"name":"n","UUID":"u"})";
        expected += i == 0 ? R"({"UUID":"u"})" : R"(,{"UUID":"u"})";
    }
    many += "]}}";
    expected += "]}}";
    EXPECT_EQ(BLEMeshNetworkSyncPayloadParser::simplifyPayload(many), expected);
}

}  // namespace
}  // namespace smarthome
