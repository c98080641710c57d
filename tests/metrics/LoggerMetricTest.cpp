#include "smarthome/LoggerMetric.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "smarthome/MetricMeta.h"
#include "smarthome/SHMetricValidation.h"
#include "smarthome/StringUtils.h"
#include "smarthome/VantorDimension.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

TEST(LoggerMetric, VantorRecordOfEveryKindInOrder) {
    LoggerMetric metric(true);
    EXPECT_TRUE(metric.addLongDataPoint("count", 3));
    EXPECT_TRUE(metric.addBoolDataPoint("ok", true));
    EXPECT_TRUE(metric.addDoubleDataPoint("ratio", 0.5));
    EXPECT_TRUE(metric.addStringDataPoint("state", "on:off"));
    EXPECT_EQ(metric.getVantorBuffer(), "count=3;IN,ok=true;BO,ratio=0.500000;FL,state=on-off;SY");
    EXPECT_EQ(metric.getPQMBuffer(), "");
}

TEST(LoggerMetric, PqmRecordTruncatesDoublesAndDropsBooleans) {
    LoggerMetric metric(false);
    EXPECT_TRUE(metric.addBoolDataPoint("ok", true));  // Vantor-only kind: nothing, still true
    EXPECT_EQ(metric.getPQMBuffer(), "");
    metric.addLongDataPoint("count", 3);
    metric.addDoubleDataPoint("latency", 120.7);
    EXPECT_EQ(metric.getPQMBuffer(), "count=3;CT;1,latency=120;TI;1");

    LoggerMetric edges(false);
    edges.addDoubleDataPoint("t", -3.7);
    edges.addDoubleDataPoint("t", 3.99);
    edges.addDoubleDataPoint("t", std::nan(""));
    edges.addDoubleDataPoint("t", 1e300);
    edges.addStringDataPoint("s", "a=b");
    edges.addLongDataPoint("n", -5);
    EXPECT_EQ(edges.getPQMBuffer(),
              "t=0;TI;1,t=3;TI;1,t=0;TI;1,t=18446744073709551615;TI;1,s=a-b;DV;1,n=-5;CT;1");
    EXPECT_EQ(edges.getVantorBuffer(), "");
}

TEST(LoggerMetric, VantorDoublesUseSixDecimalsAtAnyMagnitude) {
    LoggerMetric metric(true);
    metric.addDoubleDataPoint("a", -0.0000004);
    metric.addDoubleDataPoint("b", std::ldexp(1.0, 100));
    EXPECT_EQ(metric.getVantorBuffer(),
              "a=-0.000000;FL,b=1267650600228229401496703205376.000000;FL");
    LoggerMetric largest(true);
    largest.addDoubleDataPoint("m", std::numeric_limits<double>::max());
    const std::string record = largest.getVantorBuffer();  // 309 digits, never cut
    EXPECT_EQ(record.size(), 2 + 309 + 7 + 3);
    EXPECT_EQ(record.substr(0, 8), "m=179769");
    EXPECT_EQ(record.substr(record.size() - 10), ".000000;FL");
}

