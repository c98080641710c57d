#include "logging/IdentifierMatchers.h"

namespace smarthome {
namespace detail {

namespace {

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isHex(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool isAlnum(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isShortIdCharacter(char c) {
    return isAlnum(c) || c == '_' || c == '.' || c == '-';
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
    // 6, 7 or 8 octets: 17, 20 or 23 characters.
    if (size != 17 && size != 20 && size != 23) {
        return false;
    }
    for (size_t i = 0; i < size; ++i) {
        if (i % 3 == 2 ? text[i] != separator : !isHex(text[i])) {
            return false;
        }
    }
    return true;
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
    for (size_t i = 0; i < size; ++i) {
        if (i == 4 || i == 9) {
            continue;
        }
        if (i < 9 ? !isHex(text[i]) : !isAlnum(text[i])) {
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
        if (!isShortIdCharacter(text[i])) {
            return false;
        }
        digit = digit || isDigit(text[i]);
    }
    return digit;
}

}  // namespace detail
}  // namespace smarthome
