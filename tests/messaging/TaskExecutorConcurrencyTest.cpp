#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "base/TestSeam.h"
#include "smarthome/DynamicThreadPool.h"
#include "smarthome/TaskExecutor.h"
#include "testing/ExecutionTestSupport.h"
#include "testing/MessagingTestSupport.h"

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

// Holds the first draining job that reaches the end of its linger until release opens.
// The state is shared with the hook, which may still be running when this goes.
struct HeldAtLingerEnd {
    struct State {
        test::Gate reached;
        test::Gate release;
        std::atomic<bool> armed{true};
    };
    std::shared_ptr<State> state = std::make_shared<State>();

    HeldAtLingerEnd() {
        detail::setTestSeamHook([state = state](detail::TestSeam seam) {
            if (seam == detail::TestSeam::ExecutorLingerEnded && state->armed.exchange(false)) {
                state->reached.open();
                state->release.wait();
            }
        });
    }
    ~HeldAtLingerEnd() {
        state->release.open();
        detail::setTestSeamHook(nullptr);
    }
    HeldAtLingerEnd(const HeldAtLingerEnd&) = delete;
    HeldAtLingerEnd& operator=(const HeldAtLingerEnd&) = delete;
};

// The draining job's last look at the queues and its end are one step. Held at a seam
// right after its linger found nothing, the job is sent a task (the send sees a job still
// running and starts none): released, the job must notice the task and run it rather than
// end and strand it until some later send.
TEST(TaskExecutorConcurrency, ATaskSentAsTheJobEndsIsRun) {
    const struct {
        const char* kind;
        std::function<bool(TaskExecutor&, std::function<void()>)> send;
    } sends[] = {
        {"immediate", [](TaskExecutor& e, std::function<void()> task) { return e.post(task); }},
        {"delayed",
         [](TaskExecutor& e, std::function<void()> task) { return e.postDelayed(task, 1ms); }},
    };
    for (const auto& send : sends) {
        TaskExecutor executor(nullptr);
        HeldAtLingerEnd held;
        ASSERT_TRUE(executor.post([] {}));
        ASSERT_TRUE(held.state->reached.wait()) << send.kind;
        std::atomic<bool> ran{false};
        ASSERT_TRUE(send.send(executor, [&ran] { ran = true; }));
        held.state->release.open();
        EXPECT_TRUE(eventually([&ran] { return ran.load(); })) << send.kind;
    }
}

}  // namespace
}  // namespace smarthome
