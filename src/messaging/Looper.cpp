#include "smarthome/Looper.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "base/Deadline.h"
#include "base/Mutex.h"
#include "base/TestSeam.h"
#include "messaging/DelayedSchedule.h"
#include "messaging/EntryPool.h"
#include "smarthome/Handler.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("Looper");

using Entry = std::unique_ptr<MessageOrRunnable>;
using Clock = std::chrono::steady_clock;

// What the looper keeps after a burst has drained: this many blocks of entry storage
// (64 entries each, about 7 KiB), and containers sized for this many entries. Anything a
// larger burst needed is given back once it has been delivered.
constexpr size_t kKeptEntryBlocks = 16;
constexpr size_t kKeptContainerEntries = 4096;
// How long the looper must have been idle before it gives back what a burst needed.
constexpr std::chrono::milliseconds kIdleBeforeTrim{50};

}  // namespace

// Everything the worker uses. Shared between the Looper and its worker thread, so that a
// worker told to quit from its own thread can finish after the Looper is gone.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the worker's fields get their own line
struct Looper::State {
    mutable detail::Mutex mutex;
    // Declared before the containers, so that it outlives every entry they hold.
    detail::EntryPool pool SH_GUARDED_BY(mutex);
    std::deque<Entry> queue SH_GUARDED_BY(mutex);
    std::condition_variable wakeup;
    std::condition_variable passDone;
    std::vector<std::unique_ptr<DelayedMessage>> delayed SH_GUARDED_BY(mutex);
    int waitMs SH_GUARDED_BY(mutex) = detail::kIdleWaitMs;
    std::thread::id workerId;
    bool quit SH_GUARDED_BY(mutex) = false;
    bool stopping SH_GUARDED_BY(mutex) = false;
    bool flushPending SH_GUARDED_BY(mutex) = false;
    bool delayedChanged SH_GUARDED_BY(mutex) = false;
    bool waiting SH_GUARDED_BY(mutex) = false;  // the worker sleeps on `wakeup`
    bool ended SH_GUARDED_BY(mutex) = false;
    unsigned long long passesStarted SH_GUARDED_BY(mutex) = 0;
    unsigned long long passesCompleted SH_GUARDED_BY(mutex) = 0;
    // Sentinels of departed handlers, released at the end of the pass that may read them.
    std::vector<std::shared_ptr<void>> retired SH_GUARDED_BY(mutex);
    std::thread worker;
    // Used by the worker thread only, on its own cache line: the worker updates it for
    // every entry it delivers.
    alignas(64) std::deque<Entry> batch;

    bool onWorker() const { return std::this_thread::get_id() == workerId; }

    // Whether the caller has to wake the worker. One wake-up per sleep is enough: the
    // worker checks everything that may have changed once it runs, so later senders skip
    // the notification (and its system call) while the first one is on its way.
    bool claimWakeup() SH_REQUIRES(mutex) {
        const bool wake = waiting;
        waiting = false;
        return wake;
    }

    // Runs add() under the lock unless the looper is stopping or accepts() says no;
    // wakes the worker when it sleeps.
    template <typename Accepts, typename Add>
    bool send(Accepts accepts, Add add) {
        bool wake = false;
        {
            detail::MutexLock lock(mutex);
            if (stopping || !accepts()) {
                return false;
            }
            add();
            wake = claimWakeup();
        }
        if (wake) {
            wakeup.notify_one();
        }
        return true;
    }

    void enqueue(Entry entry, Position position) SH_REQUIRES(mutex) {
        if (position == Position::Front) {
            queue.push_front(std::move(entry));
        } else {
            queue.push_back(std::move(entry));
        }
    }

    void schedule(Entry entry, std::chrono::milliseconds delay) SH_REQUIRES(mutex) {
        delayed.push_back(std::make_unique<DelayedMessage>(
            std::move(entry), detail::deadlineAfter(Clock::now(), delay)));
        delayedChanged = true;
    }

