#include "smarthome/TaskExecutor.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "smarthome/DelayedTask.h"
#include "smarthome/Task.h"
#include "testing/ExecutionTestSupport.h"
#include "testing/MessagingTestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::eventually;
using test::Gate;
using test::kTestTimeout;
using test::LogCapture;
using test::Recorder;

const char* const kTag = "SmartHome:TaskExecutor";
const char* const kQuitWarning =
    "quitSafely:Processor thread did not stop gracefully within timeout";

// An executor whose callback records each message's `what`, with a way to hold its
// draining job inside a closure until the test lets it go.
class TaskExecutorTest : public ::testing::Test {
protected:
    void TearDown() override {
        release.open();  // never leave a job waiting on a gate that is about to go
    }

    TaskExecutor::Callback recordWhat() {
        return [this](std::unique_ptr<Message> message) { seen.add(message->what); };
    }
    // Occupies the job until release is opened.
    void holdJob(TaskExecutor& executor) {
        ASSERT_TRUE(executor.post([this] {
            held = true;
            release.wait();
        }));
        ASSERT_TRUE(eventually([this] { return held.load(); }));
    }

    Recorder seen;
    Gate release;
    std::atomic<bool> held{false};
};

TEST_F(TaskExecutorTest, ObtainMessage_SetsGivenFieldsAndDefaultsTheRest) {
    TaskExecutor executor(recordWhat());
    auto data = std::make_shared<int>(9);
    int object = 0;

    auto plain = executor.obtainMessage(5);
    EXPECT_EQ(plain->what, 5);
    EXPECT_EQ(plain->arg1, -1);
    EXPECT_EQ(plain->arg2, -1);
    EXPECT_EQ(plain->data, nullptr);
    EXPECT_EQ(plain->obj, nullptr);

    auto args = executor.obtainMessage(5, 1, 2);
    EXPECT_EQ(args->arg1, 1);
    EXPECT_EQ(args->arg2, 2);

    auto argsData = executor.obtainMessage(5, 3, 4, data);
    EXPECT_EQ(argsData->arg2, 4);
    EXPECT_EQ(argsData->data, data);

    auto onlyData = executor.obtainMessage(5, std::shared_ptr<void>(data));
    EXPECT_EQ(onlyData->data, data);
    EXPECT_EQ(onlyData->arg1, -1);
    EXPECT_EQ(onlyData->obj, nullptr);

    auto argsObj = executor.obtainMessage(5, 6, 7, &object);
    EXPECT_EQ(argsObj->obj, &object);
    EXPECT_EQ(argsObj->arg1, 6);
    EXPECT_EQ(argsObj->data, nullptr);

    auto onlyObj = executor.obtainMessage(5, static_cast<void*>(&object));
    EXPECT_EQ(onlyObj->obj, &object);
    EXPECT_EQ(onlyObj->arg2, -1);
}

TEST_F(TaskExecutorTest, TaskIds_StartAtOneAndCountUp) {
    TaskExecutor executor(recordWhat());
    EXPECT_EQ(executor.generateTaskId(), 1U);
    EXPECT_EQ(executor.generateTaskId(), 2U);
}

TEST_F(TaskExecutorTest, Sends_RunInSendingOrderWithFrontInsertionsFirst) {
    TaskExecutor executor(recordWhat());
    holdJob(executor);
    EXPECT_TRUE(executor.sendEmptyMessage(1));
    EXPECT_TRUE(executor.post([this] { seen.add(2); }));
    EXPECT_TRUE(executor.sendMessage(executor.obtainMessage(3)));
    EXPECT_TRUE(executor.sendMessageAtFrontOfQueue(executor.obtainMessage(4)));
    EXPECT_TRUE(executor.sendMessageAtFrontOfQueue(executor.obtainMessage(5)));
    EXPECT_TRUE(executor.internalSendMessageOrRunnable(false, nullptr, [this] { seen.add(6); }));
    release.open();
    ASSERT_TRUE(seen.waitFor(6));
    EXPECT_EQ(seen.values(), (std::vector<int>{5, 4, 1, 2, 3, 6}));
}

// The job takes queued tasks several at a time; a message sent to the front while one of
// them runs still overtakes the rest.
TEST_F(TaskExecutorTest, FrontSendDuringARun_OvertakesTasksQueuedBehindIt) {
    TaskExecutor executor(recordWhat());
    holdJob(executor);
    Gate second;
    std::atomic<bool> secondRunning{false};
    ASSERT_TRUE(executor.post([&] {
        secondRunning = true;
        second.wait();
    }));
    ASSERT_TRUE(executor.sendEmptyMessage(1));
    ASSERT_TRUE(executor.sendEmptyMessage(2));
    release.open();
    ASSERT_TRUE(eventually([&] { return secondRunning.load(); }));
    ASSERT_TRUE(executor.sendMessageAtFrontOfQueue(executor.obtainMessage(3)));
    ASSERT_TRUE(executor.sendEmptyMessage(4));
    second.open();
    ASSERT_TRUE(seen.waitFor(4));
    EXPECT_EQ(seen.values(), (std::vector<int>{3, 1, 2, 4}));
}