TEST(LoggerMetric, PredefinedKeysAppendTheirNameWithAnEmptyValue) {
    const std::vector<std::pair<VantorPredefinedKey, std::string>> accepted = {
        {VantorPredefinedKey::PLATFORM, "_platform"},
        {VantorPredefinedKey::SOFTWARE_VERSION, "_softwareVersion"},
        {VantorPredefinedKey::DEVICE_MODEL, "_model"},
        {VantorPredefinedKey::BUILD_TYPE, "_buildType"},
        {VantorPredefinedKey::HARDWARE, "_hardware"},
        {VantorPredefinedKey::DEVICE_TYPE, "_deviceType"},
        {VantorPredefinedKey::MARKETPLACE_ID, "_marketPlaceId"},
        {VantorPredefinedKey::OTA_GROUP_NAME, "_otaGroupName"},
        {VantorPredefinedKey::DEVICE_ID, "_deviceId"},
        {VantorPredefinedKey::COUNTRY_OF_RESIDENCE, "_countryOfResidence"},
        {VantorPredefinedKey::TIME_ZONE, "_timeZone"},
        {VantorPredefinedKey::DEVICE_LANGUAGE, "_deviceLanguage"},
        {VantorPredefinedKey::CUSTOMER_ID, "_customerId"}};
    for (const auto& key : accepted) {
        LoggerMetric vantor(true);
        LoggerMetric pqm(false);
        EXPECT_TRUE(vantor.addPredefinedKey(key.first));
        EXPECT_TRUE(pqm.addPredefinedKey(key.first));
        EXPECT_EQ(vantor.getVantorBuffer(), key.second + "=;SY");
        EXPECT_EQ(pqm.getPQMBuffer(), key.second + "=;DV;1");
    }
    LoggerMetric metric(true);
    for (int rejected : {0, 12, 15, -1, 1000}) {
        EXPECT_FALSE(metric.addPredefinedKey(static_cast<VantorPredefinedKey>(rejected)));
    }
    EXPECT_EQ(metric.getVantorBuffer(), "");
}

TEST(LoggerMetric, NamesAndStringValuesAreSanitisedOtherValuesAreNot) {
    LoggerMetric metric(true);
    metric.addStringDataPoint("a=b,c", "x(1)|y");
    metric.addStringDataPoint("semi", "a;b");
    metric.addLongDataPoint("n:1", 7);
    EXPECT_EQ(metric.getVantorBuffer(), "a-b-c=x-1--y;SY,semi=a;b;SY,n-1=7;IN");
    // appendToBuffer forms a data point from its arguments only: the value stays verbatim.
    EXPECT_EQ(metric.appendToBuffer("", "k(1)", "v=1", ";X"), "k-1-=v=1;X");
    EXPECT_EQ(metric.appendToBuffer("a=1;IN", "b", "2", ";IN"), "a=1;IN,b=2;IN");
}

TEST(LoggerMetric, EachAddWritesItsDebugLine) {
    test::LogCapture capture;
    LoggerMetric metric(true);
    metric.addLongDataPoint("count", -3);
    metric.addBoolDataPoint("ok", true);
    metric.addDoubleDataPoint("ratio", 0.25);
    metric.addStringDataPoint("state", "on");
    metric.addPredefinedKey(VantorPredefinedKey::PLATFORM);
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, "SmartHome:LoggerMetric"),
              (std::vector<std::string>{"addLongDataPoint:name=count, count=-3",
                                        "addBoolDataPoint:addBooleanDataPoint name=ok value=1",
                                        "addDoubleDataPoint:addDoubleDataPoint name=ratio, "
                                        "value=0.250000",
                                        "addStringDataPoint:addStringDataPoint name=state, "
                                        "value=on"}));
}

std::string text(const VantorDimension& dimension) {
    std::ostringstream out;
    out << dimension;
    return out.str();
}

