#include "smarthome/Looper.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "smarthome/Handler.h"
#include "testing/ExecutionTestSupport.h"
#include "testing/MessagingTestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::Gate;
using test::Recorder;

// A handler whose callback records each message's what.
class LooperTest : public testing::Test {
protected:
    Recorder recorder;
    std::shared_ptr<Looper> looper = Looper::create<>();
    std::unique_ptr<Handler> handler = std::make_unique<Handler>(
        looper, [this](std::unique_ptr<Message> message) { recorder.add(message->what); });

    // Blocks the looper thread until the returned gate opens.
    std::shared_ptr<Gate> block() {
        auto gate = std::make_shared<Gate>();
        auto started = std::make_shared<Gate>();
        handler->post([gate, started] {
            started->open();
            gate->wait();
        });
        EXPECT_TRUE(started->wait());
        return gate;
    }
};

TEST_F(LooperTest, MessagesCarryTheirFieldsAndDefaults) {
    auto message = handler->obtainMessage(5);
    EXPECT_EQ(message->what, 5);
    EXPECT_EQ(message->arg1, -1);
    EXPECT_EQ(message->arg2, -1);
    EXPECT_EQ(message->obj, nullptr);
    EXPECT_EQ(message->data, nullptr);
    int object = 0;
    auto data = std::make_shared<int>(3);
    auto full = handler->obtainMessage(7, 1, 2, static_cast<void*>(&object));
    EXPECT_EQ(full->arg2, 2);
    EXPECT_EQ(full->obj, &object);
    auto both = handler->obtainMessage(8, &object, data);
    EXPECT_EQ(both->data.get(), data.get());
    EXPECT_EQ(both->arg1, -1);
}

TEST_F(LooperTest, FrontInsertionsOvertakeEverythingQueued) {
    auto gate = block();
    handler->sendEmptyMessage(1);
    handler->sendEmptyMessage(2);
    handler->sendMessageAtFrontOfQueue(handler->obtainMessage(3));
    handler->sendMessageAtFrontOfQueue(handler->obtainMessage(4));
    gate->open();
    ASSERT_TRUE(recorder.waitFor(4));
    EXPECT_EQ(recorder.values(), (std::vector<int>{4, 3, 1, 2}));
}

TEST_F(LooperTest, DelayedEntriesDueTogetherRunInPostingOrder) {
    // The 50 ms entry is posted first; a 60 ms callback keeps the worker busy until both
    // are due at the same check.
    auto gate = block();
    const auto start = Clock::now();
    handler->sendEmptyMessageDelayed(50, 50ms);
    handler->sendEmptyMessageDelayed(10, 10ms);
    std::this_thread::sleep_for(60ms);
    gate->open();
    ASSERT_TRUE(recorder.waitFor(2));
    EXPECT_EQ(recorder.values(), (std::vector<int>{50, 10}));
    EXPECT_GE(Clock::now() - start, 50ms);
}

TEST_F(LooperTest, DelaysAreNotShortenedAndZeroOrNegativeRunNext) {
    const auto start = Clock::now();
    std::atomic<long long> ranAfterMs{-1};
    handler->postDelayed(
        [&] {
            ranAfterMs =
                std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
            recorder.add(100);
        },
        120ms);
    auto gate = block();  // both below are pending when the next pass begins
    handler->sendEmptyMessageDelayed(1, -5ms);
    handler->sendEmptyMessageDelayed(2, 0ms);
    gate->open();
    ASSERT_TRUE(recorder.waitFor(3));
    // The zero delay was an immediate send; the negative one joined on the next check.
    EXPECT_EQ(recorder.values(), (std::vector<int>{2, 1, 100}));
    EXPECT_GE(ranAfterMs.load(), 120);
}

TEST_F(LooperTest, QueriesAndRemovalSeeBothQueues) {
    auto gate = block();
    handler->sendEmptyMessage(7);
    handler->sendEmptyMessageDelayed(7, 1h);
    handler->sendEmptyMessage(8);
    EXPECT_TRUE(handler->hasMessages(7));
    EXPECT_TRUE(looper->hasAnyMessages());
    handler->removeMessages(7);
    EXPECT_FALSE(handler->hasMessages(7));
    EXPECT_TRUE(handler->hasMessages(8));
    gate->open();
    ASSERT_TRUE(recorder.waitFor(1));
    looper->flush();
    EXPECT_EQ(recorder.values(), std::vector<int>{8});
    EXPECT_FALSE(looper->hasAnyMessages());
}

