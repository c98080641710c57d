// A pool of worker threads created on demand: every submission starts a new worker while
// fewer than the maximum are alive, and a worker that finds no work for the idle time-out
// ends by itself, so an idle pool holds no thread. Work runs first in, first out.
//
// Ownership: usually shared (std::shared_ptr) by several task executors. The workers share
// the pool's internal state, so a worker that outlives the pool object (one whose own task
// shut the pool down or released its last owner) never touches freed memory.
// Thread-safety: every operation may be called from any thread, including from a task
// running on the pool; shutdown() from such a task detaches the calling worker instead of
// joining it. Tasks' exceptions are stored in their futures and never end a worker.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <type_traits>
#include <utility>

namespace smarthome {

class DynamicThreadPool {
public:
    static constexpr unsigned int kDefaultMaxThreads = 5;
    static constexpr std::chrono::seconds kDefaultIdleTimeout{1};

    // A maxThreads of 0 is taken as 1; an idle time-out of one second or less as one
    // second. Starts no thread.
    explicit DynamicThreadPool(unsigned int maxThreads = kDefaultMaxThreads,
                               std::chrono::seconds idleTimeout = kDefaultIdleTimeout);
    // shutdown().
    ~DynamicThreadPool();
    DynamicThreadPool(const DynamicThreadPool&) = delete;
    DynamicThreadPool& operator=(const DynamicThreadPool&) = delete;

    // Queues f and starts a worker when fewer than the maximum are alive. The future holds
    // f's result or exception; after shutdown() f is dropped unrun and the future reports a
    // broken promise.
    template <typename F>
    auto submit(F&& f) -> std::future<std::invoke_result_t<std::decay_t<F>&>> {
        using Result = std::invoke_result_t<std::decay_t<F>&>;
        auto task = std::make_shared<std::packaged_task<Result()>>(std::forward<F>(f));
        std::future<Result> future = task->get_future();
        enqueue([task] { (*task)(); });
        return future;
    }

    // Stops the pool for good: refuses new work, wakes idle workers and joins every worker
    // (a worker calling this detaches itself). A worker busy with a task when the pool
    // stops may run one more queued task; tasks still queued then never run and are
    // destroyed with the pool.
    void shutdown();

    unsigned int getMaxThreads() const;
    std::chrono::seconds getIdleTimeout() const;
    // Worker threads started and not yet ended (0 for an idle pool).
    int getLiveThreadCount() const;

private:
    // submit() without the template: queues the call, starts a worker if allowed.
    void enqueue(std::function<void()> call);

    struct State;
    std::shared_ptr<State> state;
};

}  // namespace smarthome
