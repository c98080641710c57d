// The withdrawal mark shared by a queued task and the executor's index of live tasks.
// Created not cancelled; set by TaskExecutor::removeMessages() and
// removeCallbacksAndMessages(); read by the draining job just before it would run the task.
//
// Ownership: shared (std::shared_ptr) by the task and the executor's index.
// Thread-safety: `cancelled` is atomic; any thread may set or read it.
#pragma once

#include <atomic>

namespace smarthome {

class CancellationFlag {
public:
    std::atomic<bool> cancelled{false};
};

}  // namespace smarthome