TEST_F(LooperTest, ObjectMatcherComparesTheSharedData) {
    auto gate = block();
    auto payload = std::make_shared<int>(1);
    handler->sendMessage(handler->obtainMessage(7, std::static_pointer_cast<void>(payload)));
    handler->sendMessage(handler->obtainMessage(7, static_cast<void*>(payload.get())));
    EXPECT_TRUE(handler->hasMessages(7, payload.get()));
    handler->removeMessages(7, payload.get());
    EXPECT_FALSE(handler->hasMessages(7, payload.get()));
    EXPECT_TRUE(handler->hasMessages(7));  // the one carrying only obj stays
    gate->open();
    ASSERT_TRUE(recorder.waitFor(1));
    looper->flush();
    EXPECT_EQ(recorder.values().size(), 1u);
}

TEST_F(LooperTest, RemovalIsPerHandlerAndClosuresAreNotMatchedByCode) {
    Recorder other;
    Handler second(looper, [&](std::unique_ptr<Message> message) { other.add(message->what); });
    auto gate = block();
    handler->sendEmptyMessage(7);
    second.sendEmptyMessage(7);
    handler->post([this] { recorder.add(99); });
    handler->removeMessages(7);
    EXPECT_TRUE(second.hasMessages(7));
    gate->open();
    ASSERT_TRUE(recorder.waitFor(1));
    ASSERT_TRUE(other.waitFor(1));
    EXPECT_EQ(recorder.values(), std::vector<int>{99});
    auto second_gate = block();
    handler->post([this] { recorder.add(98); });
    handler->removeCallbacksAndMessages();
    second_gate->open();
    looper->flush();
    EXPECT_EQ(recorder.values(), std::vector<int>{99});
}

TEST_F(LooperTest, FlushWaitsForQueuedWorkButNotOnTheLooperThread) {
    std::atomic<bool> flushedInside{false};
    handler->post([&] {
        looper->flush();  // returns at once on the looper thread
        flushedInside = true;
    });
    for (int i = 0; i < 100; ++i) {
        handler->sendEmptyMessage(i);
    }
    looper->flush();
    EXPECT_TRUE(flushedInside);
    EXPECT_EQ(recorder.values().size(), 100u);
}

TEST_F(LooperTest, QuitSafelyDeliversDueWorkAndDropsTheRest) {
    auto gate = block();
    handler->sendEmptyMessage(1);
    handler->sendEmptyMessageDelayed(2, -1ms);
    handler->sendEmptyMessageDelayed(3, 1h);
    std::thread quitter([&] { looper->quitSafely(); });
    // Wait until the looper is stopping (queries answer false), then unblock it.
    for (auto deadline = Clock::now() + test::kTestTimeout;
         looper->hasAnyMessages() && Clock::now() < deadline;) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(handler->sendEmptyMessage(4));
    gate->open();
    quitter.join();
    EXPECT_EQ(recorder.values(), (std::vector<int>{1, 2}));
    EXPECT_FALSE(handler->sendEmptyMessage(5));
    EXPECT_FALSE(handler->post([] {}));
    EXPECT_FALSE(looper->hasAnyMessages());
    EXPECT_FALSE(handler->hasMessages(3));
    looper->quitSafely();  // a second call returns at once
    looper->flush();
}

TEST_F(LooperTest, HandlerQuitSafelyStopsOnlyThatHandler) {
    Recorder other;
    Handler second(looper, [&](std::unique_ptr<Message> message) { other.add(message->what); });
    auto gate = block();
    handler->sendEmptyMessage(1);
    second.sendEmptyMessage(2);
    std::thread quitter([&] { handler->quitSafely(); });
    for (auto deadline = Clock::now() + test::kTestTimeout;
         handler->hasMessages(1) && Clock::now() < deadline;) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(handler->sendEmptyMessage(3));
    gate->open();
    quitter.join();
    ASSERT_TRUE(other.waitFor(1));
    EXPECT_TRUE(recorder.values().empty());
    EXPECT_FALSE(handler->hasMessages(1));
    EXPECT_TRUE(second.sendEmptyMessage(4));
    ASSERT_TRUE(other.waitFor(2));
}

TEST_F(LooperTest, EntriesOfADestroyedHandlerNeverRun) {
    auto gate = block();
    std::atomic<bool> ran{false};
    auto doomed = std::make_unique<Handler>(looper, [&](std::unique_ptr<Message>) { ran = true; });
    doomed->sendEmptyMessage(1);
    doomed->post([&] { ran = true; });
    // The destructor withdraws the entries, then waits for the blocked pass to finish.
    std::thread destroyer([&] { doomed.reset(); });
    for (auto deadline = Clock::now() + test::kTestTimeout;
         looper->hasAnyMessages() && Clock::now() < deadline;) {
        std::this_thread::yield();
    }
    gate->open();
    destroyer.join();
    handler->sendEmptyMessage(9);
    ASSERT_TRUE(recorder.waitFor(1));
    EXPECT_FALSE(ran);
}