    // A handler's immediate send, built in the looper's entry storage.
    template <typename Payload>
    bool sendFromHandler(Payload& payload, Handler* handler, std::atomic<bool>* sentinel,
                         Position position) {
        return send([sentinel] { return sentinel->load(); },
                    [&]() SH_NO_THREAD_SAFETY_ANALYSIS {
                        Entry entry(new (pool.take())
                                        MessageOrRunnable(std::move(payload), handler, sentinel));
                        enqueue(std::move(entry), position);
                    });
    }

    // A handler's delayed send, on the heap: a delayed entry may wait for a long time and
    // would keep a whole block of entry storage in use.
    template <typename Payload>
    bool sendDelayedFromHandler(Payload& payload, Handler* handler, std::atomic<bool>* sentinel,
                                std::chrono::milliseconds delay) {
        if (delay.count() == 0) {
            return sendFromHandler(payload, handler, sentinel, Position::Back);
        }
        Entry entry(new MessageOrRunnable(std::move(payload), handler, sentinel));
        return send([sentinel] { return sentinel->load(); },
                    [&]() SH_NO_THREAD_SAFETY_ANALYSIS { schedule(std::move(entry), delay); });
    }

    // Takes out, under the lock, every entry the predicate accepts; the caller destroys
    // them after the lock is released.
    void takeMatching(const Predicate& predicate, std::vector<Entry>& removed) SH_REQUIRES(mutex) {
        auto keep = std::stable_partition(queue.begin(), queue.end(),
                                          [&](const Entry& entry) { return !predicate(entry); });
        std::move(keep, queue.end(), std::back_inserter(removed));
        queue.erase(keep, queue.end());
        auto keepDelayed = std::stable_partition(
            delayed.begin(), delayed.end(),
            [&](const std::unique_ptr<DelayedMessage>& item) { return !predicate(item->entry); });
        for (auto it = keepDelayed; it != delayed.end(); ++it) {
            removed.push_back(std::move((*it)->entry));
        }
        delayed.erase(keepDelayed, delayed.end());
    }

    // Waits until the pass that starts after this call has completed (or the worker is
    // gone). Called with the lock held through `lock`.
    void waitForNextPass(detail::MutexLock& lock) SH_REQUIRES(mutex) {
        const unsigned long long target = passesStarted + 1;
        lock.wait(passDone, [&]() SH_NO_THREAD_SAFETY_ANALYSIS {
            return passesCompleted >= target || ended;
        });
    }

    bool holdsBurstStorage() const SH_REQUIRES(mutex) {
        return pool.blockCount() > kKeptEntryBlocks || delayed.capacity() > kKeptContainerEntries;
    }

    // Gives back the entry storage and delayed-list capacity beyond what the looper keeps.
    void releaseBurstStorage() SH_REQUIRES(mutex) {
        pool.trim(kKeptEntryBlocks);
        if (delayed.capacity() > kKeptContainerEntries && delayed.size() < delayed.capacity() / 4) {
            delayed.shrink_to_fit();
        }
    }

    void run();
    void deliverBatch();
    void endPass(unsigned long long pass);
    void finish(unsigned long long pass);
};

// Delivered without the lock: senders never wait for a callback. Each entry is destroyed
// as soon as it has run, so nothing it holds outlives its delivery.
void Looper::State::deliverBatch() {
    const size_t delivered = batch.size();
    for (Entry& entry : batch) {
        if (entry->isHandlerValid()) {
            Handler* handler = entry->getHandler();
            handler->processHandlerMessage(std::move(entry));
        }
        entry.reset();
    }
    batch.clear();
    if (delivered > kKeptContainerEntries) {
        std::deque<Entry>().swap(batch);  // gives back the map a burst grew
    }
}

void Looper::State::endPass(unsigned long long pass) {
    std::vector<std::shared_ptr<void>> released;
    {
        detail::MutexLock lock(mutex);
        passesCompleted = pass;
        released.swap(retired);
        pool.flushDelivered();
    }
    passDone.notify_all();
}

