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
    // Used by the worker thread only: kept across passes so that its storage is reused.
    std::deque<Entry> batch;

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
            wake = waiting;
        }
        if (wake) {
            wakeup.notify_one();
        }
        return true;
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

    // The last pass: discards what is left (outside the lock) and marks the end.
    void finish(unsigned long long pass) {
        std::deque<Entry> discardedQueue;
        std::vector<std::unique_ptr<DelayedMessage>> discardedDelayed;
        std::vector<std::shared_ptr<void>> released;
        {
            detail::MutexLock lock(mutex);
            discardedQueue.swap(queue);
            discardedDelayed.swap(delayed);
            released.swap(retired);
            passesCompleted = pass;
            ended = true;
        }
        passDone.notify_all();
    }
};

void Looper::State::run() {
    while (true) {
        bool quitting = false;
        unsigned long long pass = 0;
        {
            detail::MutexLock lock(mutex);
            waiting = true;
            lock.waitUntil(wakeup, Clock::now() + std::chrono::milliseconds(waitMs),
                           [&]() SH_NO_THREAD_SAFETY_ANALYSIS {
                               return stopping || flushPending || !queue.empty() || delayedChanged;
                           });
            waiting = false;
            waitMs = detail::moveDueEntries(delayed, queue, Clock::now());
            delayedChanged = false;
            batch.swap(queue);
            quitting = quit;
            flushPending = false;
            pass = ++passesStarted;
        }
        // Delivered without the lock: senders never wait for a callback.
        for (Entry& entry : batch) {
            if (entry->isHandlerValid()) {
                Handler* handler = entry->getHandler();
                handler->processHandlerMessage(std::move(entry));
            }
            entry.reset();
        }
        batch.clear();
        if (quitting) {
            finish(pass);
            return;
        }
        std::vector<std::shared_ptr<void>> released;
        {
            detail::MutexLock lock(mutex);
            passesCompleted = pass;
            released.swap(retired);
        }
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
    if (s.waiting) {
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
        wake = s.waiting;
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