TEST_F(LooperTest, AHandlerMayDestroyItselfFromItsCallback) {
    std::unique_ptr<Handler> self;
    Gate destroyed;
    self = std::make_unique<Handler>(looper, [&](std::unique_ptr<Message> message) {
        if (message->what == 1) {
            self.reset();
            destroyed.open();
        } else {
            recorder.add(message->what);  // must never run
        }
    });
    auto gate = block();
    self->sendEmptyMessage(1);
    self->sendEmptyMessage(2);
    gate->open();
    ASSERT_TRUE(destroyed.wait());
    looper->flush();
    EXPECT_TRUE(recorder.values().empty());
}

// The looper reuses the storage of delivered handler entries; reuse must not be visible.
TEST_F(LooperTest, DeliveredClosuresAndMessagesAreReleasedAtOnce) {
    for (int round = 0; round < 3; ++round) {  // later rounds run in reused entries
        auto captured = std::make_shared<int>(round);
        auto data = std::make_shared<int>(round);
        std::weak_ptr<int> weakCaptured = captured;
        std::weak_ptr<int> weakData = data;
        ASSERT_TRUE(handler->post([captured] { EXPECT_GE(*captured, 0); }));
        ASSERT_TRUE(handler->sendMessage(handler->obtainMessage(round, std::move(data))));
        ASSERT_TRUE(handler->sendMessageAtFrontOfQueue(handler->obtainMessage(10 + round)));
        captured.reset();
        looper->flush();
        EXPECT_TRUE(weakCaptured.expired()) << "round " << round;
        EXPECT_TRUE(weakData.expired()) << "round " << round;
    }
}

TEST_F(LooperTest, ReusedEntriesReachTheHandlerThatSentThem) {
    Recorder first;
    auto departed = std::make_unique<Handler>(
        looper, [&](std::unique_ptr<Message> message) { first.add(message->what); });
    for (int i = 0; i < 100; ++i) {
        departed->sendEmptyMessage(i);
    }
    ASSERT_TRUE(first.waitFor(100));
    looper->flush();
    departed.reset();  // its delivered entries now wait for reuse
    std::vector<int> expected;
    for (int i = 0; i < 300; ++i) {
        if (i % 3 == 0) {
            handler->post([this, i] { recorder.add(-i); });
            expected.push_back(-i);
        } else {
            handler->sendEmptyMessage(i);
            expected.push_back(i);
        }
    }
    ASSERT_TRUE(recorder.waitFor(expected.size()));
    EXPECT_EQ(recorder.values(), expected);
}

// An entry built by the caller, of a derived type: delivered, then destroyed as what it is.
class CountedEntry : public MessageOrRunnable {
public:
    CountedEntry(std::unique_ptr<Message> message, Handler* handler, std::atomic<int>& destroyed)
        : MessageOrRunnable(std::move(message), handler), destroyed(destroyed) {}
    ~CountedEntry() override { ++destroyed; }

private:
    std::atomic<int>& destroyed;
};

TEST_F(LooperTest, EntriesBuiltByTheCallerAreDestroyedAsWhatTheyAre) {
    std::atomic<int> destroyed{0};
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(looper->sendMessageOrRunnable(std::make_unique<CountedEntry>(
            std::make_unique<Message>(i), handler.get(), destroyed)));
    }
    ASSERT_TRUE(looper->sendMessageOrRunnable(
        std::make_unique<CountedEntry>(std::make_unique<Message>(9), nullptr, destroyed)));
    handler->sendEmptyMessage(5);
    ASSERT_TRUE(recorder.waitFor(5));
    looper->flush();
    EXPECT_EQ(recorder.values(), (std::vector<int>{0, 1, 2, 3, 5}));
    EXPECT_EQ(destroyed.load(), 5);
}

// Delays too large for the clock saturate: the entry waits (for ever, in practice) instead
// of overflowing into the past and running at once; the most negative delay runs next.
TEST_F(LooperTest, DelaysBeyondTheClocksRangeSaturate) {
    using Hours = std::chrono::hours;
    const struct {
        int what;
        std::chrono::milliseconds delay;
        bool runs;
    } cases[] = {
        {1, std::chrono::milliseconds::max(), false},
        {2, std::chrono::duration_cast<std::chrono::milliseconds>(Hours(24 * 365 * 400)), false},
        {3, std::chrono::milliseconds::max() - 1ms, false},
        {4, std::chrono::milliseconds::min(), true},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(handler->sendEmptyMessageDelayed(c.what, c.delay));
        ASSERT_TRUE(handler->postDelayed([this, c] { recorder.add(10 + c.what); }, c.delay));
    }
    ASSERT_TRUE(recorder.waitFor(2));
    looper->flush();
    EXPECT_EQ(recorder.values(), (std::vector<int>{4, 14}));
    for (const auto& c : cases) {
        EXPECT_EQ(handler->hasMessages(c.what), !c.runs) << c.what;
    }
}