TEST(VantorDimension, FactoriesAndTextForm) {
    VantorDimension longDimension = VantorDimension::createLong("latency", 42);
    EXPECT_EQ(longDimension.type, VantorDimensionType::LONG);
    EXPECT_EQ(longDimension.stringValue, "");
    EXPECT_EQ(longDimension.doubleValue, 0.0);
    EXPECT_EQ(text(longDimension), "name: latency,type: LONG,value: 42");
    EXPECT_EQ(text(VantorDimension::createString("s", "v")), "name: s,type: STRING,value: v");
    EXPECT_EQ(text(VantorDimension::createDouble("d", 0.5)),
              "name: d,type: DOUBLE,value: 0.500000");

    VantorDimension predefined;
    predefined.name = "ignored";
    predefined.type = VantorDimensionType::PREDEFINED;
    predefined.predefinedKey = VantorPredefinedKey::DEVICE_MODEL;
    EXPECT_EQ(text(predefined), "type: PREDEFINED,value: DEVICE_MODEL");
    predefined.predefinedKey = static_cast<VantorPredefinedKey>(99);
    EXPECT_EQ(text(predefined), "type: PREDEFINED,value: INVALID");

    VantorDimension flag;
    flag.name = "b";
    flag.type = VantorDimensionType::BOOLEAN;
    flag.boolValue = true;
    EXPECT_EQ(text(flag), "name: b,type: BOOLEAN,value: 1");

    VantorDimension unknown;
    unknown.name = "x";
    EXPECT_EQ(text(unknown), "name: x,type: INVALID,value: ");
    unknown.type = static_cast<VantorDimensionType>(6);
    EXPECT_EQ(text(unknown), "name: x,type: INVALID,value: ");

    EXPECT_EQ(StringUtils::toString(std::vector<VantorDimension>{}), "[]");
    EXPECT_EQ(StringUtils::toString({longDimension, predefined}),
              "[name: latency,type: LONG,value: 42, type: PREDEFINED,value: INVALID]");
    EXPECT_EQ(StringUtils::toString(VantorPredefinedKey::OS_FILE_TAG), "OS_FILE_TAG");
    EXPECT_EQ(StringUtils::toString(VantorPredefinedKey::CUSTOMER_ID), "CUSTOMER_ID");
    EXPECT_EQ(StringUtils::toString(static_cast<VantorPredefinedKey>(-1)), "INVALID");
    EXPECT_EQ(StringUtils::toString(VantorDimensionType::DOUBLE), "DOUBLE");
}

TEST(MetricMeta, KeysValuesAndTheInsertingLookup) {
    MetricMeta meta;
    EXPECT_EQ(meta.getValue(MetricMeta::Keys::ManfName), "Null");
    auto entries = meta.getMeta();
    ASSERT_EQ(entries.count("ManfName"), 1u);  // left behind by the lookup
    EXPECT_EQ(entries["ManfName"], "");

    meta.setKeyVal(MetricMeta::Keys::ManfName, "Acme");
    meta.setKeyVal(MetricMeta::Keys::ManfName, "");  // an empty value changes nothing
    meta.setKeyVal(static_cast<MetricMeta::Keys::KeyValues>(28), "ignored");
    meta.setCustomKeyVal("custom", "1");
    meta.setCustomKeyVal("", "x");
    meta.setCustomKeyVal("empty", "");
    EXPECT_EQ(meta.getValue(MetricMeta::Keys::ManfName), "Acme");
    EXPECT_EQ(meta.getMeta(), (std::unordered_map<std::string, std::string>{{"ManfName", "Acme"},
                                                                            {"custom", "1"}}));
    EXPECT_TRUE(meta.getDimensions().empty());

    EXPECT_EQ(MetricMeta::toString(MetricMeta::Keys::OtaImageManfCode), "OtaImageManfCode");
    EXPECT_EQ(MetricMeta::toString(MetricMeta::Keys::DeviceLabel), "DeviceLabel");
    EXPECT_EQ(MetricMeta::toString(MetricMeta::Keys::timeSinceLastResumeMSFromPartialNetworkLPM),
              "timeSinceLastResumeMSFromPartialNetworkLPM");
    EXPECT_EQ(MetricMeta::toString(MetricMeta::Keys::operationalNetworkType),
              "operationalNetworkType");
    EXPECT_EQ(MetricMeta::toString(static_cast<MetricMeta::Keys::KeyValues>(28)), "");
    EXPECT_EQ(MetricMeta::toString(static_cast<MetricMeta::Keys::KeyValues>(-1)), "");
}

TEST(SHMetricValidation, ProgramAndSourceLengthLimit) {
    const std::string ok(49, 'p');
    const std::string tooLong(50, 'p');
    EXPECT_TRUE(SHMetricValidation::isProgramAndSourceValid(ok, ok));
    EXPECT_TRUE(SHMetricValidation::isProgramAndSourceValid("", ""));
    EXPECT_FALSE(SHMetricValidation::isProgramAndSourceValid(tooLong, ok));
    EXPECT_FALSE(SHMetricValidation::isProgramAndSourceValid(ok, tooLong));
}

}  // namespace
}  // namespace smarthome
