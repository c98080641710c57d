// A steady-clock time point a duration after another, saturating instead of overflowing,
// so that huge or very negative delays and time-outs from callers stay well defined.
// Private to the library.
#pragma once

#include <chrono>
#include <cstdint>
#include <limits>
#include <ratio>
#include <type_traits>

namespace smarthome {
namespace detail {

template <typename Rep, typename Period>
std::chrono::steady_clock::time_point deadlineAfter(std::chrono::steady_clock::time_point start,
                                                    std::chrono::duration<Rep, Period> delay) {
    using Nanoseconds = std::chrono::steady_clock::duration;
    static_assert(std::is_same<Nanoseconds::period, std::nano>::value, "nanosecond clock");
    using Factor = std::ratio_divide<Period, std::nano>;
    static_assert(Factor::den == 1, "delays are whole multiples of a nanosecond");
    constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
    constexpr int64_t kMin = std::numeric_limits<int64_t>::min();
    const auto count = static_cast<int64_t>(delay.count());
    int64_t nanoseconds = 0;
    if (__builtin_mul_overflow(count, static_cast<int64_t>(Factor::num), &nanoseconds)) {
        nanoseconds = count > 0 ? kMax : kMin;
    }
    int64_t due = 0;
    if (__builtin_add_overflow(static_cast<int64_t>(start.time_since_epoch().count()), nanoseconds,
                               &due)) {
        due = nanoseconds > 0 ? kMax : kMin;
    }
    return std::chrono::steady_clock::time_point(Nanoseconds(due));
}

}  // namespace detail
}  // namespace smarthome
