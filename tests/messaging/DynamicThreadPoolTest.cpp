#include "smarthome/DynamicThreadPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "testing/ExecutionTestSupport.h"
#include "testing/MessagingTestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::eventually;
using test::Gate;
using test::kTestTimeout;

template <typename T>
bool ready(std::future<T>& future) {
    return future.wait_for(kTestTimeout) == std::future_status::ready;
}

TEST(DynamicThreadPoolTest, Construction_ClampsLimitsAndKeepsValidOnes) {
    DynamicThreadPool defaults;
    EXPECT_EQ(defaults.getMaxThreads(), 5U);
    EXPECT_EQ(defaults.getIdleTimeout(), 1s);

    DynamicThreadPool zero(0, 0s);
    EXPECT_EQ(zero.getMaxThreads(), 1U);
    EXPECT_EQ(zero.getIdleTimeout(), 1s);

    DynamicThreadPool negative(2, -5s);
    EXPECT_EQ(negative.getIdleTimeout(), 1s);

    DynamicThreadPool kept(7, 3s);
    EXPECT_EQ(kept.getMaxThreads(), 7U);
    EXPECT_EQ(kept.getIdleTimeout(), 3s);
    EXPECT_EQ(kept.getLiveThreadCount(), 0);  // nothing started before the first task
}

TEST(DynamicThreadPoolTest, ZeroMaximum_RunsTasksOneAtATimeOnOneWorker) {
    DynamicThreadPool pool(0, 0s);
    Gate release;
    std::atomic<bool> firstRunning{false};
    auto first = pool.submit([&] {
        firstRunning = true;
        release.wait();
        return std::this_thread::get_id();
    });
    auto second = pool.submit([&] { return std::this_thread::get_id(); });
    ASSERT_TRUE(eventually([&] { return firstRunning.load(); }));
    EXPECT_EQ(pool.getLiveThreadCount(), 1);
    EXPECT_EQ(second.wait_for(20ms), std::future_status::timeout);  // waits for the only worker
    release.open();
    ASSERT_TRUE(ready(first));
    ASSERT_TRUE(ready(second));
    EXPECT_EQ(first.get(), second.get());
}

TEST(DynamicThreadPoolTest, Submit_StartsAWorkerPerTaskUpToTheMaximum) {
    DynamicThreadPool pool(5, 1s);
    Gate release;
    std::atomic<int> running{0};
    std::vector<std::future<std::thread::id>> futures;
    for (int i = 0; i < 7; ++i) {
        futures.push_back(pool.submit([&] {
            ++running;
            release.wait();
            return std::this_thread::get_id();
        }));
    }
    ASSERT_TRUE(eventually([&] { return running.load() == 5; }));
    EXPECT_EQ(pool.getLiveThreadCount(), 5);
    release.open();
    std::set<std::thread::id> workers;
    for (auto& future : futures) {
        ASSERT_TRUE(ready(future));
        workers.insert(future.get());
    }
    EXPECT_EQ(workers.size(), 5U);  // the last two reused busy workers once they were free
    EXPECT_EQ(running.load(), 7);
}

TEST(DynamicThreadPoolTest, IdleWorkers_EndAfterTheIdleTimeoutAndNotBefore) {
    DynamicThreadPool pool;
    Gate release;
    std::atomic<int> running{0};
    std::vector<std::future<Clock::time_point>> futures;
    for (int i = 0; i < 3; ++i) {
        futures.push_back(pool.submit([&] {
            ++running;
            release.wait();
            return Clock::now();
        }));
    }
    ASSERT_TRUE(eventually([&] { return running.load() == 3; }));
    EXPECT_EQ(pool.getLiveThreadCount(), 3);
    release.open();
    Clock::time_point lastEnd{};
    for (auto& future : futures) {
        ASSERT_TRUE(ready(future));
        lastEnd = std::max(lastEnd, future.get());
    }
    ASSERT_TRUE(eventually([&] { return pool.getLiveThreadCount() == 0; }));
    EXPECT_GE(Clock::now() - lastEnd, 1s);

    // An idle pool starts a worker again for new work.
    auto again = pool.submit([] { return 7; });
    ASSERT_TRUE(ready(again));
    EXPECT_EQ(again.get(), 7);
}

