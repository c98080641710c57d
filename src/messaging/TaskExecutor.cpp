#include "smarthome/TaskExecutor.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <iterator>
#include <optional>
#include <queue>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Deadline.h"
#include "base/Mutex.h"
#include "base/TestSeam.h"
#include "smarthome/DelayedTask.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/Task.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("TaskExecutor");

using Clock = std::chrono::steady_clock;

// How long a draining job waits for new immediate work before it gives its worker back.
constexpr std::chrono::milliseconds kLinger{10};
constexpr size_t kCacheLine = 64;
// How long quitSafely() waits for a running job.
constexpr std::chrono::milliseconds kQuitTimeout{200};

}  // namespace

// Shared by the executor object and its draining job: a job still running after
// quitSafely() gave up on it, or after the executor was destroyed, keeps it alive.
//
// Lock order, where locks nest: processingMutex, then queueMutex, then delayedMutex (the
// end of a job); delayedMutex before mapsMutex (discarding withdrawn delayed tasks). The
// pool's own locks are taken under processingMutex (submitting the job). Nothing else nests.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): padded into cache-line groups
struct TaskExecutor::State {
    State(const Callback& callback, std::shared_ptr<DynamicThreadPool> sharedPool)
        : callback(std::make_shared<const Callback>(callback)),
          usesSharedPool(sharedPool != nullptr),
          pool(sharedPool != nullptr ? std::move(sharedPool)
                                     : std::make_shared<DynamicThreadPool>()) {}

    // Shared with the closures that carry delayed messages.
    const std::shared_ptr<const Callback> callback;

    // Members are grouped by who touches them how often, each group on cache lines of its
    // own: the sender and the job each write their own lines on every task, and read the
    // rarely written flags without pulling the other's lines over.

    // Immediate queue: every send, and the job once per batch.
    alignas(kCacheLine) detail::Mutex queueMutex;
    std::deque<std::unique_ptr<Task>> queue SH_GUARDED_BY(queueMutex);
    // The job must look at the delayed tasks again (one was added or withdrawn) before it
    // goes on waiting. Cleared by the job right before it reads the heap.
    bool recheck SH_GUARDED_BY(queueMutex) = false;
    // Messages sent to the front since the job last took the queue; they sit at its front.
    size_t frontInserted SH_GUARDED_BY(queueMutex) = 0;
    // The job sleeps on workAvailable. The first sender to find it set clears it and
    // raises wakeJob, so that one wake-up is sent per sleep, not one per send.
    bool jobWaiting SH_GUARDED_BY(queueMutex) = false;
    // Immediate tasks are reused, so that a steady stream of sends allocates nothing: the
    // job hands finished tasks back, emptied, when it next takes the queue.
    std::vector<std::unique_ptr<Task>> spareTasks SH_GUARDED_BY(queueMutex);

    // Read on every send or task, written rarely.
    alignas(kCacheLine) std::atomic<bool> frontPending{false};  // frontInserted > 0
    std::atomic<bool> wakeJob{false};
    // Written under queueMutex, so that the job cannot miss the wake-up between checking
    // its wait condition and sleeping; read without a lock everywhere.
    std::atomic<bool> stopped{false};
    // A draining job is submitted or running. Written under processingMutex only; the job
    // clears it while also holding queueMutex and delayedMutex, after finding both queues
    // empty. A sender reads it without a lock after queuing its task: if it still reads
    // true, the job had not yet looked at the queues and will find the task.
    std::atomic<bool> processing{false};
    // Ids below this were withdrawn by removeCallbacksAndMessages(). Immediate tasks are
    // withdrawn through it rather than through the index: they are never indexed by code,
    // so the index has nothing to offer them, and leaving them out of it keeps the sends
    // and the job off the index's lock.
    std::atomic<uint64_t> withdrawnBelow{0};
    // The thread running the draining job, so that quitSafely() from the job itself does
    // not wait for the job.
    std::atomic<std::thread::id> jobThread{};

