#include "smarthome/SHMetric.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "smarthome/DynamicCapabilityReportingMetricsHelper.h"
#include "smarthome/SmartHomeRIPCMetricsAdapter.h"
#include "smarthome/VantorMetricsHelper.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const std::string kStandardKeys =
    "_platform=;SY,_softwareVersion=;SY,_otaGroupName=;SY,_buildType=;SY,_deviceId=;SY";

// The record of a simple metric: the standard dimensions, then tail.
std::string simpleRecord(const std::string& source, const std::string& metricName,
                         const std::string& tail) {
    return "Program=SmartHome;SY,Source=" + source + ";SY,MetricName=" + metricName + ";SY," +
           kStandardKeys + "," + tail;
}

std::vector<std::string> recordTexts(const test::MetricsCapture& capture) {
    std::vector<std::string> texts;
    for (const auto& record : capture.records()) {
        texts.push_back(record.record);
    }
    return texts;
}

TEST(VantorMetricsHelper, KnownNamesResolveIndependentlyUnknownOnesToTheFallbacks) {
    using Ids = std::pair<std::string, std::string>;
    EXPECT_EQ(VantorMetricsHelper::getGroupAndSchemaId("SmartHome", "ZigbeeOtaUpdate"),
              Ids("kq7vnm02", "tbwx/2/01180300"));
    EXPECT_EQ(VantorMetricsHelper::getGroupAndSchemaId("SmartHome", "HueBridgeRequest"),
              Ids("kq7vnm02", "mu4p/2/01180460"));
    EXPECT_EQ(VantorMetricsHelper::getGroupAndSchemaId("SmartHome", "NoSuchSource"),
              Ids("kq7vnm02", "tbwx/2/01180300"));
    EXPECT_EQ(VantorMetricsHelper::getGroupAndSchemaId("NoSuchProgram", "RIPCConnector"),
              Ids("kq7vnm02", "rpcc/2/01180412"));
}

TEST(SHMetric, CounterMetricEmitsNineDataPointsOnceWhenDestroyed) {
    test::MetricsCapture metrics;
    test::LogCapture log;
    {
        SHMetric metric("SmartHome", "HueBridgeRequest", "Pairing");
        EXPECT_TRUE(metric.isInitialized());
        EXPECT_TRUE(metrics.records().empty());
    }
    auto records = metrics.records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].priority, 4);
    EXPECT_EQ(records[0].program, "SmartHome");
    EXPECT_EQ(records[0].groupId, "kq7vnm02");
    EXPECT_EQ(records[0].schemaId, "mu4p/2/01180460");
    EXPECT_EQ(records[0].version, 100);
    EXPECT_EQ(records[0].record, simpleRecord("HueBridgeRequest", "Pairing", "Counter=1;IN"));

    EXPECT_EQ(
        log.texts(ANDROID_LOG_INFO, "SmartHome:SHMetricImpl"),
        std::vector<std::string>{"SHMetricImpl:loggingMetricToVantor=SmartHome::HueBridgeRequest"});
    EXPECT_EQ(
        log.texts(ANDROID_LOG_DEBUG, "SmartHome:SHMetricImpl"),
        (std::vector<std::string>{"SHMetricImpl:metricInitialized=SmartHome::HueBridgeRequest",
                                  "~SHMetricImpl:metricNotLogged=SmartHome::HueBridgeRequest",
                                  "~SHMetricImpl:metricLogged=SmartHome::HueBridgeRequest"}));
    EXPECT_EQ(log.texts(ANDROID_LOG_DEBUG, "SmartHome:SHMetric"),
              std::vector<std::string>{
                  "addDimensions:dimensions=[name: Program,type: STRING,value: SmartHome, "
                  "name: Source,type: STRING,value: HueBridgeRequest, name: MetricName,type: "
                  "STRING,value: Pairing, type: PREDEFINED,value: PLATFORM, type: "
                  "PREDEFINED,value: SOFTWARE_VERSION, type: PREDEFINED,value: OTA_GROUP_NAME, "
                  "type: PREDEFINED,value: BUILD_TYPE, type: PREDEFINED,value: DEVICE_ID, name: "
                  "Counter,type: LONG,value: 1]"});
}