// The last pass: discards what is left, then marks the end, so that a caller of
// quitSafely() is released only once every discarded entry has been destroyed.
void Looper::State::finish(unsigned long long pass) {
    {
        std::deque<Entry> discardedQueue;
        std::vector<std::unique_ptr<DelayedMessage>> discardedDelayed;
        std::vector<std::shared_ptr<void>> released;
        {
            detail::MutexLock lock(mutex);
            discardedQueue.swap(queue);
            discardedDelayed.swap(delayed);
            released.swap(retired);
        }
    }
    {
        detail::MutexLock lock(mutex);
        passesCompleted = pass;
        ended = true;
    }
    passDone.notify_all();
}

void Looper::State::run() {
    while (true) {
        bool quitting = false;
        unsigned long long pass = 0;
        {
            detail::MutexLock lock(mutex);
            // `waiting` is raised every time the worker goes (back) to sleep: a wake-up
            // whose cause was withdrawn before the worker ran (a removed message) has been
            // claimed by its sender, and without raising the flag again the next sender
            // would not notify a worker that sleeps on.
            const auto now = Clock::now();
            const auto deadline = now + std::chrono::milliseconds(waitMs);
            // Storage a burst needed is given back once the looper has been idle for a
            // moment, not whenever it catches up: a burst the worker keeps up with in
            // spurts would otherwise free and allocate it again and again.
            auto trimAt = holdsBurstStorage() ? now + kIdleBeforeTrim : deadline;
            while (!(stopping || flushPending || !queue.empty() || delayedChanged)) {
                waiting = true;
                if (trimAt < deadline) {
                    if (lock.waitUntil(wakeup, trimAt) == std::cv_status::timeout) {
                        releaseBurstStorage();
                        trimAt = deadline;
                    }
                } else if (lock.waitUntil(wakeup, deadline) == std::cv_status::timeout) {
                    break;
                }
            }
            waiting = false;
            waitMs = detail::moveDueEntries(delayed, queue, Clock::now());
            delayedChanged = false;
            batch.swap(queue);
            quitting = quit;
            flushPending = false;
            pass = ++passesStarted;
        }
        deliverBatch();
        if (quitting) {
            finish(pass);
            return;
        }
        endPass(pass);
    }
}

Looper::Looper() : state(std::make_shared<State>()) {
    std::shared_ptr<State> shared = state;
    detail::MutexLock lock(state->mutex);
    try {
        SMARTHOME_TEST_SEAM(detail::TestSeam::ThreadStart);
        state->worker = std::thread([shared] { shared->run(); });
        state->workerId = state->worker.get_id();
        state->pool.setDeliverer(state->workerId);
    } catch (const std::system_error& error) {
        // Without a worker nothing could ever run: the looper starts out stopped.
        logger.e("%s:event=workerNotStarted,reason=%s", "Looper", error.what());
        state->quit = true;
        state->stopping = true;
        state->ended = true;
    }
}

Looper::~Looper() {
    quitSafely();
    if (state->onWorker()) {
        // Released from one of its own callbacks: the worker holds the state and ends
        // after this pass.
        state->worker.detach();
    } else if (state->worker.joinable()) {
        state->worker.join();
    }
}

std::shared_ptr<Looper> Looper::get() {
    return shared_from_this();
}

bool Looper::sendMessageOrRunnable(std::unique_ptr<MessageOrRunnable> entry) {
    State& s = *state;
    return s.send(
        [] { return true; },
        [&]() SH_NO_THREAD_SAFETY_ANALYSIS { s.enqueue(std::move(entry), Position::Back); });
}

bool Looper::sendMessageOrRunnableToFront(std::unique_ptr<MessageOrRunnable> entry) {
    State& s = *state;
    return s.send(
        [] { return true; },
        [&]() SH_NO_THREAD_SAFETY_ANALYSIS { s.enqueue(std::move(entry), Position::Front); });
}

bool Looper::sendDelayedMessageOrRunnable(std::unique_ptr<MessageOrRunnable> entry,
                                          std::chrono::milliseconds delay) {
    if (delay.count() == 0) {
        return sendMessageOrRunnable(std::move(entry));
    }
    State& s = *state;
    return s.send([] { return true; },
                  [&]() SH_NO_THREAD_SAFETY_ANALYSIS { s.schedule(std::move(entry), delay); });
}