    // Taken by every send.
    alignas(kCacheLine) std::atomic<uint64_t> nextTaskId{1};

    alignas(kCacheLine) detail::Mutex processingMutex;
    const bool usesSharedPool;
    // Released by quitSafely().
    std::shared_ptr<DynamicThreadPool> pool SH_GUARDED_BY(processingMutex);

    alignas(kCacheLine) mutable detail::Mutex mapsMutex;
    std::unordered_map<uint64_t, std::shared_ptr<CancellationFlag>> flags SH_GUARDED_BY(mapsMutex);
    std::unordered_map<uint64_t, int> codes SH_GUARDED_BY(mapsMutex);

    detail::Mutex delayedMutex;
    std::priority_queue<DelayedTask, std::vector<DelayedTask>, std::less<DelayedTask>> delayed
        SH_GUARDED_BY(delayedMutex);

    std::condition_variable workAvailable;    // used with queueMutex
    std::condition_variable processingEnded;  // used with processingMutex

    void removeFlag(uint64_t id) SH_EXCLUDES(mapsMutex) {
        detail::MutexLock lock(mapsMutex);
        flags.erase(id);
        codes.erase(id);
    }

    static constexpr size_t kMaxSpares = 4096;

    std::unique_ptr<Task> takeSpareLocked(uint64_t id) SH_REQUIRES(queueMutex) {
        if (spareTasks.empty()) {
            return nullptr;
        }
        std::unique_ptr<Task> task = std::move(spareTasks.back());
        spareTasks.pop_back();
        task->taskId = id;
        return task;
    }

    void returnSparesLocked(std::vector<std::unique_ptr<Task>>& finished) SH_REQUIRES(queueMutex) {
        for (auto& task : finished) {
            if (spareTasks.size() >= kMaxSpares) {
                break;
            }
            spareTasks.push_back(std::move(task));
        }
        finished.clear();
    }

    // An idle executor keeps no spares.
    void dropSpares() SH_EXCLUDES(queueMutex) {
        std::vector<std::unique_ptr<Task>> spares;
        detail::MutexLock lock(queueMutex);
        spares.swap(spareTasks);
    }

    bool isWithdrawn(uint64_t id, const std::shared_ptr<CancellationFlag>& flag) const {
        return (flag != nullptr && flag->cancelled.load()) || id < withdrawnBelow.load();
    }

    // Takes the immediate queue into the job's batch, or, when messages were sent to the
    // front meanwhile, puts them ahead of the rest of the batch first. False when there is
    // nothing to run.
    bool refill(std::deque<std::unique_ptr<Task>>& batch,
                std::vector<std::unique_ptr<Task>>& finished) SH_EXCLUDES(queueMutex) {
        detail::MutexLock lock(queueMutex);
        returnSparesLocked(finished);
        if (!batch.empty()) {
            const auto fronts = static_cast<std::ptrdiff_t>(frontInserted);
            queue.insert(queue.begin() + fronts, std::make_move_iterator(batch.begin()),
                         std::make_move_iterator(batch.end()));
            batch.clear();
        }
        frontInserted = 0;
        frontPending.store(false);
        if (queue.empty()) {
            recheck = false;  // the job reads the delayed tasks right after this
            return false;
        }
        batch.swap(queue);
        return true;
    }

    // Wakes the job when it waits for a delayed task or lingers.
    void requestRecheck() SH_EXCLUDES(queueMutex) {
        {
            detail::MutexLock lock(queueMutex);
            recheck = true;
            claimWakeupLocked();
        }
        notifyJobIfClaimed();
    }

    void claimWakeupLocked() SH_REQUIRES(queueMutex) {
        if (jobWaiting) {
            jobWaiting = false;
            wakeJob.store(true);
        }
    }

    void notifyJobIfClaimed() {
        if (wakeJob.load() && wakeJob.exchange(false)) {
            workAvailable.notify_one();
        }
    }

