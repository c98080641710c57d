#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "smarthome/DynamicThreadPool.h"
#include "testing/ExecutionTestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::eventually;
using test::kTestTimeout;

template <typename T>
bool ready(std::future<T>& future) {
    return future.wait_for(kTestTimeout) == std::future_status::ready;
}

// Submitters on several threads: every task runs once and the pool never exceeds its
// maximum.
TEST(DynamicThreadPoolConcurrency, ConcurrentSubmittersRunEveryTaskWithinTheMaximum) {
    constexpr int kSubmitters = 4;
    constexpr int kTasks = 500;
    DynamicThreadPool pool(3, 1s);
    std::atomic<int> ran{0};
    std::atomic<int> tooMany{0};
    std::vector<std::vector<std::future<void>>> futures(kSubmitters);
    std::vector<std::thread> threads;
    for (int s = 0; s < kSubmitters; ++s) {
        threads.emplace_back([&, s] {
            for (int n = 0; n < kTasks; ++n) {
                futures[static_cast<size_t>(s)].push_back(pool.submit([&] {
                    if (pool.getLiveThreadCount() > 3) {
                        ++tooMany;
                    }
                    ++ran;
                }));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (auto& perSubmitter : futures) {
        for (auto& future : perSubmitter) {
            ASSERT_TRUE(ready(future));
        }
    }
    EXPECT_EQ(ran.load(), kSubmitters * kTasks);
    EXPECT_EQ(tooMany.load(), 0);
}

// Runs one task on each of several pools, then calls `act` on each pool at moments spread
// around the instant its worker's idle time-out expires.
template <typename Act>
void aroundTheIdleTimeout(int pools, unsigned int maxThreads, Act act) {
    std::vector<std::shared_ptr<DynamicThreadPool>> all;
    std::vector<std::future<Clock::time_point>> ends;
    for (int p = 0; p < pools; ++p) {
        all.push_back(std::make_shared<DynamicThreadPool>(maxThreads, 1s));
        ends.push_back(all.back()->submit([] { return Clock::now(); }));
    }
    std::vector<std::thread> threads;
    for (int p = 0; p < pools; ++p) {
        ASSERT_TRUE(ready(ends[static_cast<size_t>(p)]));
        const auto at = ends[static_cast<size_t>(p)].get() + 1s +
                        std::chrono::microseconds(500 * (p - pools / 2));
        threads.emplace_back([&all, &act, at, p] {
            std::this_thread::sleep_until(at);
            act(*all[static_cast<size_t>(p)]);
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST(DynamicThreadPoolConcurrency, ShutdownRacingAnIdleTimeoutNeitherDeadlocksNorLeaks) {
    std::atomic<int> hung{0};
    aroundTheIdleTimeout(16, 2, [&hung](DynamicThreadPool& pool) {
        test::BackgroundCall stopping([&pool] { pool.shutdown(); });
        if (!stopping.waitFor(kTestTimeout)) {
            ++hung;
        }
        EXPECT_TRUE(eventually([&pool] { return pool.getLiveThreadCount() == 0; }));
    });
    EXPECT_EQ(hung.load(), 0);
}

TEST(DynamicThreadPoolConcurrency, SubmitRacingAnIdleTimeoutIsNeverLost) {
    std::atomic<int> lost{0};
    aroundTheIdleTimeout(16, 1, [&lost](DynamicThreadPool& pool) {
        auto task = pool.submit([] { return 5; });
        if (!ready(task) || task.get() != 5) {
            ++lost;
        }
    });
    EXPECT_EQ(lost.load(), 0);
}

// Submitters keep going while the pool shuts down: every future becomes ready, with a
// result or a broken promise, once the pool is gone.
TEST(DynamicThreadPoolConcurrency, ShutdownRacingSubmittersLeavesNoFutureHanging) {
    for (int round = 0; round < 20; ++round) {
        auto pool = std::make_unique<DynamicThreadPool>(2, 1s);
        std::vector<std::vector<std::future<int>>> futures(3);
        std::vector<std::thread> threads;
        for (size_t s = 0; s < futures.size(); ++s) {
            threads.emplace_back([&pool, &futures, s] {
                for (int n = 0; n < 200; ++n) {
                    futures[s].push_back(pool->submit([n] { return n; }));
                }
            });
        }
        threads.emplace_back([&pool] { pool->shutdown(); });
        for (auto& thread : threads) {
            thread.join();
        }
        pool.reset();
        for (auto& perSubmitter : futures) {
            for (auto& future : perSubmitter) {
                ASSERT_TRUE(ready(future));
            }
        }
    }
}

}  // namespace
}  // namespace smarthome
