#include "V3API/LocalTime.h"

#include <atomic>
#include <cerrno>
#include <chrono>

namespace smarthome {
namespace V3API {
namespace detail {

namespace {

void refreshZoneAtMostOncePerSecond() {
    static std::atomic<std::int64_t> lastRefresh{-1};
    const std::int64_t now = std::chrono::duration_cast<std::chrono::seconds>(
                                 std::chrono::steady_clock::now().time_since_epoch())
                                 .count();
    std::int64_t last = lastRefresh.load(std::memory_order_relaxed);
    if (last != now && lastRefresh.compare_exchange_strong(last, now)) {
        tzset();
    }
}

bool offsetAt(std::time_t when, long* offset) {
    std::tm local{};
    if (localtime_r(&when, &local) == nullptr) {
        return false;
    }
    *offset = local.tm_gmtoff;
    return true;
}

}  // namespace

bool localTimeToEpoch(const std::tm& local, std::time_t* seconds) {
    refreshZoneAtMostOncePerSecond();
    std::tm fields = local;
    errno = 0;
    const std::time_t asUniversal = timegm(&fields);
    if (asUniversal == static_cast<std::time_t>(-1) && errno == EOVERFLOW) {
        return false;
    }
    // Offsets lie within a day of universal time, so the wanted instant lies between the
    // offsets in force a day before and a day after; at most one transition falls between.
    constexpr std::time_t kDay = 86400;
    long before = 0;
    long after = 0;
    if (!offsetAt(asUniversal - kDay, &before) || !offsetAt(asUniversal + kDay, &after)) {
        return false;
    }
    const std::time_t early = asUniversal - before;
    const std::time_t late = asUniversal - after;
    long atEarly = 0;
    long atLate = 0;
    if (!offsetAt(early, &atEarly) || !offsetAt(late, &atLate)) {
        return false;
    }
    const bool earlyValid = atEarly == before;
    const bool lateValid = atLate == after;
    if (earlyValid && lateValid) {
        *seconds = early < late ? early : late;  // a repeated hour: its first occurrence
    } else if (lateValid) {
        *seconds = late;
    } else {
        *seconds = early;  // valid, or a skipped hour read with the offset before the change
    }
    return true;
}

}  // namespace detail
}  // namespace V3API
}  // namespace smarthome