    // Ends the job: clears `processing` and wakes quitSafely().
    void endJob() SH_EXCLUDES(processingMutex) {
        {
            detail::MutexLock lock(processingMutex);
            processing = false;
        }
        processingEnded.notify_all();
    }

    // At the end of the linger: ends the job only when neither an immediate nor a delayed
    // task is pending, checked and cleared with all three locks held, so that a task queued
    // after the check finds `processing` clear and starts a new job.
    bool tryEndIdleJob() SH_EXCLUDES(processingMutex, queueMutex, delayedMutex) {
        {
            detail::MutexLock lock(processingMutex);
            detail::MutexLock queueLock(queueMutex);
            detail::MutexLock delayedLock(delayedMutex);
            if (!queue.empty() || !delayed.empty()) {
                return false;
            }
            processing = false;
        }
        processingEnded.notify_all();
        return true;
    }

    void run(Task& task) const {
        if (!task.isMessage) {
            if (task.closure) {
                task.closure();
            }
        } else if (*callback && task.message != nullptr) {
            (*callback)(std::move(task.message));
        }
    }
};

std::shared_ptr<TaskExecutor> TaskExecutor::create(const Callback& callback,
                                                   std::shared_ptr<DynamicThreadPool> pool) {
    return std::make_shared<TaskExecutor>(callback, std::move(pool));
}

TaskExecutor::TaskExecutor(const Callback& callback, std::shared_ptr<DynamicThreadPool> pool)
    : state(std::make_shared<State>(callback, std::move(pool))) {}

TaskExecutor::~TaskExecutor() {
    quitSafely();
}

std::unique_ptr<Message> TaskExecutor::obtainMessage(int what) const {
    return std::make_unique<Message>(what);
}
std::unique_ptr<Message> TaskExecutor::obtainMessage(int what, int arg1, int arg2) const {
    return std::make_unique<Message>(what, arg1, arg2);
}
std::unique_ptr<Message> TaskExecutor::obtainMessage(int what, int arg1, int arg2,
                                                     std::shared_ptr<void> data) const {
    return std::make_unique<Message>(what, arg1, arg2, std::move(data));
}
std::unique_ptr<Message> TaskExecutor::obtainMessage(int what, std::shared_ptr<void> data) const {
    return std::make_unique<Message>(what, -1, -1, std::move(data));
}
std::unique_ptr<Message> TaskExecutor::obtainMessage(int what, int arg1, int arg2,
                                                     void* obj) const {
    return std::make_unique<Message>(what, arg1, arg2, nullptr, obj);
}
std::unique_ptr<Message> TaskExecutor::obtainMessage(int what, void* obj) const {
    return std::make_unique<Message>(what, -1, -1, nullptr, obj);
}

bool TaskExecutor::sendMessage(std::unique_ptr<Message> message) {
    return sendImmediate(true, std::move(message), nullptr, false);
}

bool TaskExecutor::sendEmptyMessage(int what) {
    return sendMessage(obtainMessage(what));
}

bool TaskExecutor::sendMessageAtFrontOfQueue(std::unique_ptr<Message> message) {
    return sendImmediate(true, std::move(message), nullptr, true);
}

bool TaskExecutor::post(const std::function<void()>& closure) {
    return sendImmediate(false, nullptr, closure, false);
}

bool TaskExecutor::sendMessageDelayed(std::unique_ptr<Message> message,
                                      std::chrono::milliseconds delay) {
    return internalSendMessageOrRunnableDelayed(true, std::move(message), nullptr, delay);
}

bool TaskExecutor::sendEmptyMessageDelayed(int what, std::chrono::milliseconds delay) {
    return sendMessageDelayed(obtainMessage(what), delay);
}

bool TaskExecutor::postDelayed(const std::function<void()>& closure,
                               std::chrono::milliseconds delay) {
    return internalSendMessageOrRunnableDelayed(false, nullptr, closure, delay);
}

