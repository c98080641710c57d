#include "messaging/DelayedSchedule.h"

#include <gtest/gtest.h>

#include <chrono>

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class DelayedScheduleTest : public testing::Test {
protected:
    void addDelayed(int what, Clock::duration fromNow) {
        delayed.push_back(std::make_unique<DelayedMessage>(
            std::make_unique<MessageOrRunnable>(std::make_unique<Message>(what), nullptr),
            now + fromNow));
    }
    std::vector<int> queuedCodes() const {
        std::vector<int> codes;
        for (const auto& entry : queue) {
            codes.push_back(entry->getMessage()->what);
        }
        return codes;
    }

    Clock::time_point now = Clock::now();
    std::vector<std::unique_ptr<DelayedMessage>> delayed;
    std::deque<std::unique_ptr<MessageOrRunnable>> queue;
};

TEST_F(DelayedScheduleTest, NothingDelayedSleepsThirtyMinutes) {
    EXPECT_EQ(detail::moveDueEntries(delayed, queue, now), 1800000);
}

TEST_F(DelayedScheduleTest, DueEntriesJoinInPostingOrderBehindTheQueue) {
    queue.push_back(std::make_unique<MessageOrRunnable>(std::make_unique<Message>(0), nullptr));
    addDelayed(1, -10ms);  // posted first, due later than the next one
    addDelayed(2, 5s);
    addDelayed(3, -50ms);
    addDelayed(4, 0ms);
    EXPECT_EQ(detail::moveDueEntries(delayed, queue, now), 5001);
    EXPECT_EQ(queuedCodes(), (std::vector<int>{0, 1, 3, 4}));
    ASSERT_EQ(delayed.size(), 1u);
    EXPECT_EQ(delayed[0]->entry->getMessage()->what, 2);
}

TEST_F(DelayedScheduleTest, SleepIsRoundedUpByOneMillisecond) {
    addDelayed(1, 2500us);
    EXPECT_EQ(detail::moveDueEntries(delayed, queue, now), 3);
    addDelayed(2, 999us);
    EXPECT_EQ(detail::moveDueEntries(delayed, queue, now), 1);
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(detail::moveDueEntries(delayed, queue, now + 3ms), 1800000);
    EXPECT_EQ(queuedCodes(), (std::vector<int>{1, 2}));
}

TEST_F(DelayedScheduleTest, RemainingEntriesKeepTheirOrder) {
    for (int i = 0; i < 1000; ++i) {
        addDelayed(i, i % 2 == 0 ? -1ms : std::chrono::milliseconds(1000 + i));
    }
    EXPECT_EQ(detail::moveDueEntries(delayed, queue, now), 1002);
    ASSERT_EQ(delayed.size(), 500u);
    for (size_t i = 0; i < delayed.size(); ++i) {
        EXPECT_EQ(delayed[i]->entry->getMessage()->what, static_cast<int>(2 * i + 1));
    }
    ASSERT_EQ(queue.size(), 500u);
    EXPECT_EQ(queue.back()->getMessage()->what, 998);
}

}  // namespace
}  // namespace smarthome