TEST_F(TaskExecutorTest, Messages_ReachTheCallbackWithTheirFields) {
    std::promise<std::unique_ptr<Message>> received;
    TaskExecutor executor(
        [&received](std::unique_ptr<Message> message) { received.set_value(std::move(message)); });
    auto payload = std::make_shared<std::string>("payload");
    ASSERT_TRUE(executor.sendMessage(executor.obtainMessage(8, 1, 2, payload)));
    auto future = received.get_future();
    ASSERT_EQ(future.wait_for(kTestTimeout), std::future_status::ready);
    auto message = future.get();
    EXPECT_EQ(message->what, 8);
    EXPECT_EQ(message->arg1, 1);
    EXPECT_EQ(message->arg2, 2);
    EXPECT_EQ(message->data, payload);
}

TEST_F(TaskExecutorTest, SendsWithoutWork_AreRefusedAndQueueNothing) {
    TaskExecutor executor(recordWhat());
    EXPECT_FALSE(executor.sendMessage(nullptr));
    EXPECT_FALSE(executor.sendMessageAtFrontOfQueue(nullptr));
    EXPECT_FALSE(executor.post(nullptr));
    EXPECT_FALSE(executor.sendMessageDelayed(nullptr, 10ms));
    EXPECT_FALSE(executor.postDelayed(nullptr, 10ms));
    // The lower-level paths also refuse a task whose named half is missing.
    EXPECT_FALSE(executor.internalSendMessageOrRunnable(true, nullptr, [] {}));
    EXPECT_FALSE(executor.internalSendMessageOrRunnableDelayed(false, executor.obtainMessage(1),
                                                               nullptr, 10ms));
    EXPECT_FALSE(executor.validateTaskParameters(nullptr, nullptr));
    EXPECT_TRUE(executor.validateTaskParameters(nullptr, [] {}));
    // Nothing queued: the first real task is the only one to run.
    ASSERT_TRUE(executor.sendEmptyMessage(1));
    ASSERT_TRUE(seen.waitFor(1));
    executor.quitSafely();
    EXPECT_EQ(seen.values(), (std::vector<int>{1}));
}

TEST_F(TaskExecutorTest, DelayedTasks_RunByDueTimeAfterImmediateOnesAndNotEarly) {
    TaskExecutor executor(recordWhat());
    const auto sent = Clock::now();
    std::vector<Clock::time_point> ranAt(3);
    ASSERT_TRUE(executor.postDelayed(
        [&] {
            ranAt[0] = Clock::now();
            seen.add(80);
        },
        80ms));
    ASSERT_TRUE(executor.postDelayed(
        [&] {
            ranAt[1] = Clock::now();
            seen.add(40);
        },
        40ms));
    ASSERT_TRUE(executor.sendMessageDelayed(executor.obtainMessage(1), 1ms));
    ASSERT_TRUE(executor.post([this] { seen.add(0); }));
    ASSERT_TRUE(seen.waitFor(4));
    EXPECT_EQ(seen.values(), (std::vector<int>{0, 1, 40, 80}));
    EXPECT_GE(ranAt[1] - sent, 40ms);
    EXPECT_GE(ranAt[0] - sent, 80ms);
}

TEST_F(TaskExecutorTest, ZeroDelay_IsAnImmediateSendAndNegativeDelay_RunsAtOnce) {
    TaskExecutor executor(recordWhat());
    holdJob(executor);
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(4, 0ms));
    EXPECT_FALSE(executor.hasMessages(4));  // took the immediate path: not indexed
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(5, -10ms));
    EXPECT_TRUE(executor.hasMessages(5));  // a delayed message, due in the past
    ASSERT_TRUE(executor.sendEmptyMessage(6));
    release.open();
    ASSERT_TRUE(seen.waitFor(3));
    EXPECT_EQ(seen.values(), (std::vector<int>{4, 6, 5}));
    EXPECT_FALSE(executor.hasMessages(5));
}

TEST_F(TaskExecutorTest, HugeDelays_AreAcceptedWithoutOverflow) {
    TaskExecutor executor(recordWhat());
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(1, std::chrono::milliseconds::max()));
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(2, std::chrono::milliseconds::min()));
    ASSERT_TRUE(seen.waitFor(1));
    EXPECT_TRUE(executor.hasMessages(1));
    executor.quitSafely();
    EXPECT_EQ(seen.values(), (std::vector<int>{2}));
}

