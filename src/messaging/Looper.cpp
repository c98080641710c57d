#include "smarthome/Looper.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <thread>
#include <utility>
#include <vector>

#include "messaging/DelayedSchedule.h"
#include "smarthome/Handler.h"
#include "utils/Mutex.h"

namespace smarthome {

using Entry = std::unique_ptr<MessageOrRunnable>;
using Clock = std::chrono::steady_clock;

// Everything the worker uses. Shared between the Looper and its worker thread, so that a
// worker told to quit from its own thread can finish after the Looper is gone.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the worker's fields get their own line
struct Looper::State {
    mutable detail::Mutex mutex;
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
    // Delivered handler entries, emptied, waiting to be refilled by a send. The worker and
    // the senders each hold at most this many, so that a burst does not pin its memory for
    // the looper's lifetime (about 100 bytes an entry).
    static constexpr size_t kMaxSpareEntries = 4096;
    std::vector<Entry> spare SH_GUARDED_BY(mutex);
    // Used by the worker thread only: kept across passes so that their storage is reused.
    // On their own cache line: the worker updates them for every entry it delivers, and
    // sharing a line with what senders write would make each side's writes stall the other.
    alignas(64) std::deque<Entry> batch;
    std::vector<Entry> emptied;

    bool onWorker() const { return std::this_thread::get_id() == workerId; }

    // Adds an entry under the lock; false when stopping. Wakes the worker only when it
    // sleeps: a busy worker looks at the queue again before it sleeps.
    template <typename Add>
    bool add(Add addUnderLock) {
        bool wake = false;
        {
            detail::MutexLock lock(mutex);
            if (stopping) {
                return false;
            }
            addUnderLock();
            wake = claimWakeup();
        }
        if (wake) {
            wakeup.notify_one();
        }
        return true;
    }

    // Whether the caller has to wake the worker. One wake-up per sleep is enough: the
    // worker checks everything that may have changed once it runs, so later senders skip
    // the notification (and its system call) while the first one is on its way.
    bool claimWakeup() SH_REQUIRES(mutex) {
        const bool wake = waiting;
        waiting = false;
        return wake;
    }

    void enqueue(Entry entry, Position position) SH_REQUIRES(mutex) {
        if (position == Position::Front) {
            queue.push_front(std::move(entry));
        } else {
            queue.push_back(std::move(entry));
        }
    }

    // A handler's send, in a spare entry when there is one. Allocation happens outside
    // the lock; the payload is destroyed by the caller's frame when the looper refuses.
    template <typename Payload>
    bool sendFromHandler(Payload& payload, Handler* handler, std::atomic<bool>* sentinel,
                         Position position) {
        bool wake = false;
        {
            detail::MutexLock lock(mutex);
            if (stopping) {
                return false;
            }
            if (!spare.empty()) {
                Entry entry = std::move(spare.back());
                spare.pop_back();
                entry->refill(std::move(payload), handler, sentinel);
                enqueue(std::move(entry), position);
                wake = claimWakeup();
                lock.unlock();
                if (wake) {
                    wakeup.notify_one();
                }
                return true;
            }
        }
        Entry fresh(new MessageOrRunnable(std::move(payload), handler, sentinel));
        return add([&]() SH_NO_THREAD_SAFETY_ANALYSIS { enqueue(std::move(fresh), position); });
    }

    // Hands the worker's emptied entries to the senders once they have used up the previous
    // hand-off: a swap, so that the lock is held for the same short time however many
    // entries a pass delivered.
    void handOverSpare() SH_REQUIRES(mutex) {
        if (spare.empty()) {
            spare.swap(emptied);
        }
    }

    // Bounds what the worker keeps for reuse; the excess is freed outside the lock.
    void trimEmptied() {
        while (emptied.size() > kMaxSpareEntries) {
            emptied.pop_back();
        }
    }

    // Waits until the pass that starts after this call has completed (or the worker is
    // gone). Called with the lock held through `lock`.
    void waitForNextPass(detail::MutexLock& lock) SH_REQUIRES(mutex) {
        const unsigned long long target = passesStarted + 1;
        lock.wait(passDone, [&]() SH_NO_THREAD_SAFETY_ANALYSIS {
            return passesCompleted >= target || ended;
        });
    }

    void run();
    void deliverBatch();