// The record of SHMetric(program, source, "Value", value).
template <typename T>
std::string valueRecord(T value) {
    test::MetricsCapture metrics;
    SHMetric("SmartHome", "ZigbeeOtaUpdate", "Value", value);
    const auto texts = recordTexts(metrics);
    return texts.size() == 1 ? texts[0] : "records: " + std::to_string(texts.size());
}

TEST(SHMetric, EachConstructorAddsItsValueAfterTheStandardDimensions) {
    // Every integer type is a timer, every floating type a ratio, on any platform.
    const auto timer = [](const std::string& v) { return "Timer=" + v + ";IN"; };
    const auto ratio = [](const std::string& v) { return "Ratio=" + v + ";FL"; };
    const std::pair<std::string, std::string> cases[] = {
        {valueRecord(short{-3}), timer("-3")},
        {valueRecord(7), timer("7")},
        {valueRecord(7u), timer("7")},
        {valueRecord(1500L), timer("1500")},
        {valueRecord(7UL), timer("7")},
        {valueRecord(7LL), timer("7")},
        {valueRecord(7ULL), timer("7")},
        {valueRecord(int64_t{-7}), timer("-7")},
        {valueRecord(uint32_t{4000000000u}), timer("4000000000")},
        {valueRecord(size_t{7}), timer("7")},
        {valueRecord(std::numeric_limits<unsigned long long>::max()),
         timer(std::to_string(std::numeric_limits<long>::max()))},
        {valueRecord(std::numeric_limits<long long>::min()),
         timer(std::to_string(std::numeric_limits<long>::min()))},
        {valueRecord(0.5f), ratio("0.500000")},
        {valueRecord(0.25), ratio("0.250000")},
        {valueRecord(2.5L), ratio("2.500000")},
        {valueRecord(-std::numeric_limits<long double>::max()), ratio("-inf")}};
    for (const auto& [record, tail] : cases) {
        EXPECT_EQ(record, simpleRecord("ZigbeeOtaUpdate", "Value", tail));
    }
    static_assert(!std::is_constructible_v<SHMetric, std::string, std::string, std::string, bool>,
                  "a flag is not a timer");

    // A count comes before the name; {} is the empty dimension list (no data points).
    test::MetricsCapture metrics;
    SHMetric("SmartHome", "ZigbeeOtaUpdate", 7, "Retries");
    SHMetric("SmartHome", "ZigbeeOtaUpdate", {});
    EXPECT_EQ(
        recordTexts(metrics),
        (std::vector<std::string>{simpleRecord("ZigbeeOtaUpdate", "Retries", "Counter=7;IN"), ""}));
}

TEST(SHMetric, DimensionListIsAddedAsGivenAndAddDimensionsReturnsFalse) {
    test::MetricsCapture metrics;
    test::LogCapture log;
    {
        VantorDimension flag;
        flag.name = "ok";
        flag.type = VantorDimensionType::BOOLEAN;
        flag.boolValue = true;
        VantorDimension invalid;
        invalid.name = "skipped";
        SHMetric metric("SmartHome", "ZigbeeOtaUpdate",
                        std::vector<VantorDimension>{VantorDimension::createString("a:b", "c,d"),
                                                     invalid, flag});
        EXPECT_FALSE(metric.addDimensions({VantorDimension::createDouble("x", 1.5)}));
        EXPECT_FALSE(metric.addDimensions({}));
    }
    EXPECT_EQ(recordTexts(metrics),
              std::vector<std::string>{"a-b=c-d;SY,ok=true;BO,x=1.500000;FL"});
    // The invalid dimension appears in the list line but adds no data point of its own.
    EXPECT_EQ(
        log.texts(ANDROID_LOG_DEBUG, "SmartHome:LoggerMetric"),
        (std::vector<std::string>{"addStringDataPoint:addStringDataPoint name=a:b, value=c,d",
                                  "addBoolDataPoint:addBooleanDataPoint name=ok value=1",
                                  "addDoubleDataPoint:addDoubleDataPoint name=x, value=1.500000"}));

    metrics.clear();
    SHMetric("SmartHome", "ZigbeeOtaUpdate", std::vector<VantorDimension>{});
    EXPECT_EQ(recordTexts(metrics), std::vector<std::string>{""});  // the call is still made
}

