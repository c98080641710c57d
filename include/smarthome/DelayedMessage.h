// An element of a Looper's delayed list: an entry and the steady-clock time it falls due.
// Thread-safety: guarded by the looper's lock.
#pragma once

#include <chrono>
#include <memory>

#include "smarthome/MessageOrRunnable.h"

namespace smarthome {

struct DelayedMessage {
    DelayedMessage(std::unique_ptr<MessageOrRunnable> entry,
                   std::chrono::steady_clock::time_point due)
        : entry(std::move(entry)), due(due) {}

    std::unique_ptr<MessageOrRunnable> entry;
    std::chrono::steady_clock::time_point due;
};

}  // namespace smarthome
