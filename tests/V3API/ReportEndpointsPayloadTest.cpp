#include <android/log.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "smarthome/SystemPropertyWrapper.h"
#include "smarthome/V3API/ReportEndpointCHIPConnection.h"
#include "smarthome/V3API/ReportEndpointsPayload.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace V3API {
namespace {

const char* const kManualCode11 = "34970112332";
const char* const kManualCode21 = "749701123365521327694";

JSONDocument parsed(const std::string& text) {
    JSONDocument document;
    EXPECT_FALSE(JSONUtil::parse(document, text).IsError()) << text;
    return document;
}

std::string matterConnection(const std::string& protocolData) {
    return R"({"endpoints":[{"connections":[{"type":"MATTER","id":"m1","version":"1","protocolData":)" +
           protocolData + "}]}]}";
}

// Sets TZ for the test's lifetime (expiry times are local times).
class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        const char* old = std::getenv("TZ");
        saved = old != nullptr ? old : "";
        hadOne = old != nullptr;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZone() {
        hadOne ? setenv("TZ", saved.c_str(), 1) : unsetenv("TZ");
        tzset();
    }

private:
    std::string saved;
    bool hadOne;
};

TEST(ReportEndpointsPayload, ReadsAndWritesBackEveryModelledMember) {
    TimeZone zone("UTC0");
    const std::string report =
        R"({"endpoints":[)"
        R"({"connections":[{"type":"ZIGBEE","id":"z1","version":"3","macAddress":"00:11"},)"
        R"({"type":"MATTER","id":"m1","version":"1","protocolData":{"manualPairingCode":"34970112332",)"
        R"("commissioningWindowExpirationTimestamp":"2026-03-29T01:30:00"}}],)"
        R"("credentials":{"discoveryKey":"d","controlKey":"c"},)"
        R"("identifiers":{"customIdentifier":"ci","serialNumber":"sn","macAddress":"mac"}},)"
        R"({"connections":[],"identifiers":{"serialNumber":"only"}},)"
        R"({"connections":[{"type":"BLE"}]}]})";
    const auto payload = ReportEndpointsPayload::create(parsed(report));
    ASSERT_FALSE(payload->hasError());
    ASSERT_EQ(payload->getEndpoints().size(), 3U);
    const auto& first = *payload->getEndpoints()[0];
    EXPECT_EQ(first.getConnections()[0]->getMacAddress(), "00:11");
    EXPECT_EQ(*first.getIdentifiers()->getSerialNumber(), "sn");
    const auto* matter =
        dynamic_cast<const ReportEndpointCHIPConnection*>(first.getConnections()[1].get());
    ASSERT_NE(matter, nullptr);
    EXPECT_EQ(matter->getCommissioningWindowExpiration().time_since_epoch().count(),
              1774747800LL * 1000000);
    EXPECT_FALSE(matter->hasDiscriminator());
    const auto& second = *payload->getEndpoints()[1];
    EXPECT_FALSE(second.getCredentials());
    EXPECT_FALSE(second.getIdentifiers()->getMacAddress());
    EXPECT_TRUE(parsed(payload->toJsonString()) == parsed(report)) << payload->toJsonString();
    // The same from a document with RapidJSON's default allocator.
    rapidjson::Document pooled;
    pooled.Parse(report.c_str());
    EXPECT_EQ(ReportEndpointsPayload::create(pooled)->toJsonString(), payload->toJsonString());
}

TEST(ReportEndpointsPayload, AnyBadPartSpoilsThePayloadAfterOneLine) {
    struct Case {
        std::string json;
        const char* tag;
        std::vector<std::string> lines;
    };
    const auto notArray = [](const char* key) {
        return std::string("create:event=parserError,reason=valueNotAnArray,action=invalid,key=") +
               key;
    };
    const auto notString = [](const char* key) {
        return std::string("create:event=parserError,reason=valueNotAString,action=invalid,key=") +
               key;
    };
    const Case cases[] = {
        {"[]", "ReportEndpointsPayload", {notArray("endpoints")}},
        {R"({"endpoints":null})", "ReportEndpointsPayload", {notArray("endpoints")}},
        {R"({"endpoints":[{"connections":[]},{"connections":{}}]})",
         "ReportEndpoint",
         {notArray("connections")}},
        {R"({"endpoints":[{}]})", "ReportEndpoint", {notArray("connections")}},
        {R"({"endpoints":[{"connections":[],"identifiers":{"serialNumber":12}}]})",
         "Identifiers",
         {notString("serialNumber")}},
        {R"({"endpoints":[{"connections":[],"credentials":{"controlKey":[]}}]})",
         "Credentials",
         {notString("controlKey")}},
        {R"({"endpoints":[{"connections":[],"credentials":"key"}]})",
         "Credentials",
         {"create:event=parserError,reason=valueNotAnObject,action=invalid,key=credentials"}},
        {R"({"endpoints":[{"connections":[null]}]})",
         "ReportEndpointConnection",
         {"create:reason=NullOrInvalidConnectionObject"}},
        {R"({"endpoints":[{"connections":[{"id":5}]}]})",
         "ReportEndpointConnection",
         {notString("id")}},
    };
    for (const auto& c : cases) {
        test::LogCapture log;
        const auto payload = ReportEndpointsPayload::create(parsed(c.json));
        EXPECT_TRUE(payload->hasError()) << c.json;
        EXPECT_TRUE(payload->getEndpoints().empty());
        EXPECT_EQ(log.texts(ANDROID_LOG_ERROR, std::string("SmartHome:") + c.tag), c.lines)
            << c.json;
        EXPECT_EQ(log.texts().size(), c.lines.size()) << c.json;
    }
}