TEST(SHMetricImpl, EmitsEveryKindInOrderUnderTheFallbackGroupOfAnUnknownProgram) {
    test::MetricsCapture metrics;
    {
        SHMetricImpl impl("OtherProgram", "HueBridgeRequest");
        EXPECT_TRUE(impl.isInitialized());
        EXPECT_TRUE(impl.addLongDataPoint("count", 3));
        EXPECT_TRUE(impl.addBoolDataPoint("ok", true));
        EXPECT_TRUE(impl.addDoubleDataPoint("ratio", 0.5));
        EXPECT_TRUE(impl.addStringDataPoint("state", "on:off"));
        EXPECT_TRUE(impl.addPredefinedKey(VantorPredefinedKey::PLATFORM));
        EXPECT_TRUE(impl.addStringDataPoints({}));
        EXPECT_TRUE(impl.addStringDataPoints({{"k", "v"}}));
        EXPECT_FALSE(impl.addPredefinedKey(VantorPredefinedKey::OS_FILE_TAG));
    }
    auto records = metrics.records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].program, "OtherProgram");
    EXPECT_EQ(records[0].groupId, "kq7vnm02");
    EXPECT_EQ(records[0].schemaId, "mu4p/2/01180460");
    EXPECT_EQ(records[0].record,
              "count=3;IN,ok=true;BO,ratio=0.500000;FL,state=on-off;SY,_platform=;SY,k=v;SY");
}

// A derived metric sees every data point the facade adds, through the virtual slots.
class CountingImpl : public SHMetricImpl {
public:
    using SHMetricImpl::SHMetricImpl;
    bool addStringDataPoint(const std::string& name, const std::string& value) override {
        ++strings;
        return SHMetricImpl::addStringDataPoint(name, value);
    }
    int strings = 0;
};

TEST(SHMetricImpl, AddStringDataPointsGoesThroughTheVirtualSlot) {
    test::MetricsCapture metrics;
    CountingImpl impl("SmartHome", "HueBridgeRequest");
    impl.addStringDataPoints({{"a", "1"}, {"b", "2"}});
    EXPECT_EQ(impl.strings, 2);
}

TEST(SHMetric, NamingHelpers) {
    EXPECT_EQ(SHMetric::getManufacturerNamePrefix("Acme"), "AcmeManufacturer");
    EXPECT_EQ(SHMetric::getModelNamePrefix("Bulb"), "BulbModel");
    EXPECT_TRUE(SHMetric::isNameValid("x"));
    EXPECT_FALSE(SHMetric::isNameValid(""));
    EXPECT_EQ(SHMetric::getMetricNameFromManf("Acme", "Req"), "Req_Acme");
    EXPECT_EQ(SHMetric::getMetricNameFromModel("Acme", "Bulb", "Req"), "Req_Acme_Bulb");
    EXPECT_EQ(SHMetric::getDependentRulePrefix("r"), "DP_r_");
    EXPECT_EQ(SHMetric::getDependentRuleSuffix("r"), "_DP_r");
    EXPECT_EQ(SHMetric::getDependentRulePrefix(""), "");
    EXPECT_EQ(SHMetric::getDependentRuleSuffix(""), "");

    test::LogCapture log;
    EXPECT_EQ(SHMetric::correctName("Bulb", "NoModel"), "Bulb");
    EXPECT_TRUE(log.texts().empty());
    EXPECT_EQ(SHMetric::correctName("", "NoModel"), "NoModel");
    EXPECT_EQ(
        log.texts(ANDROID_LOG_DEBUG, "SmartHome:SHMetric"),
        std::vector<std::string>{"correctName:correctNameNeeded: name= , correctedName= NoModel"});
}

TEST(SHMetricDevice, TalliesRequests) {
    test::LogCapture log;
    SHMetric::Device device("Acme", "Bulb");
    EXPECT_TRUE(std::isnan(device.getFailureRatio()));
    device.recordRequest(false);
    for (int i = 0; i < 3; ++i) {
        device.recordRequest(true);
    }
    EXPECT_EQ(device.getTotal(), 4);
    EXPECT_EQ(device.getNumFailed(), 1);
    EXPECT_EQ(device.getFailureRatio(), 0.25);
    EXPECT_EQ(device.getManufacturerName(), "Acme");
    EXPECT_EQ(device.getModelName(), "Bulb");
    auto lines = log.texts(ANDROID_LOG_DEBUG, "SmartHome:SHMetric");
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "recordRequest:total= 1, success= 0, failed= 1");
    EXPECT_EQ(lines[3], "recordRequest:total= 4, success= 3, failed= 1");
}