TEST_F(TaskExecutorTest, QueriesAndWithdrawals_SeeDelayedMessagesOnly) {
    TaskExecutor executor(recordWhat());
    holdJob(executor);
    ASSERT_TRUE(executor.sendEmptyMessage(3));
    EXPECT_FALSE(executor.hasMessages(3));  // immediate messages are never indexed
    executor.removeMessages(3);             // and never withdrawn by code

    ASSERT_TRUE(executor.sendEmptyMessageDelayed(3, 100ms));
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(7, 100ms));
    ASSERT_TRUE(executor.postDelayed([this] { seen.add(-3); }, 100ms));
    EXPECT_TRUE(executor.hasMessages(3));
    executor.removeMessages(3);
    EXPECT_FALSE(executor.hasMessages(3));  // at once, though the task is still queued
    EXPECT_TRUE(executor.hasMessages(7));

    ASSERT_TRUE(executor.postDelayed([this] { seen.add(99); }, 150ms));
    release.open();
    ASSERT_TRUE(seen.waitFor(4));
    // The withdrawn delayed message never ran; the immediate one, the other code and the
    // closure did.
    EXPECT_EQ(seen.values(), (std::vector<int>{3, 7, -3, 99}));
    EXPECT_FALSE(executor.hasMessages(7));
}

TEST_F(TaskExecutorTest, RemoveCallbacksAndMessages_WithdrawsEveryPendingTask) {
    TaskExecutor executor(recordWhat());
    holdJob(executor);
    ASSERT_TRUE(executor.sendEmptyMessage(1));
    ASSERT_TRUE(executor.post([this] { seen.add(2); }));
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(3, 1ms));
    ASSERT_TRUE(executor.postDelayed([this] { seen.add(4); }, 1ms));
    executor.removeCallbacksAndMessages();
    EXPECT_FALSE(executor.hasMessages(3));
    ASSERT_TRUE(executor.postDelayed([this] { seen.add(5); }, 20ms));
    release.open();
    ASSERT_TRUE(seen.waitFor(1));
    EXPECT_EQ(seen.values(), (std::vector<int>{5}));
}

TEST_F(TaskExecutorTest, EmptyCallback_DropsMessagesAndStillRunsClosures) {
    TaskExecutor executor(nullptr);
    EXPECT_TRUE(executor.sendEmptyMessage(1));
    EXPECT_TRUE(executor.sendEmptyMessageDelayed(2, 1ms));
    ASSERT_TRUE(executor.postDelayed([this] { seen.add(3); }, 10ms));
    ASSERT_TRUE(seen.waitFor(1));
}