TEST(ReportEndpointsPayload, UnknownConnectionMembersAreLoggedAndSkipped) {
    test::LogCapture log;
    const auto payload = ReportEndpointsPayload::create(
        parsed(R"({"endpoints":[{"connections":[{"type":"BLE","rssi":-40,"id":"b"}]}]})"));
    ASSERT_FALSE(payload->hasError());
    EXPECT_EQ(payload->getEndpoints()[0]->getConnections()[0]->getId(), "b");
    EXPECT_EQ(log.texts(ANDROID_LOG_WARN, "SmartHome:ReportEndpointConnection"),
              std::vector<std::string>{"create:unhandledKeyInJSONObject,key=rssi"});
}

TEST(ReportEndpointCHIPConnection, ManualPairingCodesNeedLengthPrefixAndCheckDigit) {
    for (const std::string valid : {kManualCode11, kManualCode21}) {
        EXPECT_TRUE(ReportEndpointCHIPConnection::isValidManualPairingCode(valid)) << valid;
        // The check digit catches every single-digit error and every swap of neighbours.
        for (std::size_t i = 0; i < valid.size(); ++i) {
            for (char digit = '0'; digit <= '9'; ++digit) {
                std::string changed = valid;
                changed[i] = digit;
                EXPECT_EQ(ReportEndpointCHIPConnection::isValidManualPairingCode(changed),
                          changed == valid)
                    << changed;
            }
            if (i + 1 < valid.size() && valid[i] != valid[i + 1]) {
                std::string swapped = valid;
                std::swap(swapped[i], swapped[i + 1]);
                EXPECT_FALSE(ReportEndpointCHIPConnection::isValidManualPairingCode(swapped))
                    << swapped;
            }
        }
    }
    // Every prefix has exactly one check digit, and only a first digit announcing its length.
    unsigned seed = 12345;
    for (int round = 0; round < 400; ++round) {
        const std::size_t length = round % 2 == 0 ? 11 : 21;
        std::string code;
        for (std::size_t i = 0; i + 1 < length; ++i) {
            seed = seed * 1103515245U + 12345U;
            code.push_back(static_cast<char>('0' + (seed >> 16) % 10));
        }
        const int first = code[0] - '0';
        int valid = 0;
        for (char check = '0'; check <= '9'; ++check) {
            valid += ReportEndpointCHIPConnection::isValidManualPairingCode(code + check) ? 1 : 0;
        }
        EXPECT_EQ(valid, first <= 7 && (first >= 4) == (length == 21) ? 1 : 0) << code;
    }
    // 21 digits announced by a first digit below 4, 11 by one of 4 or more (check digits right).
    for (const char* invalid : {"", "3497011233", "3497-112332", "74970112336",
                                "349701123325521327694", "84970112332", " 34970112332"}) {
        EXPECT_FALSE(ReportEndpointCHIPConnection::isValidManualPairingCode(invalid)) << invalid;
    }
}

