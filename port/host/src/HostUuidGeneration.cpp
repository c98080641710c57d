#include "tvkcommon/utils/UuidGeneration.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <random>

namespace tavraClientSDK {
namespace tvkCommon {
namespace utils {
namespace uuidGeneration {

namespace {

// 128 random bits from the kernel's random source (std::random_device on Linux). Should the
// source be unavailable (it throws then), a per-thread engine seeded from the clock and the
// thread's stack address keeps identifiers distinct instead of failing the caller.
std::array<std::uint8_t, 16> randomBytes() {
    std::array<std::uint8_t, 16> bytes{};
    auto fill = [&bytes](auto& engine) {
        for (std::size_t i = 0; i < bytes.size(); i += 4) {
            const auto word = static_cast<std::uint32_t>(engine());
            for (std::size_t b = 0; b < 4; ++b) {
                bytes[i + b] = static_cast<std::uint8_t>(word >> (8 * b));
            }
        }
    };
    try {
        std::random_device source;
        fill(source);
    } catch (...) {
        thread_local std::mt19937 fallback(
            static_cast<std::uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count() ^
                                       reinterpret_cast<std::uintptr_t>(&bytes)));
        fill(fallback);
    }
    return bytes;
}

}  // namespace

std::string generateUUID() {
    std::array<std::uint8_t, 16> bytes = randomBytes();
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0fU) | 0x40U);  // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3fU) | 0x80U);  // variant 1
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text.push_back('-');
        }
        text.push_back(kHex[bytes[i] >> 4]);
        text.push_back(kHex[bytes[i] & 0x0fU]);
    }
    return text;
}

}  // namespace uuidGeneration
}  // namespace utils
}  // namespace tvkCommon
}  // namespace tavraClientSDK
