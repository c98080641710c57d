#include "smarthome/RunUntil.h"
#include "base/TestSeam.h"

#include <condition_variable>
#include <exception>
#include <future>

#include "base/Deadline.h"
#include "base/Mutex.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("RunUntil");

using Clock = std::chrono::steady_clock;

}  // namespace

struct RunUntil::State {
    std::condition_variable wakeup;  // used with mutex; cuts the sleep short
    detail::Mutex mutex;             // held while the condition is evaluated
    std::future<void> poller;
    bool done SH_GUARDED_BY(mutex) = false;

    void poll(const std::function<bool()>& condition, std::chrono::milliseconds interval)
        SH_EXCLUDES(mutex) {
        detail::MutexLock lock(mutex);
        auto start = Clock::now();
        while (true) {
            const bool stopping =
                lock.waitUntil(wakeup, detail::deadlineAfter(start, interval),
                               [this]() SH_NO_THREAD_SAFETY_ANALYSIS { return done; });
            if (stopping) {
                return;
            }
            start = Clock::now();
            if (condition()) {
                done = true;
                return;
            }
        }
    }
};

RunUntil::RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds interval)
    : state(std::make_unique<State>()) {
    State* s = state.get();
    try {
        // Under the default policy: a new thread, or a deferred task when no thread can be
        // created (it then never runs: the destructor finds `done` set first).
        SMARTHOME_TEST_SEAM(detail::TestSeam::ThreadStart);
        s->poller = std::async([s, condition, interval] { s->poll(condition, interval); });
    } catch (const std::exception& error) {
        logger.e("%s:event=pollerNotStarted,reason=%s", "RunUntil", error.what());
    }
}

RunUntil::~RunUntil() {
    State& s = *state;
    {
        // Under the mutex: the poller cannot miss the wake-up between checking `done` and
        // going to sleep, and the write does not race with its read.
        detail::MutexLock lock(s.mutex);
        s.done = true;
    }
    s.wakeup.notify_all();
    if (s.poller.valid()) {
        s.poller.wait();
    }
}

bool RunUntil::isDone() {
    State& s = *state;
    detail::MutexLock lock(s.mutex);
    return s.done;
}

}  // namespace smarthome