TEST(SmartHomeRIPCMetricsAdapter, NameOnlyGivesACounterDimensionsAreUsedAsGiven) {
    test::MetricsCapture metrics;
    SmartHomeRIPCMetricsAdapter adapter;
    ripcconnector::IMetricsRecorder& recorder = adapter;
    recorder.recordMetric("ConnectFailed", {});
    recorder.recordMetric("unused", {VantorDimension::createLong("Retries", 2)});
    auto records = metrics.records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].record, simpleRecord("RIPCConnector", "ConnectFailed", "Counter=1;IN"));
    EXPECT_EQ(records[1].record, "Retries=2;IN");
    EXPECT_EQ(records[1].schemaId, "rpcc/2/01180412");
}

TEST(DynamicCapabilityReportingMetricsHelper, CounterThenDimensionsInKeyOrder) {
    test::MetricsCapture metrics;
    DynamicCapabilityReportingMetricsHelper::recordCounter("x", 5);
    DynamicCapabilityReportingMetricsHelper::recordCounter("y", 1, {{"b", "2"}, {"a", "1"}});
    auto records = metrics.records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].program, "SmartHome");
    EXPECT_EQ(records[0].schemaId, "dcap/2/01180425");
    EXPECT_EQ(records[0].record, "x=5;IN");
    EXPECT_EQ(records[1].record, "y=1;IN,a=1;SY,b=2;SY");
}

// ---- report functions ----------------------------------------------------------------------

MetricMeta deviceMeta(const std::string& manufacturer, const std::string& model) {
    MetricMeta meta;
    meta.setKeyVal(MetricMeta::Keys::ManfName, manufacturer);
    meta.setKeyVal(MetricMeta::Keys::ModelName, model);
    return meta;
}

TEST(SHMetricReports, RequestMetricCarriesRequestFactsAndMeasuredLatencies) {
    test::MetricsCapture metrics;
    MetricMeta meta = deviceMeta("Acme", "Bulb");
    meta.setKeyVal(MetricMeta::Keys::RequestNamespace, "Power");
    meta.setKeyVal(MetricMeta::Keys::RequestName, "TurnOn");
    meta.setKeyVal(MetricMeta::Keys::RequestIsSuccess, "true");
    meta.setKeyVal(MetricMeta::Keys::Protocol, "ZIGBEE");
    SHMetric::RequestLatencies latencies;
    latencies.clientToBrel = 12;
    latencies.brelDispatchDelay = 3;
    latencies.brelDispatchToResponse = 80;
    latencies.brelResponseProcessing = 4;
    SHMetric::logVantorMetricOnRequest("SmartHome", "HueBridgeRequest", latencies, meta);
    latencies.brelDispatchToResponse = -1;
    SHMetric::logVantorMetricOnRequest("SmartHome", "HueBridgeRequest", latencies, MetricMeta());
    const std::string facts =
        "RequestNamespace=Power;SY,RequestName=TurnOn;SY,RequestIsSuccess=true;SY,"
        "RequestFailReason=Null;SY,Protocol=ZIGBEE;SY,ManfName=Acme;SY,ModelName=Bulb;SY,";
    const std::string nullFacts =
        "RequestNamespace=Null;SY,RequestName=Null;SY,RequestIsSuccess=Null;SY,"
        "RequestFailReason=Null;SY,Protocol=Null;SY,ManfName=NoManufacturer;SY,"
        "ModelName=NoModel;SY,";
    EXPECT_EQ(
        recordTexts(metrics),
        (std::vector<std::string>{
            simpleRecord("HueBridgeRequest", "Request",
                         facts + "ClientToBrelLatency=12;IN,BrelDispatchDelayLatency=3;IN,"
                                 "BrelDispatchToResponseLatency=80;IN,"
                                 "BrelResponseProcessingLatency=4;IN,"
                                 "AtLeastOneInvalidLatencyCount=0;IN"),
            simpleRecord("HueBridgeRequest", "Request",
                         nullFacts + "ClientToBrelLatency=12;IN,BrelDispatchDelayLatency=3;IN,"
                                     "BrelResponseProcessingLatency=4;IN,"
                                     "AtLeastOneInvalidLatencyCount=1;IN")}));
}

