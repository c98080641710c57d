#include "smarthome/SystemPropertyWrapper.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smarthome-host/HostPort.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const char kTag[] = "SmartHome:SystemPropertyWrapper";

class SystemPropertyWrapperTest : public testing::Test {
protected:
    void SetUp() override { port::clearSystemProperties(); }
    void TearDown() override { port::clearSystemProperties(); }

    test::LogCapture capture;
    SystemPropertyWrapper properties;
};

TEST_F(SystemPropertyWrapperTest, ReadsAndWritesThroughThePlatformStore) {
    EXPECT_TRUE(properties.setSystemProperty("persist.sh.name", "hub"));
    EXPECT_EQ(properties.getSystemProperty("persist.sh.name"), "hub");
    EXPECT_TRUE(properties.setSystemProperty("persist.sh.count", "0x10"));
    EXPECT_EQ(properties.getIntSystemProperty("persist.sh.count", -1), 16);
    EXPECT_EQ(properties.getIntSystemProperty("persist.sh.missing", -1), -1);
    EXPECT_TRUE(properties.setSystemProperty("persist.sh.flag", "on"));
    EXPECT_TRUE(properties.getBoolSystemProperty("persist.sh.flag", false));
    EXPECT_FALSE(properties.setSystemProperty("bad..name", "x"));
    EXPECT_TRUE(capture.lines().empty());
}

TEST_F(SystemPropertyWrapperTest, AnyNonEmptyValueEnablesAFlag) {
    EXPECT_TRUE(properties.setSystemProperty("persist.sh.flag", "0"));
    EXPECT_TRUE(properties.isSystemPropertyEnabled("persist.sh.flag"));
    EXPECT_TRUE(properties.setSystemProperty("persist.sh.flag", "false"));
    EXPECT_TRUE(properties.isSystemPropertyEnabled("persist.sh.flag"));
    EXPECT_TRUE(properties.setSystemProperty("persist.sh.flag", ""));
    capture.clear();
    EXPECT_FALSE(properties.isSystemPropertyEnabled("persist.sh.flag"));
    EXPECT_EQ(
        capture.texts(ANDROID_LOG_ERROR, kTag),
        std::vector<std::string>{"getSystemProperty:event=PropertyDoesNotExist, action=return"});
}

TEST_F(SystemPropertyWrapperTest, EmptyNamesAreLoggedAndAnsweredWithTheDefault) {
    EXPECT_EQ(properties.getSystemProperty(""), "");
    EXPECT_EQ(properties.getIntSystemProperty("", 5), 5);
    EXPECT_TRUE(properties.getBoolSystemProperty("", true));
    EXPECT_FALSE(properties.setSystemProperty("", "v"));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "getSystemProperty:event=PropertyNameIsEmpty, action=returnEmptyValue",
                  "getIntSystemProperty:event=PropertyNameIsEmpty, action=returnEmptyValue",
                  "getBoolSystemProperty:event=PropertyNameIsEmpty, action=returnEmptyValue",
                  "setSystemProperty:event=PropertyNameIsEmpty, action=false"}));
}

}  // namespace
}  // namespace smarthome
