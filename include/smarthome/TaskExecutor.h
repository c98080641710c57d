// Runs a component's messages and closures, sent now, later or to the front of the queue,
// on a DynamicThreadPool instead of a thread of its own. At most one draining job of an
// executor runs at a time, so its work is serialised; the job lingers 10 ms after the last
// task and then gives its worker back, so an idle executor holds no thread.
//
// Ordering guarantees:
//  - Immediate tasks run in sending order; a message sent to the front runs before every
//    immediate task queued.
//  - Immediate tasks run before delayed ones that are due; a delayed task runs when due,
//    earliest due time first (equal due times in no defined order). A zero delay is an
//    immediate send.
//  - Withdrawal is lazy: a withdrawn task stays queued and is skipped when reached.
//    Only delayed messages (non-zero delay) are indexed by code: hasMessages() and
//    removeMessages() never see immediate messages, and closures are never withdrawn by
//    code.
//  - quitSafely() withdraws every pending task and stops the executor for good; it waits
//    up to 200 ms for a running job (not when called from that job).
//
// Ownership: uses the given pool (shared) or makes its own (5 threads, 1 s). The draining
// job shares the executor's internal state, so a job still running after quitSafely()
// gave up on it, or after the executor was destroyed, touches no freed memory.
// Thread-safety: every operation may be called from any thread, also from the executor's
// own callback or closures. Callbacks and closures run on pool threads, one at a time, and
// must not throw: an exception ends the draining job and the executor runs nothing more.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "smarthome/CancellationFlag.h"
#include "smarthome/DynamicThreadPool.h"
#include "smarthome/Message.h"

namespace smarthome {

class TaskExecutor {
public:
    using Callback = std::function<void(std::unique_ptr<Message>)>;
    class Task;         // smarthome/Task.h
    class DelayedTask;  // smarthome/DelayedTask.h

    // An executor owned by a std::shared_ptr. An empty pool makes the executor its own.
    static std::shared_ptr<TaskExecutor> create(const Callback& callback,
                                                std::shared_ptr<DynamicThreadPool> pool = nullptr);
    explicit TaskExecutor(const Callback& callback,
                          std::shared_ptr<DynamicThreadPool> pool = nullptr);
    // quitSafely().
    virtual ~TaskExecutor();
    TaskExecutor(const TaskExecutor&) = delete;
    TaskExecutor& operator=(const TaskExecutor&) = delete;

    // New messages; fields not given keep their defaults (arg1 and arg2 -1).
    std::unique_ptr<Message> obtainMessage(int what) const;
    std::unique_ptr<Message> obtainMessage(int what, int arg1, int arg2) const;
    std::unique_ptr<Message> obtainMessage(int what, int arg1, int arg2,
                                           std::shared_ptr<void> data) const;
    std::unique_ptr<Message> obtainMessage(int what, std::shared_ptr<void> data) const;
    std::unique_ptr<Message> obtainMessage(int what, int arg1, int arg2, void* obj) const;
    std::unique_ptr<Message> obtainMessage(int what, void* obj) const;

    // Each returns true when the task was queued; false for a null message or an empty
    // closure, or once stopped.
    bool sendMessage(std::unique_ptr<Message> message);
    bool sendEmptyMessage(int what);
    bool sendMessageAtFrontOfQueue(std::unique_ptr<Message> message);
    bool post(const std::function<void()>& closure);
    bool sendMessageDelayed(std::unique_ptr<Message> message, std::chrono::milliseconds delay);
    bool sendEmptyMessageDelayed(int what, std::chrono::milliseconds delay);
    bool postDelayed(const std::function<void()>& closure, std::chrono::milliseconds delay);

    // Whether a delayed message with code what is pending and not withdrawn; false once
    // stopped.
    bool hasMessages(int what) const;
    // Withdraws the pending delayed messages with code what; nothing once stopped.
    void removeMessages(int what);
    // Withdraws every pending task, messages and closures, immediate and delayed.
    void removeCallbacksAndMessages();
    // Withdraws everything, refuses further sends, waits up to 200 ms for the running
    // job, shuts down the executor's own pool (a shared pool keeps running) and clears
    // the queues.
    void quitSafely();
    bool isTaskExecutorStopped() const;

    // The building blocks of the sends.
    // Ids start at 1.
    uint64_t generateTaskId();
    // Indexes a live task; what is -1 for a task that is not indexed by code.
    std::shared_ptr<CancellationFlag> createCancellationFlag(uint64_t id, int what);
    void removeCancellationFlag(uint64_t id);
    // False when there is neither a message nor a closure, or once stopped.
    bool validateTaskParameters(const std::unique_ptr<Message>& message,
                                const std::function<void()>& closure) const;
    std::unique_ptr<Task> createTaskFromMessageOrCallback(bool isMessage,
                                                          std::unique_ptr<Message> message,
                                                          const std::function<void()>& closure,
                                                          uint64_t id,
                                                          std::shared_ptr<CancellationFlag> flag);
    // Sends to the back of the queue, or (delayed) to the delayed tasks. isMessage names
    // which of message and closure is the task; false when that one is missing.
    bool internalSendMessageOrRunnable(bool isMessage, std::unique_ptr<Message> message,
                                       std::function<void()> closure);
    bool internalSendMessageOrRunnableDelayed(bool isMessage, std::unique_ptr<Message> message,
                                              std::function<void()> closure,
                                              std::chrono::milliseconds delay);

private:
    struct State;

    bool sendImmediate(bool isMessage, std::unique_ptr<Message> message,
                       std::function<void()> closure, bool atFront);
    // Submits a draining job unless one is submitted or running; wakes a waiting job.
    void startProcessing();
    // The draining job. Holds the state for as long as it runs.
    static void processAllTasks(const std::shared_ptr<State>& state);

    std::shared_ptr<State> state;
};

}  // namespace smarthome
