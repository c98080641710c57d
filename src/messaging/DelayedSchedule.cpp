#include "messaging/DelayedSchedule.h"

namespace smarthome {
namespace detail {

int moveDueEntries(std::vector<std::unique_ptr<DelayedMessage>>& delayed,
                   std::deque<std::unique_ptr<MessageOrRunnable>>& queue,
                   std::chrono::steady_clock::time_point now) {
    int waitMs = kIdleWaitMs;
    size_t kept = 0;
    for (size_t i = 0; i < delayed.size(); ++i) {
        std::unique_ptr<DelayedMessage>& item = delayed[i];
        if (item->due <= now) {
            queue.push_back(std::move(item->entry));
            continue;
        }
        const long long remaining =
            std::chrono::duration_cast<std::chrono::milliseconds>(item->due - now).count();
        if (remaining < waitMs) {
            // Rounded up so the worker does not wake a fraction early and spin.
            waitMs = static_cast<int>(remaining) + 1;
        }
        if (kept != i) {
            delayed[kept] = std::move(item);
        }
        ++kept;
    }
    delayed.resize(kept);
    return waitMs;
}

}  // namespace detail
}  // namespace smarthome
