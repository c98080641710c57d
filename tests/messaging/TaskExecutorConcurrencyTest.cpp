#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "messaging/ExecutionTestSupport.h"
#include "smarthome/DynamicThreadPool.h"
#include "smarthome/TaskExecutor.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using test::eventually;
using test::OverlapProbe;

enum Code { kImmediate = 1, kDelayed = 2, kWithdrawable = 3 };

// Producers send immediate and delayed messages and closures while other threads withdraw
// and query one code: every task that was accepted and not withdrawable runs exactly once,
// immediate messages of one producer in sending order, and no two tasks overlap.
TEST(TaskExecutorConcurrency, ProducersRemoversAndQueriersKeepEveryAcceptedTask) {
    constexpr int kProducers = 3;
    constexpr int kRounds = 600;
    OverlapProbe probe;
    std::vector<std::vector<int>> immediateOrder(kProducers);  // only touched by tasks
    std::atomic<int> mustRun{0};
    std::atomic<int> withdrawableRan{0};
    TaskExecutor executor([&](std::unique_ptr<Message> message) {
        OverlapProbe::Scope scope(probe);
        if (message->what == kImmediate) {
            immediateOrder[static_cast<size_t>(message->arg1)].push_back(message->arg2);
        }
        if (message->what == kWithdrawable) {
            ++withdrawableRan;
        } else {
            ++mustRun;
        }
    });

    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int p = 0; p < kProducers; ++p) {
        threads.emplace_back([&, p] {
            std::mt19937 random(static_cast<unsigned>(p));
            for (int n = 0; n < kRounds; ++n) {
                const auto delay = std::chrono::milliseconds(1 + random() % 3);
                ASSERT_TRUE(executor.sendMessage(executor.obtainMessage(kImmediate, p, n)));
                ASSERT_TRUE(executor.sendEmptyMessageDelayed(kDelayed, delay));
                ASSERT_TRUE(executor.sendEmptyMessageDelayed(kWithdrawable, delay));
                ASSERT_TRUE(executor.post([&] {
                    OverlapProbe::Scope scope(probe);
                    ++mustRun;
                }));
                ASSERT_TRUE(executor.postDelayed(
                    [&] {
                        OverlapProbe::Scope scope(probe);
                        ++mustRun;
                    },
                    delay));
            }
        });
    }
    threads.emplace_back([&] {
        while (!stop) {
            executor.removeMessages(kWithdrawable);
            std::this_thread::yield();
        }
    });
    threads.emplace_back([&] {
        while (!stop) {
            executor.hasMessages(kDelayed);
            executor.hasMessages(kWithdrawable);
            std::this_thread::yield();
        }
    });
    for (int p = 0; p < kProducers; ++p) {
        threads[static_cast<size_t>(p)].join();
    }
    stop = true;
    for (size_t t = kProducers; t < threads.size(); ++t) {
        threads[t].join();
    }

    constexpr int kExpected = kProducers * kRounds * 4;
    ASSERT_TRUE(eventually([&] { return mustRun.load() >= kExpected; })) << mustRun.load();
    ASSERT_TRUE(eventually([&] { return !executor.hasMessages(kWithdrawable); }));
    executor.quitSafely();
    EXPECT_EQ(mustRun.load(), kExpected);
    EXPECT_LE(withdrawableRan.load(), kProducers * kRounds);
    EXPECT_EQ(probe.overlaps(), 0);
    for (const auto& order : immediateOrder) {
        ASSERT_EQ(order.size(), static_cast<size_t>(kRounds));
        for (int n = 0; n < kRounds; ++n) {
            ASSERT_EQ(order[static_cast<size_t>(n)], n);
        }
    }
}

// Executors share a small pool while one of them quits under load: the others lose
// nothing, each executor's tasks stay serialised, and the quitting one runs nothing after
// quitSafely() returned.
TEST(TaskExecutorConcurrency, ExecutorsSharingAPoolWhileOneQuits) {
    constexpr int kExecutors = 4;
    constexpr int kPosts = 1500;
    auto pool = std::make_shared<DynamicThreadPool>(3, 1s);
    std::vector<OverlapProbe> probes(kExecutors);
    std::vector<std::atomic<int>> ran(kExecutors);
    std::vector<std::atomic<int>> accepted(kExecutors);
    std::vector<std::unique_ptr<TaskExecutor>> executors;
    for (int e = 0; e < kExecutors; ++e) {
        executors.push_back(std::make_unique<TaskExecutor>(nullptr, pool));
    }
    std::atomic<bool> quitReturned{false};
    std::atomic<int> ranAfterQuit{0};

    std::vector<std::thread> threads;
    for (int e = 0; e < kExecutors; ++e) {
        threads.emplace_back([&, e] {
            auto& executor = *executors[static_cast<size_t>(e)];
            auto& probe = probes[static_cast<size_t>(e)];
            auto& count = ran[static_cast<size_t>(e)];
            for (int n = 0; n < kPosts; ++n) {
                auto task = [&probe, &count, &quitReturned, &ranAfterQuit, e] {
                    OverlapProbe::Scope scope(probe);
                    if (e == 0 && quitReturned) {
                        ++ranAfterQuit;
                    }
                    ++count;
                };
                const bool ok = n % 4 == 0 ? executor.postDelayed(task, 1ms) : executor.post(task);
                if (ok) {
                    ++accepted[static_cast<size_t>(e)];
                }
                ASSERT_TRUE(ok || e == 0);
            }
        });
    }
    threads.emplace_back([&] {
        ASSERT_TRUE(eventually([&] { return ran[0].load() >= kPosts / 10; }));
        executors[0]->quitSafely();
        quitReturned = true;
    });
    for (auto& thread : threads) {
        thread.join();
    }
    for (int e = 1; e < kExecutors; ++e) {
        ASSERT_TRUE(eventually([&] { return ran[static_cast<size_t>(e)].load() == kPosts; }))
            << "executor " << e << " ran " << ran[static_cast<size_t>(e)].load();
    }
    executors.clear();
    EXPECT_EQ(ranAfterQuit.load(), 0);
    EXPECT_LE(ran[0].load(), accepted[0].load());
    for (const auto& probe : probes) {
        EXPECT_EQ(probe.overlaps(), 0);
    }
}

// Sends timed to land around the end of the draining job's 10 ms linger: a task sent just
// as the job decides to end must start a new job or be taken by the ending one, never be
// left waiting for a later send.
TEST(TaskExecutorConcurrency, SendsAtTheEndOfTheLingerAreNeverStranded) {
    constexpr int kExecutors = 3;
    constexpr int kRounds = 40;
    auto pool = std::make_shared<DynamicThreadPool>(kExecutors, 1s);
    std::vector<std::thread> threads;
    std::atomic<int> stranded{0};
    for (int e = 0; e < kExecutors; ++e) {
        threads.emplace_back([&, e] {
            TaskExecutor executor(nullptr, pool);
            std::mt19937 random(static_cast<unsigned>(e));
            for (int round = 0; round < kRounds; ++round) {
                std::atomic<bool> ran{false};
                if (round % 2 == 0) {
                    ASSERT_TRUE(executor.post([&ran] { ran = true; }));
                } else {
                    ASSERT_TRUE(executor.postDelayed([&ran] { ran = true; }, 1ms));
                }
                if (!eventually([&ran] { return ran.load(); })) {
                    ++stranded;
                    return;
                }
                std::this_thread::sleep_for(std::chrono::microseconds(9000 + random() % 3000));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(stranded.load(), 0);
}

}  // namespace
}  // namespace smarthome
