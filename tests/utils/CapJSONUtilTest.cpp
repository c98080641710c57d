#include "smarthome/CapJSONUtil.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const char kTag[] = "SmartHome:CapJSONUtil";

JSONDocument parsed(const char* text) {
    JSONDocument doc;
    EXPECT_FALSE(JSONUtil::parse(doc, text).IsError()) << text;
    return doc;
}

TEST(CapJSONUtil, ReadsTheFlagsUnderMetadataProperties) {
    test::LogCapture capture;
    JSONDocument cap =
        parsed(R"({"metadata":{"properties":{"retrievable":true,"proactivelyReported":false}}})");
    EXPECT_EQ(CapJSONUtil::isRetrievable(cap), std::make_pair(true, true));
    EXPECT_EQ(CapJSONUtil::isProactive(cap), std::make_pair(true, false));
    EXPECT_TRUE(capture.lines().empty());
}

TEST(CapJSONUtil, EachMissingLevelLogsOnceThenTheFlag) {
    test::LogCapture capture;
    EXPECT_EQ(CapJSONUtil::isRetrievable(parsed("{}")), std::make_pair(false, false));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "isRetrievable:event=parserError,reason=valueNotAnObject,action=invalid,key="
                  "metadata",
                  "isRetrievable:event=parserError,reason=valueNotAnObject,action=invalid,key="
                  "properties",
                  "isRetrievable:event=parserError,reason=valueNotABool,action=invalid,key="
                  "retrievable"}));
    capture.clear();
    EXPECT_EQ(CapJSONUtil::isProactive(parsed(R"({"metadata":{"properties":[]}})")),
              std::make_pair(false, false));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "isProactive:event=parserError,reason=valueNotAnObject,action=invalid,key="
                  "properties",
                  "isProactive:event=parserError,reason=valueNotABool,action=invalid,key="
                  "proactivelyReported"}));
    capture.clear();
    EXPECT_EQ(CapJSONUtil::isProactive(
                  parsed(R"({"metadata":{"properties":{"proactivelyReported":"true"}}})")),
              std::make_pair(false, false));
    EXPECT_EQ(capture.lines().size(), 1u);
}

TEST(CapJSONUtil, NonObjectCapabilitiesAreAnsweredNotAsserted) {
    test::LogCapture capture;
    EXPECT_EQ(CapJSONUtil::isRetrievable(parsed("[1,2]")), std::make_pair(false, false));
    EXPECT_EQ(CapJSONUtil::isRetrievable(JSONValue()), std::make_pair(false, false));
    EXPECT_EQ(capture.lines().size(), 6u);
}

}  // namespace
}  // namespace smarthome