bool TaskExecutor::hasMessages(int what) const {
    const State& s = *state;
    if (s.stopped.load()) {
        return false;
    }
    detail::MutexLock lock(s.mapsMutex);
    for (const auto& [id, code] : s.codes) {
        if (code != what) {
            continue;
        }
        auto flag = s.flags.find(id);
        if (flag != s.flags.end() && !flag->second->cancelled.load()) {
            return true;
        }
    }
    return false;
}

void TaskExecutor::removeMessages(int what) {
    State& s = *state;
    if (s.stopped.load()) {
        return;
    }
    bool withdrew = false;
    {
        detail::MutexLock lock(s.mapsMutex);
        for (const auto& [id, code] : s.codes) {
            if (code != what) {
                continue;
            }
            auto flag = s.flags.find(id);
            if (flag != s.flags.end()) {
                flag->second->cancelled.store(true);
                withdrew = true;
            }
        }
    }
    if (withdrew) {
        // A job waiting for a withdrawn task's due time drops it and may give its worker back.
        s.requestRecheck();
    }
}

void TaskExecutor::removeCallbacksAndMessages() {
    State& s = *state;
    // Every task whose id was handed out so far, queued or about to be. Only ever raised,
    // so that a concurrent call with an older reading cannot bring tasks back.
    const uint64_t below = s.nextTaskId.load();
    uint64_t current = s.withdrawnBelow.load();
    while (current < below && !s.withdrawnBelow.compare_exchange_weak(current, below)) {
    }
    {
        detail::MutexLock lock(s.mapsMutex);
        for (auto& entry : s.flags) {
            entry.second->cancelled.store(true);
        }
    }
    s.requestRecheck();
}

void TaskExecutor::quitSafely() {
    State& s = *state;
    removeCallbacksAndMessages();
    {
        detail::MutexLock lock(s.queueMutex);
        s.stopped.store(true);
    }
    s.workAvailable.notify_all();

    std::shared_ptr<DynamicThreadPool> pool;
    {
        detail::MutexLock lock(s.processingMutex);
        // The job itself (a callback quitting its own executor) cannot wait for the job;
        // it ends as soon as that callback returns.
        if (s.processing && s.jobThread.load() != std::this_thread::get_id()) {
            const bool ended =
                lock.waitUntil(s.processingEnded, Clock::now() + kQuitTimeout,
                               [&s]() SH_NO_THREAD_SAFETY_ANALYSIS { return !s.processing; });
            if (!ended) {
                logger.w("%s:Processor thread did not stop gracefully within timeout",
                         "quitSafely");
                s.processing = false;
            }
        }
        pool = std::move(s.pool);
    }
    if (pool != nullptr && !s.usesSharedPool) {
        pool->shutdown();
    }
    pool.reset();

    // Moved out under the locks and destroyed after them: a message's payload may run
    // arbitrary code when it goes.
    std::unordered_map<uint64_t, std::shared_ptr<CancellationFlag>> flags;
    std::unordered_map<uint64_t, int> codes;
    {
        detail::MutexLock lock(s.mapsMutex);
        flags.swap(s.flags);
        codes.swap(s.codes);
    }
    s.dropSpares();
    std::deque<std::unique_ptr<Task>> queue;
    {
        detail::MutexLock lock(s.queueMutex);
        queue.swap(s.queue);
    }
    std::priority_queue<DelayedTask, std::vector<DelayedTask>, std::less<DelayedTask>> delayed;
    {
        detail::MutexLock lock(s.delayedMutex);
        delayed.swap(s.delayed);
    }
}

bool TaskExecutor::isTaskExecutorStopped() const {
    return state->stopped.load();
}

uint64_t TaskExecutor::generateTaskId() {
    return state->nextTaskId.fetch_add(1, std::memory_order_relaxed);
}

std::shared_ptr<CancellationFlag> TaskExecutor::createCancellationFlag(uint64_t id, int what) {
    State& s = *state;
    auto flag = std::make_shared<CancellationFlag>();
    detail::MutexLock lock(s.mapsMutex);
    s.flags[id] = flag;
    if (what != -1) {
        s.codes[id] = what;
    }
    return flag;
}

