// One delayed task of a TaskExecutor: a closure due at a steady-clock time (a delayed
// message travels as a closure handing it to the executor's callback), with its id and
// cancellation flag. Ordered by due time alone, reversed, so that a std::priority_queue
// with std::less keeps the earliest due task on top; equal due times have no defined order.
//
// Ownership: held by value in the executor's heap.
// Thread-safety: a plain record, used by one thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "smarthome/CancellationFlag.h"
#include "smarthome/TaskExecutor.h"

namespace smarthome {

class TaskExecutor::DelayedTask {
public:
    DelayedTask(uint64_t taskId, std::shared_ptr<CancellationFlag> cancellationFlag,
                std::chrono::steady_clock::time_point dueTime, std::function<void()> closure)
        : taskId(taskId),
          cancellationFlag(std::move(cancellationFlag)),
          dueTime(dueTime),
          closure(std::move(closure)) {}

    // True when this task falls due after other: the later task sorts lower.
    bool operator<(const DelayedTask& other) const { return dueTime > other.dueTime; }

    uint64_t taskId;
    std::shared_ptr<CancellationFlag> cancellationFlag;
    std::chrono::steady_clock::time_point dueTime;
    std::function<void()> closure;
};

}  // namespace smarthome
