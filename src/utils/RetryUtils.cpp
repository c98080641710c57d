#include "smarthome/RetryUtils.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace smarthome {

int RetryUtils::calculateExponentialBackoff(int baseDelay, int maxDelay, unsigned short attempt) {
    const int exponent = std::min<int>(attempt, 17);
    const auto factor = static_cast<int32_t>(std::pow(2.0, exponent));
    // Two's-complement wrap of the 32-bit product, computed without signed overflow.
    const auto product = static_cast<uint32_t>(static_cast<int64_t>(baseDelay) * factor);
    const auto delay = static_cast<int32_t>(product);
    return std::min(delay, maxDelay);
}

}  // namespace smarthome
