#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "smarthome/Handler.h"
#include "smarthome/Looper.h"
#include "testing/MessagingTestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;

// Senders, removers, queriers and flushers on one looper while short-lived handlers come
// and go: every accepted message of the long-lived handler arrives exactly once and in
// sending order per sender, nothing reaches a destroyed handler, nothing deadlocks.
TEST(LooperConcurrency, MixedOperationsKeepEveryAcceptedMessage) {
    auto looper = Looper::create<>();
    constexpr int kSenders = 3;
    constexpr int kPerSender = 3000;
    std::vector<std::vector<int>> received(kSenders);
    std::atomic<int> total{0};
    Handler stable(looper, [&](std::unique_ptr<Message> message) {
        received[static_cast<size_t>(message->arg1)].push_back(message->arg2);
        ++total;
    });

    std::atomic<bool> stop{false};
    std::atomic<int> deliveredToDead{0};
    std::vector<std::thread> threads;
    for (int s = 0; s < kSenders; ++s) {
        threads.emplace_back([&, s] {
            for (int n = 0; n < kPerSender; ++n) {
                ASSERT_TRUE(stable.sendMessage(stable.obtainMessage(1, s, n)));
                if (n % 500 == 0) {
                    looper->flush();
                }
            }
        });
    }
    threads.emplace_back([&] {
        std::mt19937 random(1);
        while (!stop) {
            auto alive = std::make_shared<std::atomic<bool>>(true);
            auto temporary = std::make_unique<Handler>(
                looper, [alive, &deliveredToDead](std::unique_ptr<Message>) {
                    if (!alive->load()) {
                        ++deliveredToDead;
                    }
                });
            temporary->sendEmptyMessage(2);
            temporary->sendEmptyMessageDelayed(3, std::chrono::milliseconds(random() % 3));
            temporary->post([] {});
            temporary->removeMessages(3);
            temporary.reset();
            alive->store(false);
        }
    });
    threads.emplace_back([&] {
        while (!stop) {
            stable.hasMessages(1);
            looper->hasAnyMessages();
            stable.removeMessages(99);
            stable.sendEmptyMessageDelayed(99, 1h);
        }
    });
    for (int s = 0; s < kSenders; ++s) {
        threads[static_cast<size_t>(s)].join();
    }
    stop = true;
    for (size_t t = kSenders; t < threads.size(); ++t) {
        threads[t].join();
    }
    looper->flush();
    EXPECT_EQ(total.load(), kSenders * kPerSender);
    for (const auto& values : received) {
        ASSERT_EQ(values.size(), static_cast<size_t>(kPerSender));
        for (int n = 0; n < kPerSender; ++n) {
            ASSERT_EQ(values[static_cast<size_t>(n)], n);
        }
    }
    EXPECT_EQ(deliveredToDead.load(), 0);
    stable.removeMessages(99);
}

TEST(LooperConcurrency, HandlersDestroyedWhileTheirCallbacksRun) {
    auto looper = Looper::create<>();
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> destroyed{false};
        std::atomic<int> afterDestroy{0};
        auto handler = std::make_unique<Handler>(looper, [&](std::unique_ptr<Message>) {
            std::this_thread::yield();
            if (destroyed) {
                ++afterDestroy;
            }
        });
        for (int i = 0; i < 20; ++i) {
            handler->sendEmptyMessage(i);
        }
        handler.reset();  // waits for a running callback of this handler
        destroyed = true;
        looper->flush();
        ASSERT_EQ(afterDestroy.load(), 0);
    }
}

// A callback that keeps re-arming delayed work on its own handler while another thread
// destroys that handler: no entry may outlive the handler and read its memory when it falls
// due (AddressSanitizer sees such a read). Another handler on the same looper goes on
// receiving, and a third thread queries the looper throughout.
TEST(LooperConcurrency, AHandlerDestroyedWhileItsCallbackReArmsDelayedWork) {
    auto looper = Looper::create<>();
    test::Recorder survivor;
    Handler other(looper, [&](std::unique_ptr<Message> message) { survivor.add(message->what); });
    std::atomic<bool> stop{false};
    std::thread querier([&] {
        while (!stop) {
            looper->hasAnyMessages();
            other.hasMessages(1);
        }
    });
    for (int round = 0; round < 200; ++round) {
        auto handler = std::make_unique<Handler>(looper, [](std::unique_ptr<Message>) {});
        Handler* self = handler.get();
        test::Gate running;
        // Re-arms until the handler refuses, so that it is still posting when the
        // destruction starts.
        handler->post([&] {
            running.open();
            while (self->postDelayed([] {}, 1ms) &&
                   self->sendMessageDelayed(self->obtainMessage(1), 1ms)) {
            }
        });
        ASSERT_TRUE(running.wait());
        handler.reset();
        ASSERT_TRUE(other.sendEmptyMessageDelayed(round, 2ms));
        ASSERT_TRUE(survivor.waitFor(static_cast<size_t>(round) + 1));
    }
    stop = true;
    querier.join();
    EXPECT_EQ(survivor.values().size(), 200u);
}

// A message removed before the sleeping worker got to it still cost its wake-up: the
// worker wakes, finds nothing and sleeps again. The next flush must wake it once more
// rather than wait for the idle time-out.
TEST(LooperConcurrency, AWakeUpWhoseMessageWasRemovedIsNotTheLastOne) {
    auto looper = Looper::create<>();
    Handler handler(looper, [](std::unique_ptr<Message>) {});
    for (int round = 0; round < 3000; ++round) {
        handler.sendEmptyMessage(1);
        handler.removeMessages(1);
        auto flushed = std::async(std::launch::async, [&looper] { looper->flush(); });
        if (flushed.wait_for(test::kTestTimeout) != std::future_status::ready) {
            handler.sendEmptyMessage(2);  // wakes the worker, so the test can end
            FAIL() << "flush did not return in round " << round;
        }
    }
}

TEST(LooperConcurrency, LoopersReleasedFromOtherThreadsShutDownCleanly) {
    for (int round = 0; round < 50; ++round) {
        auto looper = Looper::create<>();
        test::Recorder recorder;
        auto handler = std::make_shared<Handler>(
            looper, [&](std::unique_ptr<Message> message) { recorder.add(message->what); });
        handler->sendEmptyMessage(1);
        handler->sendEmptyMessageDelayed(2, 1h);
        std::thread other([h = std::move(handler), l = std::move(looper)]() mutable {
            h.reset();
            l.reset();
        });
        other.join();
        EXPECT_LE(recorder.values().size(), 1u);
    }
}

}  // namespace
}  // namespace smarthome