TEST(DynamicThreadPoolTest, Submit_DeliversResultsAndExceptionsThroughTheFuture) {
    DynamicThreadPool pool(1, 1s);
    auto value = pool.submit([] { return 42; });
    auto before = pool.submit([] { return std::this_thread::get_id(); });
    auto failing = pool.submit([]() -> int { throw std::runtime_error("task failed"); });
    auto after = pool.submit([] { return std::this_thread::get_id(); });
    ASSERT_TRUE(ready(value));
    EXPECT_EQ(value.get(), 42);
    ASSERT_TRUE(ready(failing));
    EXPECT_THROW(failing.get(), std::runtime_error);
    // The exception did not end the only worker: the same thread ran the next task.
    ASSERT_TRUE(ready(before));
    ASSERT_TRUE(ready(after));
    EXPECT_EQ(before.get(), after.get());
    EXPECT_EQ(pool.getLiveThreadCount(), 1);
}

TEST(DynamicThreadPoolTest, SubmitAfterShutdown_NeverRunsAndReportsABrokenPromise) {
    DynamicThreadPool pool;
    pool.shutdown();
    std::atomic<bool> ran{false};
    auto future = pool.submit([&] { ran = true; });
    ASSERT_TRUE(ready(future));
    try {
        future.get();
        ADD_FAILURE() << "a dropped task reported success";
    } catch (const std::future_error& error) {
        EXPECT_EQ(error.code(), std::future_errc::broken_promise);
    }
    EXPECT_FALSE(ran.load());
    EXPECT_EQ(pool.getLiveThreadCount(), 0);
    pool.shutdown();  // a second call finds nothing to do
}

TEST(DynamicThreadPoolTest, Shutdown_JoinsBusyWorkersAndDropsTasksStillQueued) {
    auto pool = std::make_unique<DynamicThreadPool>(1, 1s);
    Gate release;
    std::atomic<bool> running{false};
    std::atomic<bool> finished{false};
    auto busy = pool->submit([&] {
        running = true;
        release.wait();
        finished = true;
    });
    std::atomic<bool> queuedRan{false};
    auto queued = pool->submit([&] { queuedRan = true; });
    ASSERT_TRUE(eventually([&] { return running.load(); }));

    test::BackgroundCall stopping([&] { pool->shutdown(); });
    EXPECT_FALSE(stopping.waitFor(20ms));  // joins the busy worker
    release.open();
    ASSERT_TRUE(stopping.waitFor(kTestTimeout));
    EXPECT_TRUE(finished.load());  // shutdown returned only after the busy task ended
    EXPECT_EQ(pool->getLiveThreadCount(), 0);

    pool.reset();  // the task that never ran goes with the pool
    ASSERT_TRUE(ready(queued));
    EXPECT_THROW(queued.get(), std::future_error);
    EXPECT_FALSE(queuedRan.load());
}

TEST(DynamicThreadPoolTest, ShutdownFromItsOwnTask_DetachesThatWorkerAndReturns) {
    auto pool = std::make_shared<DynamicThreadPool>(2, 1s);
    auto inside = pool->submit([&pool] {
        pool->shutdown();
        return true;
    });
    ASSERT_TRUE(ready(inside));
    EXPECT_TRUE(inside.get());
    ASSERT_TRUE(eventually([&] { return pool->getLiveThreadCount() == 0; }));
    auto refused = pool->submit([] {});
    ASSERT_TRUE(ready(refused));
    EXPECT_THROW(refused.get(), std::future_error);
}

// The last owner released inside the pool's own task: the pool object is destroyed on
// its worker, which then goes on without it (AddressSanitizer checks it reads no freed
// memory on its way out).
TEST(DynamicThreadPoolTest, PoolDestroyedByItsOwnTask_WorkerEndsCleanly) {
    auto pool = std::make_shared<DynamicThreadPool>(1, 1s);
    Gate release;
    std::promise<void> destroyed;
    auto destroyedFuture = destroyed.get_future();
    pool->submit([&release, &destroyed, owner = pool]() mutable {
        release.wait();
        owner.reset();  // the last reference: runs the destructor on this worker
        destroyed.set_value();
    });
    std::weak_ptr<DynamicThreadPool> watch = pool;
    pool.reset();
    release.open();
    ASSERT_EQ(destroyedFuture.wait_for(kTestTimeout), std::future_status::ready);
    EXPECT_TRUE(watch.expired());
    // Give the detached worker a chance to finish while the test still runs.
    std::this_thread::sleep_for(20ms);
}

}  // namespace
}  // namespace smarthome
