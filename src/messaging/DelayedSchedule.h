// The delayed-list check of the Looper, apart from the blocking loop so that it can be
// tested with explicit time points.
#pragma once

#include <chrono>
#include <deque>
#include <memory>
#include <vector>

#include "smarthome/DelayedMessage.h"

namespace smarthome {
namespace detail {

constexpr int kIdleWaitMs = 30 * 60 * 1000;

// Moves every entry due at or before now to the back of queue, in posting order, in one
// sweep (the others keep their order), and returns how long the worker may sleep: the
// whole milliseconds until the earliest remaining entry, plus one, or kIdleWaitMs.
int moveDueEntries(std::vector<std::unique_ptr<DelayedMessage>>& delayed,
                   std::deque<std::unique_ptr<MessageOrRunnable>>& queue,
                   std::chrono::steady_clock::time_point now);

}  // namespace detail
}  // namespace smarthome
