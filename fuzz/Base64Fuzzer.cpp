// Decodes arbitrary text with both forms and checks them against a plain bit-accumulator
// decoder written here: the same acceptance, the same bytes, never a write past the size
// given (guard bytes surround the buffer). What decodes re-encodes and decodes to itself,
// and any bytes survive an encode/decode round trip.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "smarthome/Base64.h"

using smarthome::Base64;

namespace {

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr size_t kGuard = 16;
constexpr unsigned char kGuardByte = 0xA5;

// Accepts the alphabet with optional padding: at most two '=' that complete the last group
// of four, and never a lone character in the last group.
bool referenceDecode(const std::string& text, std::string& out) {
    size_t padding = 0;
    while (padding < text.size() && text[text.size() - 1 - padding] == '=') {
        ++padding;
    }
    const size_t data = text.size() - padding;
    if (padding > 2 || (padding > 0 && text.size() % 4 != 0) || data % 4 == 1) {
        return false;
    }
    out.clear();
    uint32_t bits = 0;
    int count = 0;
    for (size_t i = 0; i < data; ++i) {
        const char* found = text[i] == '\0' ? nullptr : std::strchr(kAlphabet, text[i]);
        if (found == nullptr) {
            return false;
        }
        bits = (bits << 6) | static_cast<uint32_t>(found - kAlphabet);
        count += 6;
        if (count >= 8) {
            count -= 8;
            out += static_cast<char>((bits >> count) & 0xff);
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::string expected;
    const bool valid = referenceDecode(text, expected);

    // The first byte picks the buffer size: small absolute sizes, or sizes around the
    // decoded length so that exact fits and one-short buffers are both common.
    unsigned int limit = data[0];
    if (data[0] >= 128) {
        const long around = static_cast<long>(Base64::DecodedLength(text)) + (data[0] & 7) - 4;
        limit = around < 0 ? 0 : static_cast<unsigned int>(around);
    }
    std::vector<unsigned char> buffer(limit + 2 * kGuard, kGuardByte);
    const bool decoded = Base64::Decode(text, buffer.data() + kGuard, limit);
    for (size_t i = 0; i < kGuard; ++i) {
        if (buffer[i] != kGuardByte || buffer[kGuard + limit + i] != kGuardByte) {
            std::abort();
        }
    }
    if (decoded != (valid && expected.size() <= limit)) {
        std::abort();
    }
    if (decoded && std::memcmp(buffer.data() + kGuard, expected.data(), expected.size()) != 0) {
        std::abort();
    }

    std::string out = "unchanged";
    const bool decodedString = Base64::Decode(text, out);
    if (decodedString != (valid && !expected.empty())) {
        std::abort();
    }
    if (decodedString) {
        if (out != expected || out.size() != Base64::DecodedLength(text)) {
            std::abort();
        }
        std::string again;
        if (!Base64::Decode(Base64::Encode(out), again) || again != out) {
            std::abort();
        }
    } else if (out != "unchanged") {
        std::abort();
    }

    std::string roundTrip;
    if (!text.empty() && (!Base64::Decode(Base64::Encode(text), roundTrip) || roundTrip != text)) {
        std::abort();
    }
    return 0;
}