    // The last pass: discards what is left (outside the lock) and marks the end.
    void finish(unsigned long long pass) {
        std::deque<Entry> discardedQueue;
        std::vector<std::unique_ptr<DelayedMessage>> discardedDelayed;
        std::vector<std::shared_ptr<void>> released;
        std::vector<Entry> discardedSpare;
        {
            detail::MutexLock lock(mutex);
            discardedQueue.swap(queue);
            discardedDelayed.swap(delayed);
            released.swap(retired);
            discardedSpare.swap(spare);
            passesCompleted = pass;
            ended = true;
        }
        passDone.notify_all();
    }
};

// Delivered without the lock: senders never wait for a callback.
void Looper::State::deliverBatch() {
    for (Entry& entry : batch) {
        if (!entry->isReusable()) {
            if (entry->isHandlerValid()) {
                Handler* handler = entry->getHandler();
                handler->processHandlerMessage(std::move(entry));
            }
            entry.reset();
            continue;
        }
        if (entry->isHandlerValid()) {
            entry->getHandler()->deliver(*entry);  // the entry stays here, to be reused
        }
        entry->clearPayload();
        emptied.push_back(std::move(entry));
    }
    batch.clear();
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
            const auto deadline = Clock::now() + std::chrono::milliseconds(waitMs);
            while (!(stopping || flushPending || !queue.empty() || delayedChanged)) {
                waiting = true;
                if (lock.waitUntil(wakeup, deadline) == std::cv_status::timeout) {
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
            emptied.clear();
            finish(pass);
            return;
        }
        std::vector<std::shared_ptr<void>> released;
        {
            detail::MutexLock lock(mutex);
            passesCompleted = pass;
            released.swap(retired);
            handOverSpare();
        }
        trimEmptied();
        passDone.notify_all();
    }
}

Looper::Looper() : state(std::make_shared<State>()) {
    std::shared_ptr<State> shared = state;
    detail::MutexLock lock(state->mutex);
    state->worker = std::thread([shared] { shared->run(); });
    state->workerId = state->worker.get_id();
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
    return s.add([&]() SH_NO_THREAD_SAFETY_ANALYSIS { s.queue.push_back(std::move(entry)); });
}

bool Looper::sendMessageOrRunnableToFront(std::unique_ptr<MessageOrRunnable> entry) {
    State& s = *state;
    return s.add([&]() SH_NO_THREAD_SAFETY_ANALYSIS { s.queue.push_front(std::move(entry)); });
}

bool Looper::sendFromHandler(std::unique_ptr<Message> message, Handler* handler,
                             std::atomic<bool>* sentinel, Position position) {
    return state->sendFromHandler(message, handler, sentinel, position);
}

bool Looper::sendFromHandler(std::function<void()> runnable, Handler* handler,
                             std::atomic<bool>* sentinel, Position position) {
    return state->sendFromHandler(runnable, handler, sentinel, position);
}

bool Looper::sendDelayedMessageOrRunnable(std::unique_ptr<MessageOrRunnable> entry,
                                          std::chrono::milliseconds delay) {
    if (delay.count() == 0) {
        return sendMessageOrRunnable(std::move(entry));
    }
    State& s = *state;
    return s.add([&]() SH_NO_THREAD_SAFETY_ANALYSIS {
        s.delayed.push_back(
            std::make_unique<DelayedMessage>(std::move(entry), Clock::now() + delay));
        s.delayedChanged = true;
    });
}

bool Looper::hasMessages(const Predicate& predicate) const {
    detail::MutexLock lock(state->mutex);
    if (state->stopping) {
        return false;
    }
    for (const Entry& entry : state->queue) {
        if (predicate(entry)) {
            return true;
        }
    }
    for (const auto& item : state->delayed) {
        if (predicate(item->entry)) {
            return true;
        }
    }
    return false;
}

bool Looper::hasAnyMessages() const {
    detail::MutexLock lock(state->mutex);
    return !state->stopping && (!state->queue.empty() || !state->delayed.empty());
}

void Looper::remove(const Predicate& predicate) {
    std::vector<Entry> removed;  // destroyed after the lock is released
    {
        detail::MutexLock lock(state->mutex);
        auto& queue = state->queue;
        auto keep = std::stable_partition(queue.begin(), queue.end(),
                                          [&](const Entry& entry) { return !predicate(entry); });
        for (auto it = keep; it != queue.end(); ++it) {
            removed.push_back(std::move(*it));
        }
        queue.erase(keep, queue.end());
        auto& delayed = state->delayed;
        auto keepDelayed = std::stable_partition(
            delayed.begin(), delayed.end(),
            [&](const std::unique_ptr<DelayedMessage>& item) { return !predicate(item->entry); });
        for (auto it = keepDelayed; it != delayed.end(); ++it) {
            removed.push_back(std::move((*it)->entry));
        }
        delayed.erase(keepDelayed, delayed.end());
    }
}

void Looper::retire(std::shared_ptr<void> sentinel) {
    detail::MutexLock lock(state->mutex);
    if (!state->ended) {
        state->retired.push_back(std::move(sentinel));
    }
    // Once ended, no pass can read it: it is released here, after the lock.
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