// With a pool of one worker, a task submitted to the pool directly runs only once the
// executor's job has given the worker back.
TEST_F(TaskExecutorTest, DrainingJob_LingersThenEndsAndTheNextSendStartsANewOne) {
    auto pool = std::make_shared<DynamicThreadPool>(1, 1s);
    TaskExecutor executor(recordWhat(), pool);
    std::promise<Clock::time_point> ran;
    ASSERT_TRUE(executor.post([&ran] { ran.set_value(Clock::now()); }));
    auto ranFuture = ran.get_future();
    ASSERT_EQ(ranFuture.wait_for(kTestTimeout), std::future_status::ready);
    auto freed = pool->submit([] { return Clock::now(); });
    ASSERT_EQ(freed.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_GE(freed.get() - ranFuture.get(), 10ms);

    ASSERT_TRUE(executor.sendEmptyMessage(1));
    ASSERT_TRUE(seen.waitFor(1));
}

TEST_F(TaskExecutorTest, DrainingJob_KeepsItsWorkerWhileADelayedTaskIsPending) {
    auto pool = std::make_shared<DynamicThreadPool>(1, 1s);
    TaskExecutor executor(recordWhat(), pool);
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(1, 50ms));
    auto after = pool->submit([this] { seen.add(2); });
    ASSERT_EQ(after.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_EQ(seen.values(), (std::vector<int>{1, 2}));
}

TEST_F(TaskExecutorTest, QuitSafely_WithdrawsPendingWorkAndRefusesEverythingAfter) {
    LogCapture capture;
    TaskExecutor executor(recordWhat());
    ASSERT_TRUE(executor.post([] { std::this_thread::sleep_for(30ms); }));
    ASSERT_TRUE(executor.sendEmptyMessage(1));
    ASSERT_TRUE(executor.sendEmptyMessageDelayed(2, 1h));
    executor.quitSafely();
    EXPECT_TRUE(executor.isTaskExecutorStopped());
    EXPECT_FALSE(executor.sendEmptyMessage(3));
    EXPECT_FALSE(executor.post([this] { seen.add(4); }));
    EXPECT_FALSE(executor.sendEmptyMessageDelayed(5, 1ms));
    EXPECT_FALSE(executor.sendMessageAtFrontOfQueue(executor.obtainMessage(6)));
    EXPECT_FALSE(executor.hasMessages(2));
    executor.removeMessages(2);
    executor.quitSafely();  // again: nothing left to do
    EXPECT_TRUE(seen.values().empty());
    EXPECT_TRUE(capture.texts(ANDROID_LOG_WARN, kTag).empty());
}

TEST_F(TaskExecutorTest, QuitSafely_LeavesASharedPoolRunningForItsOtherUsers) {
    auto pool = std::make_shared<DynamicThreadPool>(2, 1s);
    TaskExecutor quitting(recordWhat(), pool);
    TaskExecutor other(recordWhat(), pool);
    ASSERT_TRUE(quitting.sendEmptyMessage(1));
    ASSERT_TRUE(seen.waitFor(1));
    quitting.quitSafely();
    ASSERT_TRUE(other.sendEmptyMessage(2));
    ASSERT_TRUE(seen.waitFor(2));
    auto direct = pool->submit([] { return 3; });
    ASSERT_EQ(direct.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_EQ(direct.get(), 3);
}

// The job outlives the 200 ms quitSafely waits for it, and then the executor itself; it
// must end without touching the destroyed executor (AddressSanitizer checks it).
TEST_F(TaskExecutorTest, QuitSafely_GivesUpOnAStuckJobWithAWarningAndTheJobEndsSafely) {
    LogCapture capture;
    auto pool = std::make_shared<DynamicThreadPool>(1, 1s);
    auto executor = std::make_unique<TaskExecutor>(recordWhat(), pool);
    holdJob(*executor);
    ASSERT_TRUE(executor->sendEmptyMessage(1));
    const auto begin = Clock::now();
    executor->quitSafely();
    EXPECT_GE(Clock::now() - begin, 200ms);
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kTag), (std::vector<std::string>{kQuitWarning}));
    executor.reset();
    release.open();
    auto freed = pool->submit([] {});  // runs once the abandoned job has ended
    ASSERT_EQ(freed.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_TRUE(seen.values().empty());
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kTag).size(), 1U);
}

TEST_F(TaskExecutorTest, QuitSafelyFromItsOwnClosure_DoesNotWaitForItself) {
    LogCapture capture;
    auto slot = std::make_shared<std::shared_ptr<TaskExecutor>>(TaskExecutor::create(recordWhat()));
    std::promise<bool> stopped;
    ASSERT_TRUE((*slot)->post([slot, &stopped] {
        (*slot)->quitSafely();
        const bool refused = !(*slot)->post([] {});
        slot->reset();  // the last owner: destroyed from its own job
        stopped.set_value(refused);
    }));
    auto future = stopped.get_future();
    ASSERT_EQ(future.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_TRUE(future.get());
    EXPECT_TRUE(capture.texts(ANDROID_LOG_WARN, kTag).empty());
}

TEST_F(TaskExecutorTest, ThrowingClosure_EndsTheJobAndLaterWorkWaitsForQuitSafely) {
    LogCapture capture;
    auto pool = std::make_shared<DynamicThreadPool>(1, 1s);
    TaskExecutor executor(recordWhat(), pool);
    ASSERT_TRUE(executor.post([] { throw std::runtime_error("closure failed"); }));
    auto afterJob = pool->submit([] {});  // the job has ended by the time this runs
    ASSERT_EQ(afterJob.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_TRUE(executor.sendEmptyMessage(1));  // accepted, but no job runs it
    executor.quitSafely();
    EXPECT_TRUE(seen.values().empty());
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kTag), (std::vector<std::string>{kQuitWarning}));
}

TEST_F(TaskExecutorTest, DelayedTask_OrdersByDueTimeAlone) {
    const auto now = Clock::now();
    TaskExecutor::DelayedTask early(2, nullptr, now, nullptr);
    TaskExecutor::DelayedTask late(1, nullptr, now + 1ms, nullptr);
    EXPECT_TRUE(late < early);  // the earliest task is the greatest: it tops the heap
    EXPECT_FALSE(early < late);
    TaskExecutor::DelayedTask same(3, nullptr, now, nullptr);
    EXPECT_FALSE(early < same);
    EXPECT_FALSE(same < early);
}

}  // namespace
}  // namespace smarthome