TEST(ReportEndpointCHIPConnection, EachBadMatterFieldIsNamedBeforeTheConstructLine) {
    struct Case {
        std::string protocolData;
        std::string reason;
        std::string code;
        std::string expiry;
    };
    const Case cases[] = {
        {"{}", "create:reason=InvalidManualPairingCode", "", ""},
        {R"({"manualPairingCode":34970112332})", "create:reason=InvalidManualPairingCode", "", ""},
        {R"({"manualPairingCode":"34970112333"})", "create:reason=InvalidManualPairingCode",
         "34970112333", ""},
        {R"({"manualPairingCode":"34970112332"})",
         "create:reason=InvalidCommissioningWindowExpirationTimestamp", "34970112332", ""},
        {R"({"manualPairingCode":"34970112332","commissioningWindowExpirationTimestamp":"2026-03-29 01:30:00"})",
         "create:event=FailedToParseInputTime: 2026-03-29 01:30:00", "34970112332",
         "2026-03-29 01:30:00"},
        {R"({"manualPairingCode":"34970112332","commissioningWindowExpirationTimestamp":"2026-03-29T01:30:00Z"})",
         "create:event=FailedToParseInputTime: 2026-03-29T01:30:00Z", "34970112332",
         "2026-03-29T01:30:00Z"},
    };
    for (const auto& c : cases) {
        test::LogCapture log;
        EXPECT_TRUE(
            ReportEndpointsPayload::create(parsed(matterConnection(c.protocolData)))->hasError());
        EXPECT_EQ(log.texts(ANDROID_LOG_ERROR, "SmartHome:ReportEndpointConnection"),
                  (std::vector<std::string>{
                      c.reason,
                      "create:Cannot construct ReportEndpointCHIPConnection, manualPairingCode=" +
                          c.code + ", commissioningWindowExpirationTimestamp=" + c.expiry}))
            << c.protocolData;
    }
}

TEST(ReportEndpointCHIPConnection, ExpiryIsLocalTimeAndTheDiscriminatorNeedsTestingMode) {
    const std::string data =
        R"({"manualPairingCode":"749701123365521327694","discriminator":69632,)"
        R"("commissioningWindowExpirationTimestamp":"2026-01-15T12:00:00"})";
    const auto read = [&data]() {
        const auto payload = ReportEndpointsPayload::create(parsed(matterConnection(data)));
        EXPECT_FALSE(payload->hasError());
        return std::dynamic_pointer_cast<ReportEndpointCHIPConnection>(
            payload->getEndpoints().at(0)->getConnections().at(0));
    };
    {
        TimeZone zone("CET-1");
        test::LogCapture log;
        const auto connection = read();
        ASSERT_TRUE(connection);
        EXPECT_EQ(connection->getCommissioningWindowExpiration().time_since_epoch().count(),
                  (1768478400LL - 3600) * 1000000);
        EXPECT_FALSE(connection->hasDiscriminator());
        EXPECT_EQ(log.texts(ANDROID_LOG_INFO, "SmartHome:ReportEndpointConnection"),
                  std::vector<std::string>{
                      "create:CommissioningExpirationTimestampParsed=2026-01-15T12:00:00"});
    }
    {
        TimeZone zone("UTC0");
        const auto payload = ReportEndpointsPayload::create(parsed(matterConnection(
            R"({"manualPairingCode":"34970112332","commissioningWindowExpirationTimestamp":"9999-12-31T23:59:59"})")));
        ASSERT_FALSE(payload->hasError());
        const auto connection = std::dynamic_pointer_cast<ReportEndpointCHIPConnection>(
            payload->getEndpoints().at(0)->getConnections().at(0));
        EXPECT_EQ(connection->getCommissioningWindowExpiration().time_since_epoch().count(),
                  253402300799LL * 1000000);
        EXPECT_NE(payload->toJsonString().find("9999-12-31T23:59:59"), std::string::npos);
    }
    const SystemPropertyWrapper properties;
    ASSERT_TRUE(properties.setSystemProperty("matter.automation.testing", "true"));
    test::LogCapture log;
    const auto connection = read();
    ASSERT_TRUE(connection);
    EXPECT_TRUE(connection->hasDiscriminator());
    EXPECT_EQ(connection->getDiscriminator(), 4096);  // 69632 = 0x11000: the low 16 bits kept
    EXPECT_EQ(log.texts(ANDROID_LOG_INFO, "SmartHome:ReportEndpointConnection").at(0),
              "create:FullDiscriminatorProvided=4096");
    log.clear();
    EXPECT_TRUE(
        ReportEndpointsPayload::create(
            parsed(matterConnection(R"({"manualPairingCode":"34970112332","discriminator":-1})")))
            ->hasError());
    EXPECT_EQ(
        log.texts(ANDROID_LOG_ERROR, "SmartHome:ReportEndpointConnection").at(0),
        "create:event=parserError,reason=valueNotAUnsignedInt,action=invalid,key=discriminator");
    ASSERT_TRUE(properties.setSystemProperty("matter.automation.testing", "false"));
}

}  // namespace
}  // namespace V3API
}  // namespace smarthome
