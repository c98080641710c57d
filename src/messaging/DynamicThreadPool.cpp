#include "smarthome/DynamicThreadPool.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <system_error>
#include <thread>
#include <vector>

#include "base/Deadline.h"
#include "base/Mutex.h"
#include "base/TestSeam.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("DynamicThreadPool");

using Clock = std::chrono::steady_clock;

}  // namespace

// Shared by the pool object and every worker: a worker keeps it alive until it has ended,
// even when the pool object is gone by then.
struct DynamicThreadPool::State {
    State(unsigned int maxThreads, std::chrono::seconds idleTimeout)
        : maxThreads(std::max(maxThreads, 1U)),
          idleTimeout(std::max(idleTimeout, std::chrono::seconds(1))) {}

    detail::Mutex threadsMutex;
    std::vector<std::thread> threads SH_GUARDED_BY(threadsMutex);
    detail::Mutex queueMutex;
    std::deque<std::function<void()>> tasks SH_GUARDED_BY(queueMutex);
    std::condition_variable taskAvailable;  // used with queueMutex
    // Workers started and not yet timed out. Decremented under queueMutex in the same
    // critical section that finds the queue empty, so a submission either sees the worker
    // still waiting (and the worker takes its task) or sees it gone (and starts a new one).
    std::atomic<int> activeThreads{0};
    // Workers whose thread function has not yet returned.
    std::atomic<int> liveThreads{0};
    const unsigned int maxThreads;
    const std::chrono::seconds idleTimeout;
    std::atomic<bool> stopped{false};

    bool shouldShutdownThread() const { return stopped.load(); }

    bool tryGetTaskLocked(std::function<void()>& task) SH_REQUIRES(queueMutex) {
        if (tasks.empty()) {
            return false;
        }
        task = std::move(tasks.front());
        tasks.pop_front();
        return true;
    }

    static void executeTask(const std::function<void()>& task) {
        if (task) {
            task();
        }
    }

    // The worker's own element of `threads` is detached and dropped, unless shutdown()
    // is under way: then shutdown() owns the list and joins the worker.
    bool handleThreadTimeout() SH_EXCLUDES(threadsMutex) {
        detail::MutexLock lock(threadsMutex);
        if (!shouldShutdownThread()) {
            cleanupCurrentThreadLocked(std::this_thread::get_id());
        }
        return true;
    }

    void cleanupCurrentThreadLocked(std::thread::id id) SH_REQUIRES(threadsMutex) {
        auto self = std::find_if(threads.begin(), threads.end(),
                                 [id](const std::thread& thread) { return thread.get_id() == id; });
        if (self != threads.end()) {
            self->detach();
            threads.erase(self);
        }
    }

    // The body of every worker. Holds the state for as long as the thread runs.
    static void workerFunc(const std::shared_ptr<State>& self) { self->work(); }

    void work() SH_EXCLUDES(queueMutex, threadsMutex) {
        struct Departure {
            std::atomic<int>& live;
            ~Departure() { live.fetch_sub(1, std::memory_order_acq_rel); }
        } departure{liveThreads};

        if (shouldShutdownThread()) {
            return;
        }
        while (true) {
            std::function<void()> task;
            bool timedOut = false;
            {
                detail::MutexLock lock(queueMutex);
                const auto deadline = detail::deadlineAfter(Clock::now(), idleTimeout);
                if (!shouldShutdownThread()) {
                    lock.waitUntil(taskAvailable, deadline, [this]() SH_NO_THREAD_SAFETY_ANALYSIS {
                        return shouldShutdownThread() || !tasks.empty();
                    });
                }
                if (!tryGetTaskLocked(task)) {
                    if (shouldShutdownThread()) {
                        return;
                    }
                    activeThreads.fetch_sub(1, std::memory_order_relaxed);
                    timedOut = true;
                }
            }
            if (timedOut) {
                handleThreadTimeout();
                return;
            }
            executeTask(task);
            task = nullptr;  // the task's captures go before the worker waits again
            if (shouldShutdownThread()) {
                return;
            }
        }
    }
};

DynamicThreadPool::DynamicThreadPool(unsigned int maxThreads, std::chrono::seconds idleTimeout)
    : state(std::make_shared<State>(maxThreads, idleTimeout)) {}

DynamicThreadPool::~DynamicThreadPool() {
    shutdown();
    // Tasks that never ran go with the pool; their futures report a broken promise.
    std::deque<std::function<void()>> leftovers;
    {
        detail::MutexLock lock(state->queueMutex);
        leftovers.swap(state->tasks);
    }
}

void DynamicThreadPool::enqueue(std::function<void()> call) {
    State& s = *state;
    if (s.shouldShutdownThread()) {
        return;  // dropped: the caller's future reports a broken promise
    }
    {
        detail::MutexLock lock(s.queueMutex);
        s.tasks.push_back(std::move(call));
    }
    {
        detail::MutexLock lock(s.threadsMutex);
        if (!s.shouldShutdownThread() && static_cast<unsigned int>(s.activeThreads.load(
                                             std::memory_order_relaxed)) < s.maxThreads) {
            s.liveThreads.fetch_add(1, std::memory_order_acq_rel);
            try {
                SMARTHOME_TEST_SEAM(detail::TestSeam::ThreadStart);
                s.threads.emplace_back(&State::workerFunc, state);
                s.activeThreads.fetch_add(1, std::memory_order_relaxed);
            } catch (const std::system_error& error) {
                // The task stays queued for a worker that is alive or started later.
                s.liveThreads.fetch_sub(1, std::memory_order_acq_rel);
                logger.e("%s:event=workerNotStarted,reason=%s", "submit", error.what());
            }
        }
    }
    s.taskAvailable.notify_one();
}

void DynamicThreadPool::shutdown() {
    State& s = *state;
    {
        // Under the queue mutex, so that a worker between its check and its wait cannot
        // miss the wake-up.
        detail::MutexLock lock(s.queueMutex);
        s.stopped.store(true);
    }
    s.taskAvailable.notify_all();
    // Joined outside threadsMutex: a worker timing out at this moment takes that mutex in
    // handleThreadTimeout() before it ends, and must not wait for a join of itself.
    std::vector<std::thread> workers;
    {
        detail::MutexLock lock(s.threadsMutex);
        workers.swap(s.threads);
    }
    const auto self = std::this_thread::get_id();
    for (std::thread& worker : workers) {
        if (!worker.joinable()) {
            continue;
        }
        if (worker.get_id() == self) {
            worker.detach();  // a task shutting down its own pool
        } else {
            worker.join();
        }
    }
}

unsigned int DynamicThreadPool::getMaxThreads() const {
    return state->maxThreads;
}

std::chrono::seconds DynamicThreadPool::getIdleTimeout() const {
    return state->idleTimeout;
}

int DynamicThreadPool::getLiveThreadCount() const {
    return state->liveThreads.load(std::memory_order_acquire);
}

}  // namespace smarthome
