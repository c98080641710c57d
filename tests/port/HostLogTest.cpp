#include <android/log.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "testing/TestSupport.h"

namespace smarthome {
namespace {

using test::LogCapture;

TEST(HostLog, InstalledSinkReceivesEveryPriorityAndPrintReturnsOne) {
    LogCapture capture;
    for (int priority = ANDROID_LOG_VERBOSE; priority <= ANDROID_LOG_FATAL; ++priority) {
        EXPECT_EQ(__android_log_print(priority, "Tag", "p=%d", priority), 1);
    }
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines.front().priority, ANDROID_LOG_VERBOSE);
    EXPECT_EQ(lines.front().text, "p=2");
    EXPECT_EQ(lines.back().tag, "Tag");
}

TEST(HostLog, LongMessagesAreCutTo1023Bytes) {
    LogCapture capture;
    std::string longText(5000, 'x');
    longText[1022] = 'y';
    longText[1023] = 'z';
    __android_log_print(ANDROID_LOG_INFO, "Tag", "%s", longText.c_str());
    std::string exact(1023, 'a');
    __android_log_print(ANDROID_LOG_INFO, "Tag", "%s", exact.c_str());
    auto texts = capture.texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].size(), 1023u);
    EXPECT_EQ(texts[0].back(), 'y');
    EXPECT_EQ(texts[1], exact);
}

TEST(HostLog, NullTagAndFormatAreTolerated) {
    LogCapture capture;
    __android_log_write(ANDROID_LOG_INFO, nullptr, nullptr);
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].tag, "");
    EXPECT_EQ(lines[0].text, "");
}

// The default sink reads SMARTHOME_LOG_LEVEL once, so it is checked in a fresh child
// process that sets the variable before its first message.
TEST(HostLogDeathTest, DefaultSinkFiltersByLevelAndWritesTheHostLayout) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("SMARTHOME_LOG_LEVEL", "w", 1);
            int filtered = __android_log_print(ANDROID_LOG_INFO, "Quiet", "dropped");
            int written = __android_log_print(ANDROID_LOG_WARN, "Tag", "warn %d", 7);
            int longTag = __android_log_print(ANDROID_LOG_ERROR, "SmartHome:Longer", "e");
            _exit(filtered == -EPERM && written == 1 && longTag == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0),
        "^[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} +[0-9]+ +[0-9]+ W Tag     : "
        "warn 7\n[0-9]{2}-[0-9]{2} [0-9:. ]+ +[0-9]+ +[0-9]+ E SmartHome:Longer: e\n$");
}

TEST(HostLogDeathTest, DefaultThresholdIsInfo) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            unsetenv("SMARTHOME_LOG_LEVEL");
            int debug = __android_log_print(ANDROID_LOG_DEBUG, "T", "d");
            int info = __android_log_print(ANDROID_LOG_INFO, "T", "i");
            _exit(debug == -EPERM && info == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), " I T       : i\n$");
}

}  // namespace
}  // namespace smarthome
