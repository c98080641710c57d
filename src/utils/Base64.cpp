#include "smarthome/Base64.h"

#include <vector>

namespace smarthome {

namespace {

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

size_t trailingPadding(const std::string& in) {
    size_t count = 0;
    while (count < in.size() && in[in.size() - 1 - count] == '=') {
        ++count;
    }
    return count;
}

}  // namespace

int Base64::b64_lookup(char c) {
    if (c >= 'A' && c <= 'Z') {
        return c - 'A';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 26;
    }
    if (c >= '0' && c <= '9') {
        return c - '0' + 52;
    }
    if (c == '+') {
        return 62;
    }
    if (c == '/') {
        return 63;
    }
    return -1;
}

void Base64::a4_to_a3(unsigned char* a3, const unsigned char* a4) {
    a3[0] = static_cast<unsigned char>((a4[0] << 2) | ((a4[1] & 0x30) >> 4));
    a3[1] = static_cast<unsigned char>(((a4[1] & 0x0f) << 4) | ((a4[2] & 0x3c) >> 2));
    a3[2] = static_cast<unsigned char>(((a4[2] & 0x03) << 6) | a4[3]);
}

std::string Base64::Encode(const std::string& in) {
    std::string out;
    out.reserve((in.size() + 2) / 3 * 4);
    const auto* bytes = reinterpret_cast<const unsigned char*>(in.data());
    size_t i = 0;
    for (; i + 3 <= in.size(); i += 3) {
        unsigned value = (bytes[i] << 16) | (bytes[i + 1] << 8) | bytes[i + 2];
        out += kAlphabet[(value >> 18) & 0x3f];
        out += kAlphabet[(value >> 12) & 0x3f];
        out += kAlphabet[(value >> 6) & 0x3f];
        out += kAlphabet[value & 0x3f];
    }
    size_t rest = in.size() - i;
    if (rest > 0) {
        unsigned value = bytes[i] << 16;
        if (rest == 2) {
            value |= bytes[i + 1] << 8;
        }
        out += kAlphabet[(value >> 18) & 0x3f];
        out += kAlphabet[(value >> 12) & 0x3f];
        out += rest == 2 ? kAlphabet[(value >> 6) & 0x3f] : '=';
        out += '=';
    }
    return out;
}

unsigned int Base64::DecodedLength(const std::string& in) {
    size_t length = in.size() * 3 / 4;
    size_t padding = trailingPadding(in);
    return static_cast<unsigned int>(length > padding ? length - padding : 0);
}

bool Base64::Decode(const std::string& in, unsigned char* out, unsigned int size) {
    if (out == nullptr && size != 0) {
        return false;
    }
    const size_t padding = trailingPadding(in);
    const size_t dataLength = in.size() - padding;
    // Padding completes the last group of four and is at most two characters long.
    if (padding > 2 || (padding > 0 && (dataLength + padding) % 4 != 0)) {
        return false;
    }
    unsigned char a4[4];
    unsigned char a3[3];
    size_t filled = 0;
    size_t written = 0;
    for (size_t k = 0; k < dataLength; ++k) {
        int value = b64_lookup(in[k]);
        if (value < 0) {
            return false;
        }
        a4[filled++] = static_cast<unsigned char>(value);
        if (filled == 4) {
            a4_to_a3(a3, a4);
            for (unsigned char byte : a3) {
                if (written >= size) {
                    return false;
                }
                out[written++] = byte;
            }
            filled = 0;
        }
    }
    if (filled == 1) {
        return false;  // six bits cannot make a byte
    }
    if (filled > 0) {
        for (size_t k = filled; k < 4; ++k) {
            a4[k] = 0;
        }
        a4_to_a3(a3, a4);
        for (size_t k = 0; k + 1 < filled; ++k) {
            if (written >= size) {
                return false;
            }
            out[written++] = a3[k];
        }
    }
    return true;
}

bool Base64::Decode(const std::string& in, std::string& out) {
    size_t padding = trailingPadding(in);
    size_t bits = in.size() * 6 / 8;
    if (bits <= padding) {
        return false;
    }
    std::vector<unsigned char> buffer(bits - padding);
    if (!Decode(in, buffer.data(), static_cast<unsigned int>(buffer.size()))) {
        return false;
    }
    out.assign(buffer.begin(), buffer.end());
    return true;
}

}  // namespace smarthome