std::vector<std::string> metricNames(const test::MetricsCapture& capture) {
    std::vector<std::string> names;
    for (const std::string& text : recordTexts(capture)) {
        const std::string key = "MetricName=";
        auto start = text.find(key);
        names.push_back(
            start == std::string::npos
                ? "<none>"
                : text.substr(start + key.size(), text.find(";SY", start) - start - key.size()));
    }
    return names;
}

TEST(SHMetricReports, StateUpdateCountersPerDeviceAndDependentRule) {
    test::MetricsCapture metrics;
    SHMetric::logOnStateUpdate("SmartHome", "ZigbeeOtaUpdate", deviceMeta("Acme", "Bulb"));
    MetricMeta ruleDriven = deviceMeta("", "Plug");
    ruleDriven.setKeyVal(MetricMeta::Keys::RuleFriendlyName, "night");
    SHMetric::logOnStateUpdate("SmartHome", "ZigbeeOtaUpdate", ruleDriven);
    EXPECT_EQ(metricNames(metrics),
              (std::vector<std::string>{"MetricStateUpdate", "MetricStateUpdate_Acme",
                                        "MetricStateUpdate_Acme_Bulb", "DP_night_MetricStateUpdate",
                                        "DP_night_MetricStateUpdate_NoManufacturer",
                                        "DP_night_MetricStateUpdate_NoManufacturer_Plug"}));
    for (const std::string& text : recordTexts(metrics)) {
        EXPECT_EQ(text.substr(text.size() - 12), "Counter=1;IN");
    }
}

TEST(SHMetricReports, VantorStateUpdateIsOneMetricWithDeviceDimensions) {
    test::MetricsCapture metrics;
    MetricMeta meta = deviceMeta("Acme", "");
    meta.setKeyVal(MetricMeta::Keys::ReachabilityState, "OK");
    meta.setKeyVal(MetricMeta::Keys::RuleFriendlyName, "night");
    SHMetric::logVantorMetricOnStateUpdate("SmartHome", "ZigbeeOtaUpdate", meta);
    EXPECT_EQ(recordTexts(metrics), std::vector<std::string>{simpleRecord(
                                        "ZigbeeOtaUpdate", "MetricStateUpdate_DP_night",
                                        "ManfName=Acme;SY,ModelName=NoModel;SY,Protocol=Null;SY,"
                                        "ReachabilityState=OK;SY,Counter=1;IN")});
}

TEST(SHMetricReports, SensorFeatureAndBatteryCounters) {
    test::MetricsCapture metrics;
    const MetricMeta meta = deviceMeta("Acme", "Sensor1");
    SHMetric::logForSensors("SmartHome", "ZigbeeOtaUpdate", "Motion", meta);
    SHMetric::logForSensors("SmartHome", "ZigbeeOtaUpdate", "", MetricMeta());
    SHMetric::logMetricsForFeatureSupport("SmartHome", "ZigbeeOtaUpdate", true, false, meta);
    SHMetric::logMetricsForBatteryReportMethod("SmartHome", "ZigbeeOtaUpdate", "Poll", meta);
    SHMetric::logMetricsForBatteryReportMethod("SmartHome", "ZigbeeOtaUpdate", "", meta);
    EXPECT_EQ(
        metricNames(metrics),
        (std::vector<std::string>{
            "Sensor_Motion", "Sensor_Motion_Acme", "Sensor_Motion_Acme_Sensor1",
            "Sensor_NoSensorType", "Sensor_NoSensorType_NoManufacturer",
            "Sensor_NoSensorType_NoManufacturer_NoModel", "Feature_Poll_Supported_Acme_Sensor1",
            "Feature_Battery_Unsupported_Acme_Sensor1", "BatteryReportMethod_Poll_Acme_Sensor1",
            "BatteryReportMethod_NoReportMethod_Acme_Sensor1"}));
}

}  // namespace
}  // namespace smarthome
