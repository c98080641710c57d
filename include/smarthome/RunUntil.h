// Polls a condition on a background thread, once per interval, until it holds or the
// object is destroyed; isDone() tells whether it has held. The first evaluation comes one
// full interval after construction; the interval is counted from the end of each sleep.
//
// Ownership: owns its polling thread; the destructor cuts the sleep short and waits for
// the thread, including a condition evaluation in progress.
// Thread-safety: isDone() may be called from any thread; it blocks while the condition is
// being evaluated, so the condition must not call isDone() on the same object.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace smarthome {

class RunUntil {
public:
    RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds interval);
    ~RunUntil();
    RunUntil(const RunUntil&) = delete;
    RunUntil& operator=(const RunUntil&) = delete;

    // True once the condition has held, or once destruction has begun.
    bool isDone();

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace smarthome
