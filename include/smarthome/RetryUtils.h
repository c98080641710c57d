// Exponential back-off for retries, in the caller's unit.
// Thread-safety: stateless; safe from any thread.
#pragma once

namespace smarthome {

class RetryUtils {
public:
    // min(baseDelay * 2^min(attempt, 17), maxDelay). The product is a 32-bit signed
    // multiplication that wraps on overflow, as on the device: (100000, INT_MAX, 17)
    // gives 222298112.
    static int calculateExponentialBackoff(int baseDelay, int maxDelay, unsigned short attempt);
};

}  // namespace smarthome
