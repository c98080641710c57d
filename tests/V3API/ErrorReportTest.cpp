#include <android/log.h>
#include <gtest/gtest.h>

#include <functional>

#include "smarthome/V3API/ErrorReport.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace V3API {
namespace {

using Detail = ErrorReportErrorDetail;
using Protocol = ErrorReportErrorProtocol;
using Transport = ErrorReportErrorProtocolTransport;
using EndpointId = ErrorReportErrorEndpointId;

// The wire vocabulary, value by value; one past the last value writes "".
template <class Enum>
void expectStrings(std::string (*toString)(Enum), std::vector<std::string> expected) {
    expected.emplace_back("");
    for (std::size_t value = 0; value < expected.size(); ++value) {
        EXPECT_EQ(toString(static_cast<Enum>(value)), expected[value]) << "value " << value;
    }
}

TEST(ErrorReport, EnumerationsWriteTheirWireStrings) {
    expectStrings<ErrorReport::Cause>(ErrorReport::toString,
                                      {"UNKNOWN", "CUSTOMER_INITIATED", "ZQS"});
    expectStrings<Detail::ErrorCode>(
        Detail::toString, {"INVALID", "NETWORK_NOT_READY", "INTERNAL_ERROR", "NO_DEVICE_FOUND",
                           "ENDPOINT_DISCONNECTED", "ENDPOINT_BUSY", "DEVICE_TYPE_NOT_SUPPORTED",
                           "DEVICE_CAPABILITIES_NOT_SUPPORTED", "ENDPOINT_OUT_OF_RANGE",
                           "FAILED_TO_CONNECT", "PROVISIONER_BUSY", "SCAN_FAILURE", "TIMEOUT"});
    expectStrings<Detail::ErrorStep>(
        Detail::toString,
        {"INVALID", "PREREQUISITION", "SCAN", "CONNECT", "PROVISION", "DEVICE_VERIFICATION"});
    expectStrings<EndpointId::IdentifierType>(
        EndpointId::toString,
        {"UNKNOWN", "BLE_MAC_ADDRESS", "ZIGBEE_MAC_ADDRESS", "BLUETOOTH_MESH_UUID"});
    expectStrings<Protocol::ProtocolType>(Protocol::toString,
                                          {"OTHER", "ZIGBEE", "BLUETOOTH_MESH"});
    expectStrings<Protocol::ProtocolName>(Protocol::toString, {"UNKNWON", "PHILIPS_BLE"});
    expectStrings<Transport::TransportType>(
        Transport::toString, {"UNKNOWN", "ZIGBEE_700MHZ", "ZIGBEE_800MHZ", "ZIGBEE_900MHZ",
                              "ZIGBEE_2_4GHZ", "ZIGBEE", "BLUETOOTH_MESH"});
}

TEST(ErrorReport, FactoriesFillTheRadiosValuesInMemberOrder) {
    EXPECT_EQ(
        ErrorReport::createZigbeeErrorReport(ErrorReport::Cause::ZQS, "00:11", -60,
                                             Detail::ErrorCode::TIMEOUT, Detail::ErrorStep::CONNECT,
                                             "no answer")
            .toJsonString(),
        R"({"cause":"ZQS","sessionToken":"","provisionerDetails":{"type":"","manufacturer":"",)"
        R"("model":"","serialNumber":"","softwareVersion":""},"errors":[{"applicationProtocol":)"
        R"({"type":"ZIGBEE","name":"UNKNWON","version":"","transportProtocol":{"type":)"
        R"("ZIGBEE_2_4GHZ","version":""}},"errorDetail":{"errorCode":"TIMEOUT","errorStep":)"
        R"("CONNECT","errorMessage":"no answer"},"endpointDetails":{"identifiers":[{"type":)"
        R"("ZIGBEE_MAC_ADDRESS","value":"00:11"}],"rssiScore":-60,"softwareVersion":"",)"
        R"("model":"","manufacturer":""}}]})");
    const auto mesh = ErrorReport::createBleMeshErrorReport(ErrorReport::Cause::UNKNOWN, "uuid", 0,
                                                            Detail::ErrorCode::SCAN_FAILURE,
                                                            Detail::ErrorStep::SCAN, "");
    const auto& error = *mesh.getErrors().at(0);
    EXPECT_EQ(error.getApplicationProtocol()->getType(), Protocol::ProtocolType::BLUETOOTH_MESH);
    EXPECT_EQ(error.getApplicationProtocol()->getTransportProtocol()->getType(),
              Transport::TransportType::BLUETOOTH_MESH);
    EXPECT_EQ(error.getEndpointDetails()->getIdentifiers().at(0)->getType(),
              EndpointId::IdentifierType::BLUETOOTH_MESH_UUID);
}

std::shared_ptr<ErrorReport> readBack(const std::string& text) {
    JSONDocument document;
    if (JSONUtil::parse(document, text).IsError()) {
        return nullptr;
    }
    return ErrorReport::fromJson(document);
}

TEST(ErrorReport, EveryReportReadsBackEqual) {
    int checked = 0;
    for (int cause = 0; cause < 3; ++cause) {
        for (int code = 0; code < 13; ++code) {
            for (int step = 0; step < 6; ++step) {
                const int protocol = (cause + code) % 3;
                const int transport = (code + step) % 7;
                const ErrorReport report(
                    static_cast<ErrorReport::Cause>(cause),
                    static_cast<Protocol::ProtocolType>(protocol),
                    static_cast<Protocol::ProtocolName>(step % 2),
                    static_cast<Transport::TransportType>(transport),
                    {std::make_shared<EndpointId>(static_cast<EndpointId::IdentifierType>(code % 4),
                                                  "id\"" + std::to_string(code)),
                     std::make_shared<EndpointId>(EndpointId::IdentifierType::UNKNOWN, "")},
                    -code, static_cast<Detail::ErrorCode>(code),
                    static_cast<Detail::ErrorStep>(step), "message\n" + std::to_string(step));
                const auto back = readBack(report.toJsonString());
                ASSERT_TRUE(back);
                EXPECT_TRUE(*back == report) << report.toJsonString();
                ++checked;
            }
        }
    }
    EXPECT_EQ(checked, 3 * 13 * 6);
    // A report built from parts, with a provisioner and two errors (one without parts).
    const ErrorReport parts(
        ErrorReport::Cause::CUSTOMER_INITIATED, "session",
        std::make_shared<ErrorReportProvisioner>("hub", "maker", "m1", "sn", "1.0"),
        {std::make_shared<ErrorReportError>(nullptr, nullptr, nullptr),
         ErrorReport::createZigbeeErrorReport(ErrorReport::Cause::ZQS, "a", 1,
                                              Detail::ErrorCode::INVALID, Detail::ErrorStep::SCAN,
                                              "b")
             .getErrors()
             .at(0)});
    const auto back = readBack(parts.toJsonString());
    ASSERT_TRUE(back);
    EXPECT_TRUE(*back == parts);
    EXPECT_FALSE(*back ==
                 ErrorReport(ErrorReport::Cause::CUSTOMER_INITIATED, "session", nullptr, {}));
}

TEST(ErrorReport, ReportsDifferingInAnyOneValueAreUnequal) {
    const auto make = [](int changed) {
        const auto text = [changed](int which, const char* value) {
            return std::string(value) + (changed == which ? "'" : "");
        };
        const auto pick = [changed](int which) { return changed == which ? 1 : 0; };
        return ErrorReport(
            static_cast<ErrorReport::Cause>(pick(0)), text(1, "session"),
            std::make_shared<ErrorReportProvisioner>(text(2, "t"), text(3, "m"), text(4, "model"),
                                                     text(5, "sn"), text(6, "sw")),
            {std::make_shared<ErrorReportError>(
                std::make_shared<Protocol>(
                    static_cast<Protocol::ProtocolType>(pick(7)),
                    static_cast<Protocol::ProtocolName>(pick(8)), text(9, "1"),
                    std::make_shared<Transport>(static_cast<Transport::TransportType>(pick(10)),
                                                text(11, "2"))),
                std::make_shared<Detail>(static_cast<Detail::ErrorCode>(pick(12)),
                                         static_cast<Detail::ErrorStep>(pick(13)), text(14, "msg")),
                std::make_shared<ErrorReportErrorEndpoint>(
                    std::vector<std::shared_ptr<EndpointId>>{std::make_shared<EndpointId>(
                        static_cast<EndpointId::IdentifierType>(pick(15)), text(16, "id"))},
                    -50 + pick(17), text(18, "v"), text(19, "model"), text(20, "maker")))});
    };
    const ErrorReport base = make(-1);
    EXPECT_TRUE(base == make(-1));
    for (int changed = 0; changed <= 20; ++changed) {
        EXPECT_TRUE(base != make(changed)) << "value " << changed;
    }
}

TEST(ErrorReport, AMemberOfTheWrongKindIsLoggedAndRefused) {
    struct Case {
        const char* json;
        const char* line;
        const char* tag;
    };
    const Case cases[] = {
        {R"({"cause":1})",
         "fromJson:event=parserError,reason=valueNotAString,action=invalid,key=cause",
         "ErrorReport"},
        {R"({"provisionerDetails":[]})",
         "fromJson:event=parserError,reason=valueNotAnObject,action=invalid,key=provisionerDetails",
         "ErrorReport"},
        {R"({"errors":{}})",
         "fromJson:event=parserError,reason=valueNotAnArray,action=invalid,key=errors",
         "ErrorReport"},
        {R"({"errors":[{"errorDetail":{"errorMessage":false}}]})",
         "fromJson:event=parserError,reason=valueNotAString,action=invalid,key=errorMessage",
         "ErrorReportErrorDetail"},
        {R"({"errors":[{"endpointDetails":{"rssiScore":"-40"}}]})",
         "fromJson:event=parserError,reason=valueNotAnInt,action=invalid,key=rssiScore",
         "ErrorReportErrorEndpoint"},
        {R"({"errors":[{"endpointDetails":{"identifiers":[{"value":7}]}}]})",
         "fromJson:event=parserError,reason=valueNotAString,action=invalid,key=value",
         "ErrorReportErrorEndpointId"},
        {R"({"errors":[{"applicationProtocol":{"transportProtocol":{"version":1.5}}}]})",
         "fromJson:event=parserError,reason=valueNotAString,action=invalid,key=version",
         "ErrorReportErrorProtocolTransport"},
        {R"({"errors":[7]})",
         "fromJson:event=parserError,reason=valueNotAnObject,action=invalid,key=",
         "ErrorReportError"},
    };
    for (const auto& c : cases) {
        test::LogCapture log;
        EXPECT_FALSE(readBack(c.json)) << c.json;
        EXPECT_EQ(log.texts(ANDROID_LOG_ERROR, std::string("SmartHome:") + c.tag),
                  std::vector<std::string>{c.line})
            << c.json;
    }
}

TEST(ErrorReport, MissingMembersKeepDefaultsAndUnknownStringsReadAsZero) {
    test::LogCapture log;
    const auto report = readBack(
        R"({"cause":"SOMETHING","errors":[{"applicationProtocol":{"name":"PHILIPS_BLE"}}]})");
    ASSERT_TRUE(report);
    EXPECT_EQ(report->getCause(), ErrorReport::Cause::UNKNOWN);
    EXPECT_EQ(log.texts(ANDROID_LOG_WARN, "SmartHome:ErrorReport"),
              std::vector<std::string>{"fromJson:unknownEnumerationValue,key=cause"});
    EXPECT_FALSE(report->getProvisionerDetails());
    const auto protocol = report->getErrors().at(0)->getApplicationProtocol();
    EXPECT_EQ(protocol->getName(), Protocol::ProtocolName::PHILIPS_BLE);
    EXPECT_EQ(protocol->getType(), Protocol::ProtocolType::OTHER);
    EXPECT_FALSE(protocol->getTransportProtocol());
}

}  // namespace
}  // namespace V3API
}  // namespace smarthome