void TaskExecutor::removeCancellationFlag(uint64_t id) {
    state->removeFlag(id);
}

bool TaskExecutor::validateTaskParameters(const std::unique_ptr<Message>& message,
                                          const std::function<void()>& closure) const {
    if (message == nullptr && !closure) {
        return false;
    }
    return !state->stopped.load();
}

std::unique_ptr<TaskExecutor::Task> TaskExecutor::createTaskFromMessageOrCallback(
    bool isMessage, std::unique_ptr<Message> message, const std::function<void()>& closure,
    uint64_t id, std::shared_ptr<CancellationFlag> flag) {
    return std::make_unique<Task>(id, std::move(flag), std::move(message),
                                  isMessage ? nullptr : closure, isMessage);
}

bool TaskExecutor::internalSendMessageOrRunnable(bool isMessage, std::unique_ptr<Message> message,
                                                 std::function<void()> closure) {
    return sendImmediate(isMessage, std::move(message), std::move(closure), false);
}

bool TaskExecutor::sendImmediate(bool isMessage, std::unique_ptr<Message> message,
                                 std::function<void()> closure, bool atFront) {
    if (!validateTaskParameters(message, closure) || (isMessage ? message == nullptr : !closure)) {
        return false;
    }
    // Immediate tasks are never indexed by code: only delayed messages can be queried and
    // withdrawn by code.
    const uint64_t id = generateTaskId();
    State& s = *state;
    auto fill = [&](Task& task) {
        task.isMessage = isMessage;
        if (isMessage) {
            task.message = std::move(message);
        } else {
            task.closure = std::move(closure);
        }
    };
    std::unique_ptr<Task> task;
    {
        // Usually a spare task is filled and queued in one critical section.
        detail::MutexLock lock(s.queueMutex);
        task = s.takeSpareLocked(id);
        if (task == nullptr) {
            lock.unlock();
            task = std::make_unique<Task>(id, std::make_shared<CancellationFlag>(), nullptr,
                                          nullptr, isMessage);
            lock.relock();
        }
        fill(*task);
        if (atFront) {
            s.queue.push_front(std::move(task));
            ++s.frontInserted;
            s.frontPending.store(true);
        } else {
            s.queue.push_back(std::move(task));
        }
        s.claimWakeupLocked();
    }
    startProcessing();
    return true;
}

bool TaskExecutor::internalSendMessageOrRunnableDelayed(bool isMessage,
                                                        std::unique_ptr<Message> message,
                                                        std::function<void()> closure,
                                                        std::chrono::milliseconds delay) {
    if (delay.count() == 0) {
        return sendImmediate(isMessage, std::move(message), std::move(closure), false);
    }
    if (!validateTaskParameters(message, closure) || (isMessage ? message == nullptr : !closure)) {
        return false;
    }
    State& s = *state;
    const uint64_t id = generateTaskId();
    auto flag = createCancellationFlag(id, isMessage ? message->what : -1);
    if (isMessage) {
        // Carried as a closure that hands the message to the callback.
        auto held = std::make_shared<std::unique_ptr<Message>>(std::move(message));
        closure = [callback = s.callback, held] {
            if (*callback && *held != nullptr) {
                (*callback)(std::move(*held));
            }
        };
    }
    const auto due = detail::deadlineAfter(Clock::now(), delay);
    {
        detail::MutexLock lock(s.delayedMutex);
        s.delayed.emplace(id, std::move(flag), due, std::move(closure));
    }
    s.requestRecheck();
    startProcessing();
    return true;
}

