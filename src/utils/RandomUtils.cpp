#include "smarthome/RandomUtils.h"

#include <chrono>
#include <random>
#include <utility>

namespace smarthome {

long long RandomUtils::getRandomNumberWithinBounds(long long low, long long high) {
    if (low > high) {
        // An inverted range would be undefined for the distribution.
        std::swap(low, high);
    }
    std::mt19937_64 engine(static_cast<std::mt19937_64::result_type>(
        std::chrono::steady_clock::now().time_since_epoch().count()));
    std::uniform_int_distribution<long long> distribution(low, high);
    return distribution(engine);
}

}  // namespace smarthome
