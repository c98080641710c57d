#include "smarthome/RunUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include "testing/ExecutionTestSupport.h"
#include "testing/MessagingTestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::eventually;
using test::Gate;
using test::kTestTimeout;

// Destroys the object on another thread; true when the destructor returned in time.
bool destroyWithin(std::unique_ptr<RunUntil>& poller) {
    test::BackgroundCall destroy([&poller] { poller.reset(); });
    return destroy.waitFor(kTestTimeout);
}

TEST(RunUntilTest, TrueCondition_IsFirstEvaluatedOneIntervalAfterConstruction) {
    std::promise<Clock::time_point> firstCall;
    std::atomic<int> calls{0};
    const auto constructed = Clock::now();
    RunUntil poller(
        [&] {
            if (calls++ == 0) {
                firstCall.set_value(Clock::now());
            }
            return true;
        },
        100ms);
    ASSERT_TRUE(eventually([&] { return poller.isDone(); }));
    auto future = firstCall.get_future();
    ASSERT_EQ(future.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_GE(future.get() - constructed, 100ms);
    EXPECT_EQ(calls.load(), 1);
}

TEST(RunUntilTest, FalseCondition_IsPolledOncePerIntervalUntilItHolds) {
    std::atomic<int> calls{0};
    Clock::time_point thirdCall{};
    const auto constructed = Clock::now();
    RunUntil poller(
        [&] {
            if (++calls < 3) {
                return false;
            }
            thirdCall = Clock::now();
            return true;
        },
        20ms);
    ASSERT_TRUE(eventually([&] { return poller.isDone(); }));
    EXPECT_EQ(calls.load(), 3);
    EXPECT_GE(thirdCall - constructed, 60ms);
}

TEST(RunUntilTest, NeverTrueCondition_KeepsPollingAndIsNotDone) {
    std::atomic<int> calls{0};
    auto poller = std::make_unique<RunUntil>(
        [&] {
            ++calls;
            return false;
        },
        1ms);
    ASSERT_TRUE(eventually([&] { return calls.load() >= 5; }));
    EXPECT_FALSE(poller->isDone());
    ASSERT_TRUE(destroyWithin(poller));
    const int atDestruction = calls.load();
    std::this_thread::sleep_for(10ms);
    EXPECT_EQ(calls.load(), atDestruction);  // the polling thread is gone
}

TEST(RunUntilTest, DestructionDuringTheSleep_CutsItShort) {
    std::atomic<bool> called{false};
    auto poller = std::make_unique<RunUntil>(
        [&] {
            called = true;
            return true;
        },
        1h);
    EXPECT_FALSE(poller->isDone());
    ASSERT_TRUE(destroyWithin(poller));  // not after an hour
    EXPECT_FALSE(called.load());
}

TEST(RunUntilTest, Destruction_WaitsForAnEvaluationInProgress) {
    Gate entered;
    Gate release;
    std::atomic<bool> evaluationReturned{false};
    auto poller = std::make_unique<RunUntil>(
        [&] {
            entered.open();
            release.wait();
            evaluationReturned = true;
            return false;
        },
        1ms);
    ASSERT_TRUE(entered.wait());
    std::atomic<bool> returnedFirst{false};
    test::BackgroundCall destroy([&] {
        poller.reset();
        returnedFirst = evaluationReturned.load();
    });
    EXPECT_FALSE(destroy.waitFor(20ms));
    release.open();
    ASSERT_TRUE(destroy.waitFor(kTestTimeout));
    EXPECT_TRUE(returnedFirst.load());
}

TEST(RunUntilTest, ZeroAndNegativeIntervals_PollWithoutHangingTheDestructor) {
    for (auto interval : {0ms, -5ms}) {
        std::atomic<int> calls{0};
        auto poller = std::make_unique<RunUntil>(
            [&] {
                ++calls;
                return false;
            },
            interval);
        ASSERT_TRUE(eventually([&] { return calls.load() >= 3; }));
        ASSERT_TRUE(destroyWithin(poller));
    }
}

}  // namespace
}  // namespace smarthome