void TaskExecutor::startProcessing() {
    State& s = *state;
    if (s.processing.load()) {
        s.notifyJobIfClaimed();  // the job, submitted or running, will find the task
        return;
    }
    {
        detail::MutexLock lock(s.processingMutex);
        if (!s.processing && !s.stopped.load() && s.pool != nullptr) {
            s.processing = true;
            s.pool->submit([job = state] { processAllTasks(job); });
        }
    }
    s.notifyJobIfClaimed();
}

void TaskExecutor::processAllTasks(const std::shared_ptr<State>& state) {
    State& s = *state;
    // Cleared only while it still names this thread: the next job may already run
    // elsewhere by the time this one returns.
    struct JobThread {
        std::atomic<std::thread::id>& id;
        ~JobThread() {
            auto self = std::this_thread::get_id();
            id.compare_exchange_strong(self, std::thread::id());
        }
    } jobThread{s.jobThread};
    s.jobThread.store(std::this_thread::get_id());

    // Immediate tasks are taken from the queue in batches, one lock per batch instead of
    // one per task; a message sent to the front while a batch runs still overtakes the
    // rest of it.
    std::deque<std::unique_ptr<Task>> batch;
    std::vector<std::unique_ptr<Task>> finished;  // handed back at the next refill
    while (true) {
        // Immediate tasks first.
        while (true) {
            if (s.stopped.load()) {
                s.endJob();
                return;
            }
            if ((batch.empty() || s.frontPending.load()) && !s.refill(batch, finished)) {
                break;
            }
            std::unique_ptr<Task> task = std::move(batch.front());
            batch.pop_front();
            if (!s.isWithdrawn(task->taskId, task->cancellationFlag) && !s.stopped.load()) {
                s.run(*task);
            }
            // Emptied here, outside every lock: a payload or a capture may run any code
            // when it goes.
            task->message.reset();
            task->closure = nullptr;
            if (task->cancellationFlag.use_count() == 1) {
                task->cancellationFlag->cancelled.store(false);
                finished.push_back(std::move(task));
            }
        }

        // Then the earliest delayed task, when it is due; withdrawn ones on top are dropped.
        std::optional<Clock::time_point> nextDue;
        std::optional<DelayedTask> dueTask;
        {
            detail::MutexLock lock(s.delayedMutex);
            while (!s.delayed.empty() &&
                   s.isWithdrawn(s.delayed.top().taskId, s.delayed.top().cancellationFlag)) {
                s.removeFlag(s.delayed.top().taskId);
                s.delayed.pop();
            }
            if (!s.delayed.empty()) {
                if (Clock::now() >= s.delayed.top().dueTime) {
                    // Moving from the top leaves its due time intact for pop()'s comparisons.
                    dueTask.emplace(std::move(const_cast<DelayedTask&>(s.delayed.top())));
                    s.delayed.pop();
                } else {
                    nextDue = s.delayed.top().dueTime;
                }
            }
        }
        if (dueTask.has_value()) {
            s.removeFlag(dueTask->taskId);
            if (!s.isWithdrawn(dueTask->taskId, dueTask->cancellationFlag) && !s.stopped.load() &&
                dueTask->closure) {
                dueTask->closure();
            }
            continue;
        }

        // Nothing to run now: wait for the next due time, or linger for new work.
        bool woken = false;
        {
            detail::MutexLock lock(s.queueMutex);
            auto wake = [&s]() SH_NO_THREAD_SAFETY_ANALYSIS {
                return !s.queue.empty() || s.recheck || s.stopped.load();
            };
            s.jobWaiting = true;
            if (nextDue.has_value()) {
                lock.waitUntil(s.workAvailable, *nextDue, wake);
            } else {
                woken = lock.waitFor(s.workAvailable, kLinger, wake);
            }
            s.jobWaiting = false;
            if (nextDue.has_value()) {
                continue;
            }
        }
        if (woken || s.stopped.load()) {
            continue;
        }
        SMARTHOME_TEST_SEAM(detail::TestSeam::ExecutorLingerEnded);
        if (s.tryEndIdleJob()) {
            s.dropSpares();
            return;
        }
    }
}

}  // namespace smarthome
