#include "smarthome/HubCapabilityConfigUtils.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const char* const kTag = "SmartHome:HubCapabilityConfigUtils";

const char* const kZigbee =
    R"({"type":"ZIGBEE","maxVersion":"3.0","commissioneeTypes":{"deviceTypes":["LIGHT"],)"
    R"("displayCategories":["LIGHT","SWITCH"]}})";
const char* const kMatter =
    R"({"type":"MATTER","maxVersion":"1.2","commissioneeTypes":{"displayCategories":["PLUG"]}})";

JSONDocument parsed(const std::string& text) {
    JSONDocument document;
    EXPECT_FALSE(JSONUtil::parse(document, text).IsError()) << text;
    return document;
}

std::vector<std::string> errors(const test::LogCapture& log) {
    return log.texts(ANDROID_LOG_ERROR, kTag);
}

TEST(HubCapabilityConfigUtils, ValidationChecksInOrderAndNamesTheFirstFailure) {
    const std::string notString =
        "validateApplicationProtocol:event=parserError,reason=valueNotAString,"
        "action=invalid,key=";
    struct Case {
        const char* json;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {kZigbee, {}},
        {kMatter, {}},
        {R"([])", {"validateApplicationProtocol:ApplicationProtocolInvalid"}},
        {R"({"maxVersion":3,"type":7})",
         {notString + "maxVersion", "validateApplicationProtocol:FailedToParseMaxVersion"}},
        {R"({"maxVersion":"3"})",
         {notString + "type", "validateApplicationProtocol:FailedToParseProtocolType"}},
        {R"({"maxVersion":"3","type":"Z","commissioneeTypes":[]})",
         {"validateApplicationProtocol:event=parserError,reason=valueNotAnObject,action=invalid,"
          "key=commissioneeTypes",
          "validateApplicationProtocol:CommissioneeTypesMissing"}},
        {R"({"maxVersion":"3","type":"Z","commissioneeTypes":{"deviceTypes":[]}})",
         {"validateCommissioneeTypes:event=parserError,reason=valueNotAnArray,action=invalid,"
          "key=displayCategories",
          "validateCommissioneeTypes:Display categories invalid"}},
        {R"({"maxVersion":"3","type":"Z","commissioneeTypes":{"displayCategories":["A",1]}})",
         {"validateCommissioneeTypes:InvalidDisplayCategory"}},
        {R"({"maxVersion":"3","type":"Z","commissioneeTypes":{"displayCategories":[],"deviceTypes":[null]}})",
         {"validateCommissioneeTypes:InvalidDeviceType"}},
        {R"({"maxVersion":"3","type":"Z","commissioneeTypes":{"displayCategories":[],"deviceTypes":"any"}})",
         {}},
    };
    for (const auto& c : cases) {
        test::LogCapture log;
        EXPECT_EQ(HubCapabilityConfigUtils::validateApplicationProtocol(parsed(c.json)),
                  c.lines.empty())
            << c.json;
        EXPECT_EQ(errors(log), c.lines) << c.json;
    }
    test::LogCapture log;
    EXPECT_FALSE(HubCapabilityConfigUtils::validateCommissioneeTypes(parsed("7")));
    EXPECT_EQ(errors(log),
              std::vector<std::string>{"validateCommissioneeTypes:CommissioneeTypesInvalid"});
    rapidjson::Document pooled;
    pooled.Parse(kZigbee);
    EXPECT_TRUE(HubCapabilityConfigUtils::validateApplicationProtocol(pooled));
    EXPECT_TRUE(HubCapabilityConfigUtils::validateCommissioneeTypes(pooled["commissioneeTypes"]));
    EXPECT_FALSE(HubCapabilityConfigUtils::validateCommissioneeTypes(pooled["type"]));
    EXPECT_EQ(HubCapabilityConfigUtils::parseCommissioneeTypes(pooled).deviceTypes,
              std::vector<std::string>{"LIGHT"});
}

TEST(HubCapabilityConfigUtils, ReadsTheFileAndCountsCompletePasses) {
    test::TempDir dir;
    struct Case {
        std::string file;  // "" for a missing file
        bool complete;
        std::vector<std::string> protocols;
        std::vector<std::string> lines;
    };
    const std::string prefix = "parseProtocolObjectsFromFile:parseProtocolObjectsFromFile: ";
    const Case cases[] = {
        {std::string(R"({"applicationProtocols":[)") + kZigbee + "," + kMatter + "]}",
         true,
         {kZigbee, kMatter},
         {}},
        {"", false, {}, {prefix + "FailedToParseConfigFile"}},
        {"{not json", false, {}, {prefix + "FailedToParseConfigFile"}},
        {R"({"applicationProtocols":{}})",
         false,
         {},
         {prefix + "FailedToParseApplicationProtocols"}},
        {std::string(R"({"applicationProtocols":[7,)") + kMatter + "]}",
         false,
         {kMatter},
         {"validateApplicationProtocol:ApplicationProtocolInvalid",
          prefix + "FailedToValidateApplicationProtocol"}},
    };
    int round = 0;
    for (const auto& c : cases) {
        const std::string path = dir.file("config" + std::to_string(round++) + ".json");
        if (!c.file.empty()) {
            ASSERT_TRUE(test::writeFile(path, c.file));
        }
        test::LogCapture log;
        test::MetricsCapture metrics;
        std::vector<std::string> protocols;
        EXPECT_EQ(HubCapabilityConfigUtils::parseProtocolObjectsFromFile(path, protocols),
                  c.complete);
        EXPECT_EQ(protocols, c.protocols) << c.file;
        EXPECT_EQ(log.texts(ANDROID_LOG_ERROR, kTag), c.lines) << c.file;
        ASSERT_EQ(metrics.records().size(), 1U);
        EXPECT_EQ(metrics.records()[0].record, std::string("CapabilityConfigParsingSuccess=") +
                                                   (c.complete ? "1" : "0") + ";IN");
    }
}