bool Looper::sendFromHandler(std::unique_ptr<Message>&& message, Handler* handler,
                             std::atomic<bool>* sentinel, Position position) {
    return state->sendFromHandler(message, handler, sentinel, position);
}

bool Looper::sendFromHandler(std::function<void()>&& runnable, Handler* handler,
                             std::atomic<bool>* sentinel, Position position) {
    return state->sendFromHandler(runnable, handler, sentinel, position);
}

bool Looper::sendDelayedFromHandler(std::unique_ptr<Message>&& message, Handler* handler,
                                    std::atomic<bool>* sentinel, std::chrono::milliseconds delay) {
    return state->sendDelayedFromHandler(message, handler, sentinel, delay);
}

bool Looper::sendDelayedFromHandler(std::function<void()>&& runnable, Handler* handler,
                                    std::atomic<bool>* sentinel, std::chrono::milliseconds delay) {
    return state->sendDelayedFromHandler(runnable, handler, sentinel, delay);
}

bool Looper::hasMessages(const Predicate& predicate) const {
    detail::MutexLock lock(state->mutex);
    if (state->stopping) {
        return false;
    }
    return std::any_of(state->queue.begin(), state->queue.end(), predicate) ||
           std::any_of(
               state->delayed.begin(), state->delayed.end(),
               [&](const std::unique_ptr<DelayedMessage>& item) { return predicate(item->entry); });
}

bool Looper::hasAnyMessages() const {
    detail::MutexLock lock(state->mutex);
    return !state->stopping && (!state->queue.empty() || !state->delayed.empty());
}

void Looper::remove(const Predicate& predicate) {
    std::vector<Entry> removed;  // destroyed after the lock is released
    detail::MutexLock lock(state->mutex);
    state->takeMatching(predicate, removed);
    lock.unlock();
}

void Looper::detach(const Handler* handler, std::shared_ptr<std::atomic<bool>> sentinel) {
    std::vector<Entry> removed;  // destroyed after the lock is released
    std::shared_ptr<void> released;
    detail::MutexLock lock(state->mutex);
    sentinel->store(false);
    state->takeMatching([handler](const Entry& entry) { return entry->getHandler() == handler; },
                        removed);
    if (state->ended) {
        released = std::move(sentinel);  // no pass can read it any more
    } else {
        state->retired.push_back(std::move(sentinel));
    }
    lock.unlock();
}

void Looper::flush() {
    State& s = *state;
    if (s.onWorker()) {
        return;  // a callback flushing its own looper must not wait for itself
    }
    detail::MutexLock lock(s.mutex);
    if (s.ended) {
        return;
    }
    if (s.stopping) {
        // Nothing new runs; still let a pass in progress finish, so that a handler being
        // destroyed is not in use when this returns.
        const unsigned long long running = s.passesStarted;
        lock.wait(s.passDone, [&]() SH_NO_THREAD_SAFETY_ANALYSIS {
            return s.passesCompleted >= running || s.ended;
        });
        return;
    }
    s.flushPending = true;
    if (s.claimWakeup()) {
        s.wakeup.notify_one();
    }
    s.waitForNextPass(lock);
}

void Looper::quitSafely() {
    State& s = *state;
    bool wake = false;
    {
        detail::MutexLock lock(s.mutex);
        if (s.stopping) {
            return;
        }
        s.quit = true;
        s.stopping = true;
        s.flushPending = true;
        wake = s.claimWakeup();
    }
    if (wake) {
        s.wakeup.notify_one();
    }
    if (s.onWorker()) {
        return;  // the worker ends after the current pass; it cannot wait for itself
    }
    detail::MutexLock lock(s.mutex);
    lock.wait(s.passDone, [&]() SH_NO_THREAD_SAFETY_ANALYSIS { return s.ended; });
}

}  // namespace smarthome
