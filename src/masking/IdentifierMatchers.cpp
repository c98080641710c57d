#include "masking/IdentifierMatchers.h"

namespace smarthome {
namespace detail {

namespace {

// Character classes of the C locale, one table lookup per character.
enum : unsigned char {
    kSpace = 1 << 0,
    kDigit = 1 << 1,
    kHex = 1 << 2,
    kAlnum = 1 << 3,
    kShortId = 1 << 4,  // letters, digits, '_', '.', '-'
};

struct ClassTable {
    unsigned char bits[256] = {};
    constexpr ClassTable() {
        for (int c = 0; c < 256; ++c) {
            unsigned char b = 0;
            const bool digit = c >= '0' && c <= '9';
            const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
            if (c == ' ' || (c >= '\t' && c <= '\r'))
                b |= kSpace;
            if (digit)
                b |= kDigit;
            if (digit || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'))
                b |= kHex;
            if (digit || letter)
                b |= kAlnum;
            if (digit || letter || c == '_' || c == '.' || c == '-')
                b |= kShortId;
            bits[c] = b;
        }
    }
};

constexpr ClassTable kClasses;

inline bool is(char c, unsigned char mask) {
    return (kClasses.bits[static_cast<unsigned char>(c)] & mask) != 0;
}
inline bool isSpace(char c) {
    return is(c, kSpace);
}
inline bool isDigit(char c) {
    return is(c, kDigit);
}
inline bool isHex(char c) {
    return is(c, kHex);
}

// One dotted-quad part: [01]?\d\d? | 2[0-4]\d | 25[0-5], all digits, 1 to 3 long.
bool isOctet(const char* text, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        if (!isDigit(text[i])) {
            return false;
        }
    }
    if (size == 1 || size == 2) {
        return true;
    }
    if (size != 3) {
        return false;
    }
    if (text[0] == '0' || text[0] == '1') {
        return true;
    }
    if (text[0] != '2') {
        return false;
    }
    return text[1] <= '4' || (text[1] == '5' && text[2] <= '5');
}

}  // namespace

TrimmedView trimmedView(const std::string& text) {
    const char* begin = text.data();
    const char* end = begin + text.size();
    while (begin < end && isSpace(*begin)) {
        ++begin;
    }
    while (end > begin && isSpace(end[-1])) {
        --end;
    }
    return {begin, static_cast<size_t>(end - begin)};
}

bool isMacWithSeparator(const char* text, size_t size, char separator) {
    // 6, 7 or 8 octets: 17, 20 or 23 characters, octet and separator alternating.
    if (size != 17 && size != 20 && size != 23) {
        return false;
    }
    for (size_t i = 0; i + 2 < size; i += 3) {
        if (!isHex(text[i]) || !isHex(text[i + 1]) || text[i + 2] != separator) {
            return false;
        }
    }
    return isHex(text[size - 2]) && isHex(text[size - 1]);
}

bool isIPv4(const char* text, size_t size) {
    size_t start = 0;
    int parts = 0;
    for (size_t i = 0; i <= size; ++i) {
        if (i == size || text[i] == '.') {
            if (!isOctet(text + start, i - start)) {
                return false;
            }
            ++parts;
            start = i + 1;
        }
    }
    return parts == 4;
}

bool isHex32(const char* text, size_t size) {
    if (size != 32) {
        return false;
    }
    for (size_t i = 0; i < size; ++i) {
        if (!isHex(text[i])) {
            return false;
        }
    }
    return true;
}

bool isEndpointId(const char* text, size_t size) {
    if (size < 11 || text[4] != '_' || text[9] != '_') {
        return false;
    }
    for (size_t i = 0; i < 4; ++i) {
        if (!isHex(text[i]) || !isHex(text[i + 5])) {
            return false;
        }
    }
    for (size_t i = 10; i < size; ++i) {
        if (!is(text[i], kAlnum)) {
            return false;
        }
    }
    return true;
}

bool isShortId(const char* text, size_t size) {
    if (size < 6 || size > 19) {
        return false;
    }
    bool digit = false;
    for (size_t i = 0; i < size; ++i) {
        if (!is(text[i], kShortId)) {
            return false;
        }
        digit = digit || isDigit(text[i]);
    }
    return digit;
}

}  // namespace detail
}  // namespace smarthome