TEST(HubCapabilityConfigUtils, CommissioneeTypesOfTheFirstMatchingProtocol) {
    test::TempDir dir;
    const std::string path = dir.file("config.json");
    ASSERT_TRUE(test::writeFile(
        path,
        std::string(R"({"applicationProtocols":[5,{"type":"MATTERX"},)") + kZigbee + "," + kMatter +
            R"(,{"type":"MATTER","maxVersion":"9","commissioneeTypes":{"displayCategories":["X"]}},)"
            R"({"type":"ODD","commissioneeTypes":{"deviceTypes":["A",1,"B"],"displayCategories":[2,"C"]}},)"
            R"({"type":"BARE"}]})"));
    struct Case {
        const char* type;
        std::vector<std::string> deviceTypes;
        std::vector<std::string> displayCategories;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"ZIGBEE", {"LIGHT"}, {"LIGHT", "SWITCH"}, {}},
        {"MATTER", {}, {"PLUG"}, {}},
        {"matter", {}, {}, {}},
        {"ODD",
         {"A", "B"},
         {"C"},
         {"parseCommissioneeTypes:Device type is not string",
          "parseCommissioneeTypes:Display category is not string is not string"}},
        {"BARE",
         {},
         {},
         {"parseCommissioneeTypes:Invalid application protocol format: missing commissioneeTypes"}},
    };
    for (const auto& c : cases) {
        test::LogCapture log;
        const CommissioneeTypes types =
            HubCapabilityConfigUtils::getCommissioneeTypesFromConfig(path, c.type);
        EXPECT_EQ(types.deviceTypes, c.deviceTypes) << c.type;
        EXPECT_EQ(types.displayCategories, c.displayCategories) << c.type;
        EXPECT_EQ(errors(log), c.lines) << c.type;
    }
    test::LogCapture log;
    EXPECT_TRUE(
        HubCapabilityConfigUtils::parseCommissioneeTypes(parsed(R"({"commissioneeTypes":{}})"))
            .displayCategories.empty());
    EXPECT_EQ(errors(log),
              std::vector<std::string>{"parseCommissioneeTypes:Invalid commissionee types "
                                       "format: missing display categories"});
    log.clear();
    ASSERT_TRUE(test::writeFile(path, R"({"applicationProtocols":"none"})"));
    EXPECT_TRUE(HubCapabilityConfigUtils::getCommissioneeTypesFromConfig(path, "ZIGBEE")
                    .displayCategories.empty());
    EXPECT_EQ(errors(log),
              (std::vector<std::string>{
                  "getCommissioneeTypesFromConfig:event=parserError,reason=valueNotAnArray,"
                  "action=invalid,key=applicationProtocols",
                  "getCommissioneeTypesFromConfig:parseProtocolObjectsFromFile: "
                  "FailedToParseApplicationProtocols"}));
    log.clear();
    EXPECT_TRUE(HubCapabilityConfigUtils::getCommissioneeTypesFromConfig(dir.file("none"), "ZIGBEE")
                    .displayCategories.empty());
    EXPECT_EQ(errors(log),
              std::vector<std::string>{"getCommissioneeTypesFromConfig:"
                                       "getCommissioneeTypesFromConfig: FailedToParseConfigFile"});
}

TEST(HubCapabilityConfigUtils, HubConfigurationHoldsTheValidProtocolsAndTheFeatures) {
    const std::string features =
        R"("supportedFeatures":{"preferredDirectiveNamespaceName":"SmartCloud.HubRequest",)"
        R"("smartCloudOwnershipMode":"EXCLUSIVE","matter":{"enhancedSetupMode":true}}})";
    test::LogCapture log;
    EXPECT_EQ(
        HubCapabilityConfigUtils::createHubConfiguration(
            {kZigbee, "{oops", R"({"type":"X"})", kMatter}),
        std::string(R"({"applicationProtocols":[)") + kZigbee + "," + kMatter + "]," + features);
    EXPECT_EQ(errors(log),
              (std::vector<std::string>{
                  "createHubConfiguration:event=parserError,reason=failedToParse,action=invalid,"
                  "parseError=Missing a name for object member.,source={oops",
                  "createHubConfiguration:FailedToParseConfig",
                  "validateApplicationProtocol:event=parserError,reason=valueNotAString,"
                  "action=invalid,key=maxVersion",
                  "validateApplicationProtocol:FailedToParseMaxVersion",
                  "createHubConfiguration:Protocol is invalid"}));
    EXPECT_EQ(HubCapabilityConfigUtils::createHubConfiguration({}),
              R"({"applicationProtocols":[],)" + features);
}

}  // namespace
}  // namespace smarthome
