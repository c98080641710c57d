// Random integers in a closed range, from a 64-bit Mersenne Twister built per call and
// seeded with the monotonic clock.
// Thread-safety: stateless; safe from any thread (two calls within one clock tick may
// return the same value).
#pragma once

namespace smarthome {

class RandomUtils {
public:
    // A value in [low, high]. The bounds are swapped when low > high.
    static long long getRandomNumberWithinBounds(long long low, long long high);
};

}  // namespace smarthome