// quitSafely() releases its caller only once the entries it discards are gone: whatever
// their closures captured has been destroyed by then.
TEST_F(LooperTest, QuitSafelyReturnsOnlyAfterDiscardedEntriesAreDestroyed) {
    struct SlowToRelease {
        explicit SlowToRelease(std::shared_ptr<std::atomic<bool>> released)
            : released(std::move(released)) {}
        SlowToRelease(const SlowToRelease&) = delete;
        SlowToRelease& operator=(const SlowToRelease&) = delete;
        std::shared_ptr<std::atomic<bool>> released;
        ~SlowToRelease() {
            std::this_thread::sleep_for(50ms);  // widens the window an early return would hit
            *released = true;
        }
    };
    auto released = std::make_shared<std::atomic<bool>>(false);
    auto capture = std::make_shared<SlowToRelease>(released);
    ASSERT_TRUE(handler->postDelayed([capture] {}, 1h));
    capture.reset();
    looper->quitSafely();
    EXPECT_TRUE(*released);
}

// What a looper keeps after a burst has drained is bounded, whatever the burst's size:
// entry storage, queue and delayed-list capacity go back once it is delivered.
TEST(LooperMemory, ABurstLeavesAtMostABoundedReserveBehind) {
    constexpr size_t kBound = 256 * 1024;
    constexpr int kBurst = 200000;
    const struct {
        const char* name;
        std::function<void(Handler&, int)> send;
    } bursts[] = {
        {"closures", [](Handler& h, int) { h.post([] {}); }},
        {"messages", [](Handler& h, int i) { h.sendEmptyMessage(i); }},
        {"front messages",
         [](Handler& h, int i) { h.sendMessageAtFrontOfQueue(h.obtainMessage(i)); }},
        {"delayed into the past", [](Handler& h, int i) { h.sendEmptyMessageDelayed(i, -1ms); }},
    };
    for (const auto& burst : bursts) {
        Handler handler([](std::unique_ptr<Message>) {});
        handler.post([] {});
        handler.getLooper()->flush();
        const size_t idle = test::allocatedBytes();
        for (int i = 0; i < kBurst; ++i) {
            burst.send(handler, i);
        }
        handler.getLooper()->flush();
        handler.getLooper()->flush();  // the pass after the last delayed entries fell due
        size_t after = 0;
        EXPECT_TRUE(test::eventually([&] {
            after = test::allocatedBytes();
            return after <= idle + kBound;
        })) << burst.name
            << ": " << (after - idle) << " bytes kept";
    }
}

TEST(LooperLifecycle, AHandlerWithItsOwnLooperStopsItsThread) {
    Recorder recorder;
    {
        Handler handler([&](std::unique_ptr<Message> message) { recorder.add(message->what); });
        handler.sendEmptyMessage(1);
        ASSERT_TRUE(recorder.waitFor(1));
        EXPECT_NE(handler.getLooper(), nullptr);
    }
    EXPECT_EQ(recorder.values(), std::vector<int>{1});
}

TEST(LooperLifecycle, TheLastOwnerMayBeReleasedOnTheLooperThread) {
    auto looper = Looper::create<>();
    auto released = std::make_shared<Gate>();  // shared: the worker still uses it afterwards
    auto handler = std::make_shared<Handler>(looper, [](std::unique_ptr<Message>) {});
    std::weak_ptr<Looper> weak = looper;
    looper.reset();
    // The handler now holds the only owner; drop the handler from its own closure.
    auto holder = std::make_shared<std::shared_ptr<Handler>>(handler);
    handler->post([holder, released] {
        holder->reset();
        released->open();
    });
    handler.reset();
    ASSERT_TRUE(released->wait());
    for (auto deadline = Clock::now() + test::kTestTimeout;
         !weak.expired() && Clock::now() < deadline;) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(weak.expired());
}

TEST(LooperLifecycle, GetReturnsTheOwningPointer) {
    auto looper = Looper::create<>();
    EXPECT_EQ(looper->get(), looper);
}

}  // namespace
}  // namespace smarthome
