#include "smarthome/SmartHomeLogger.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "smarthome/SmartHomeRIPCLoggerAdapter.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

using test::LogCapture;

TEST(SmartHomeLoggerTags, FollowTheConstructionRules) {
    EXPECT_EQ(SmartHomeLogger("Handler").getTag(), "SmartHome:Handler");
    EXPECT_EQ(SmartHomeLogger(std::string()).getTag(), "SmartHome:");
    EXPECT_EQ(SmartHomeLogger({"Looper", "Main"}).getTag(), "SmartHome:Looper:Main");
    EXPECT_EQ(SmartHomeLogger({"A"}).getTag(), "SmartHome:A");
    EXPECT_EQ(SmartHomeLogger({"x", ""}).getTag(), "SmartHome:x:");
    EXPECT_EQ(SmartHomeLogger(std::initializer_list<const char* const>{}).getTag(), "SmartHome");
}

TEST(SmartHomeLoggerTags, CopyPrefixesAgain) {
    SmartHomeLogger original("Handler");
    SmartHomeLogger copy(original);
    EXPECT_EQ(copy.getTag(), "SmartHome:SmartHome:Handler");
    EXPECT_EQ(SmartHomeLogger(copy).getTag(), "SmartHome:SmartHome:SmartHome:Handler");
}

TEST(SmartHomeLoggerOutput, EachLetterLogsAtItsPriorityWithTheTag) {
    LogCapture capture;
    SmartHomeLogger logger("Unit");
    logger.v("%s:event=%s", "fn", "v");
    logger.d("%s:event=%s", "fn", "d");
    logger.i("%s:event=%s", "fn", "i");
    logger.w("%s:event=%s,n=%d", "fn", "w", 5);
    logger.e("%s:event=%s", "fn", "e");
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 5u);
    const int priorities[] = {2, 3, 4, 5, 6};
    const char* texts[] = {"fn:event=v", "fn:event=d", "fn:event=i", "fn:event=w,n=5",
                           "fn:event=e"};
    for (size_t k = 0; k < lines.size(); ++k) {
        EXPECT_EQ(lines[k].priority, priorities[k]);
        EXPECT_EQ(lines[k].tag, "SmartHome:Unit");
        EXPECT_EQ(lines[k].text, texts[k]);
    }
}

TEST(SmartHomeLoggerOutput, ExceptionFormsLogMessageColonWhat) {
    LogCapture capture;
    SmartHomeLogger logger("Unit");
    std::runtime_error boom("boom");
    logger.v(std::string("m"), boom);
    logger.d(std::string("m"), boom);
    logger.i(std::string("m"), boom);
    logger.w(std::string("m"), boom);
    logger.e(std::string("m"), boom);
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 5u);
    for (size_t k = 0; k < lines.size(); ++k) {
        EXPECT_EQ(lines[k].priority, static_cast<int>(k) + 2);
        EXPECT_EQ(lines[k].text, "m: boom");
        EXPECT_EQ(lines[k].tag, "SmartHome:Unit");
    }
}

TEST(SmartHomeLoggerOutput, PercentSignsInArgumentsAreNotReinterpreted) {
    LogCapture capture;
    SmartHomeLogger logger("Unit");
    logger.i("%s", "100%s %d");
    logger.e(std::string("50%"), std::runtime_error("%n%s"));
    EXPECT_EQ(capture.texts(), (std::vector<std::string>{"100%s %d", "50%: %n%s"}));
}

TEST(SmartHomeRIPCLoggerAdapter, ForwardsBothFormsWithThePrefixedTag) {
    LogCapture capture;
    std::unique_ptr<ripcconnector::ILogger> adapter =
        std::make_unique<SmartHomeRIPCLoggerAdapter>("RIPC");
    adapter->i("%s=%d", "a", 1);
    adapter->d("%s=%d", "b", 2);
    adapter->e("%s=%d", "c", 3);
    adapter->v("%s=%d", "d", 4);
    adapter->w("%s=%d", "e", 5);
    adapter->w(std::string("msg"), std::logic_error("why"));
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0].priority, 4);
    EXPECT_EQ(lines[1].priority, 3);
    EXPECT_EQ(lines[2].priority, 6);
    EXPECT_EQ(lines[3].priority, 2);
    EXPECT_EQ(lines[4].priority, 5);
    EXPECT_EQ(lines[4].text, "e=5");
    EXPECT_EQ(lines[5].priority, 5);
    EXPECT_EQ(lines[5].text, "msg: why");
    for (const auto& line : lines) {
        EXPECT_EQ(line.tag, "SmartHome:RIPC");
    }
}

TEST(SmartHomeLoggerOutput, ManyThreadsLogThroughOneLoggerWithoutLosingLines) {
    LogCapture capture;
    const SmartHomeLogger logger("Shared");
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&logger, t] {
            for (int n = 0; n < kLines; ++n) {
                logger.i("%s:thread=%d,n=%d", "run", t, n);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(capture.lines().size(), static_cast<size_t>(kThreads * kLines));
}

}  // namespace
}  // namespace smarthome
