#include "smarthome/StringUtils.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <iterator>

namespace smarthome {

namespace {

// C-locale character classes, independent of whatever locale the process has set.
bool isSpace(unsigned char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(unsigned char c) {
    return c >= '0' && c <= '9';
}
bool isAlpha(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isAlnum(unsigned char c) {
    return isAlpha(c) || isDigit(c);
}
bool isPunct(unsigned char c) {
    return c > 0x20 && c < 0x7F && !isAlnum(c);
}
char toUpper(unsigned char c) {
    return static_cast<char>(c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c);
}
char toLower(unsigned char c) {
    return static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

bool onlySpacesFrom(const char* p) {
    for (; *p != '\0'; ++p) {
        if (!isSpace(static_cast<unsigned char>(*p))) {
            return false;
        }
    }
    return true;
}

// strtoll with the library's acceptance rule: something parsed, no overflow, and only
// blanks after the number.
bool parseSigned(const char* s, int base, long long* value) {
    if (s == nullptr) {
        return false;
    }
    int savedErrno = errno;
    errno = 0;
    char* end = nullptr;
    long long parsed = std::strtoll(s, &end, base);
    bool ok = end != s && errno != ERANGE && errno != EINVAL && onlySpacesFrom(end);
    errno = savedErrno;
    if (ok) {
        *value = parsed;
    }
    return ok;
}

bool parseUnsigned(const char* s, int base, unsigned long long* value) {
    if (s == nullptr) {
        return false;
    }
    int savedErrno = errno;
    errno = 0;
    char* end = nullptr;
    unsigned long long parsed = std::strtoull(s, &end, base);
    bool ok = end != s && errno != ERANGE && errno != EINVAL && onlySpacesFrom(end);
    errno = savedErrno;
    if (ok) {
        *value = parsed;
    }
    return ok;
}

unsigned char hexPairToByte(char high, char low) {
    char pair[3] = {high, low, '\0'};
    return static_cast<unsigned char>(std::strtol(pair, nullptr, 16));
}

// Number of continuation bytes a lead byte needs, or -1 for a byte that cannot lead.
int continuationBytesFor(unsigned char lead) {
    if ((lead & 0xE0) == 0xC0) {
        return 1;
    }
    if ((lead & 0xF0) == 0xE0) {
        return 2;
    }
    if ((lead & 0xF8) == 0xF0) {
        return 3;
    }
    return -1;
}

bool isContinuation(unsigned char c) {
    return (c & 0xC0) == 0x80;
}

}  // namespace

// ---- trimming and cleaning ----------------------------------------------------------------

std::string StringUtils::trim(std::string s) {
    size_t first = 0;
    while (first < s.size() && isSpace(static_cast<unsigned char>(s[first]))) {
        ++first;
    }
    size_t last = s.size();
    while (last > first && isSpace(static_cast<unsigned char>(s[last - 1]))) {
        --last;
    }
    return s.substr(first, last - first);
}

std::string StringUtils::removeWhiteSpaces(std::string s) {
    std::string out;
    out.reserve(s.size());
    for (char c : s) {
        if (!isSpace(static_cast<unsigned char>(c))) {
            out += c;
        }
    }
    return out;
}

std::string StringUtils::stripCharacter(std::string s, char c) {
    std::string out;
    out.reserve(s.size());
    for (char x : s) {
        if (x != c) {
            out += x;
        }
    }
    return out;
}

void StringUtils::removeSpecialCharacters(std::string& s) {
    std::string out;
    out.reserve(s.size());
    for (char c : s) {
        auto u = static_cast<unsigned char>(c);
        if (isSpace(u) || isAlnum(u) || isPunct(u)) {
            out += c;
        }
    }
    s.swap(out);
}

bool StringUtils::sanitizeEndpointId(std::string& s) {
    static const char kAllowed[] = "#&-:;=?@_";
    std::string out;
    out.reserve(s.size());
    for (char c : s) {
        auto u = static_cast<unsigned char>(c);
        if (isAlpha(u) || isDigit(u) || isSpace(u) ||
            (c != '\0' && std::strchr(kAllowed, c) != nullptr)) {
            out += c;
        }
    }
    s.swap(out);
    return !s.empty() && s.size() <= 256;
}

std::string StringUtils::camelMerge(const std::string& first, std::string second) {
    if (!second.empty()) {
        second[0] = toUpper(static_cast<unsigned char>(second[0]));
    }
    return first + second;
}

std::string StringUtils::toLowerCase(const std::string& s) {
    std::string out(s);
    for (char& c : out) {
        c = toLower(static_cast<unsigned char>(c));
    }
    return out;
}

std::string StringUtils::toUpperCase(const std::string& s) {
    std::string out(s);
    for (char& c : out) {
        c = toUpper(static_cast<unsigned char>(c));
    }
    return out;
}

std::string StringUtils::replaceAll(const std::string& s, const std::string& from,
                                    const std::string& to) {
    if (s.empty() || from.empty()) {
        return s;
    }
    std::string out;
    out.reserve(s.size());
    size_t pos = 0;
    for (size_t found = s.find(from); found != std::string::npos; found = s.find(from, pos)) {
        out.append(s, pos, found - pos);
        out += to;
        pos = found + from.size();
    }
    out.append(s, pos, std::string::npos);
    return out;
}

bool StringUtils::startsWith(const std::string& s, const std::string& prefix) {
    return prefix.size() <= s.size() && s.compare(0, prefix.size(), prefix) == 0;
}

bool StringUtils::hasSuffix(const std::string& s, const std::string& suffix) {
    return suffix.size() <= s.size() &&
           s.compare(s.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string StringUtils::concatenate(std::initializer_list<const char* const> parts,
                                     const char* separator) {
    std::string out;
    for (const char* part : parts) {
        if (part != nullptr) {
            out += part;
        }
        if (separator != nullptr) {
            out += separator;
        }
    }
    if (separator != nullptr && !out.empty()) {
        out.resize(out.size() - std::strlen(separator));
    }
    return out;
}

// ---- splitting ------------------------------------------------------------------------------

std::vector<std::string> StringUtils::split(std::string s, char delim) {
    std::vector<std::string> pieces;
    size_t start = 0;
    while (start < s.size()) {
        size_t end = s.find(delim, start);
        if (end == std::string::npos) {
            pieces.emplace_back(s, start);
            break;
        }
        pieces.emplace_back(s, start, end - start);
        start = end + 1;
    }
    return pieces;
}

std::vector<std::string> StringUtils::split(std::string s, char delim, int maxCount) {
    if (s.empty()) {
        return {};
    }
    if (maxCount <= 1) {
        return {s};
    }
    std::vector<std::string> pieces;
    size_t start = 0;
    while (start < s.size() && pieces.size() < static_cast<size_t>(maxCount - 1)) {
        size_t end = s.find(delim, start);
        if (end == std::string::npos) {
            pieces.emplace_back(s, start);
            start = s.size();
            break;
        }
        pieces.emplace_back(s, start, end - start);
        start = end + 1;
    }
    if (start < s.size()) {
        // The rest of the text, read as one line.
        size_t newline = s.find('\n', start);
        pieces.emplace_back(s, start, newline == std::string::npos ? newline : newline - start);
    }
    return pieces;
}

std::vector<std::string> StringUtils::split(const std::string& s, const std::string& delim) {
    if (s.empty()) {
        return {};
    }
    if (delim.empty()) {
        return {s};
    }
    std::vector<std::string> pieces;
    size_t start = 0;
    for (size_t found = s.find(delim); found != std::string::npos; found = s.find(delim, start)) {
        pieces.emplace_back(s, start, found - start);
        start = found + delim.size();
    }
    pieces.emplace_back(s, start);
    return pieces;
}

std::vector<std::string> StringUtils::splitStrIgnoringSubStrInBrackets(const std::string& s,
                                                                       const std::string& delim) {
    std::vector<std::string> pieces;
    if (s.empty()) {
        return pieces;
    }
    size_t p = 0;
    while (true) {
        size_t open = s.find('{', p);
        size_t close = s.find('}', p);
        size_t d = s.find(delim, p);
        size_t cut;
        if (d < open) {
            cut = d;
        } else if (close != std::string::npos) {
            cut = close + 1;
        } else {
            // Neither a delimiter before a brace nor a closing brace ahead.
            break;
        }
        size_t next = cut + delim.size();
        if (next <= p) {
            // An empty delimiter found where the piece starts: cutting there would not
            // advance, so the rest becomes the last piece.
            break;
        }
        pieces.emplace_back(s, p, cut - p);
        p = next;
        if (p >= s.size()) {
            break;
        }
    }
    if (p <= s.size()) {
        pieces.emplace_back(s, p);
    }
    return pieces;
}

std::string StringUtils::getSubStrInOutermostBracket(const std::string& s) {
    size_t open = s.find('{');
    size_t close = s.rfind('}');
    if (open == std::string::npos || close == std::string::npos) {
        return {};
    }
    // Length close - 1 (not close - open - 1), wrapping like the unsigned arithmetic it is.
    return s.substr(open + 1, close - 1);
}

// ---- numbers ----------------------------------------------------------------------------------

bool StringUtils::stringToInt64(const char* s, long long* out, int base) {
    long long value = 0;
    if (out == nullptr || !parseSigned(s, base, &value)) {
        return false;
    }
    *out = value;
    return true;
}

bool StringUtils::stringToInt(const char* s, int* out) {
    long long value = 0;
    if (out == nullptr || !parseSigned(s, 10, &value) || value < INT_MIN || value > INT_MAX) {
        return false;
    }
    *out = static_cast<int>(value);
    return true;
}

bool StringUtils::stringToInt32(const char* s, int* out) {
    return stringToInt(s, out);
}

bool StringUtils::stringToUInt8(const char* s, unsigned char* out, int base) {
    unsigned long long value = 0;
    if (out == nullptr || !parseUnsigned(s, base, &value) || value > UCHAR_MAX) {
        return false;
    }
    *out = static_cast<unsigned char>(value);
    return true;
}

bool StringUtils::stringToUInt16(const char* s, unsigned short* out, int base) {
    long long value = 0;
    if (out == nullptr || !parseSigned(s, base, &value) || value < 0 || value > USHRT_MAX) {
        return false;
    }
    *out = static_cast<unsigned short>(value);
    return true;
}

bool StringUtils::stringToUInt32(const char* s, unsigned int* out) {
    long long value = 0;
    if (out == nullptr || !parseSigned(s, 10, &value) || value < 0 || value > UINT_MAX) {
        return false;
    }
    *out = static_cast<unsigned int>(value);
    return true;
}

bool StringUtils::stringToUInt64(const char* s, unsigned long long* out, int base) {
    unsigned long long value = 0;
    if (out == nullptr || !parseUnsigned(s, base, &value)) {
        return false;
    }
    *out = value;
    return true;
}

bool StringUtils::stringToDouble(const char* s, double* out) {
    if (s == nullptr || out == nullptr) {
        return false;
    }
    int savedErrno = errno;
    errno = 0;
    char* end = nullptr;
    double value = std::strtod(s, &end);
    bool ok = end != s && errno != ERANGE && !std::isnan(value);
    errno = savedErrno;
    if (ok) {
        *out = value;
    }
    return ok;
}

std::pair<bool, long long> StringUtils::toInt64(std::string s) {
    long long value = 0;
    if (s.empty() || !parseSigned(s.c_str(), 10, &value)) {
        return {false, 0};
    }
    return {true, value};
}

std::pair<bool, int> StringUtils::toInt(std::string s) {
    std::istringstream in(s);
    if (s.find("0x") != std::string::npos) {
        in >> std::hex;
    }
    int value = 0;
    in >> value;
    if (in.fail()) {
        return {false, -1};
    }
    return {true, value};
}

std::pair<bool, unsigned long long> StringUtils::hexStringToUint64(const std::string& s) {
    std::istringstream in(s.find("0x") != std::string::npos ? s : "0x" + s);
    unsigned long long value = 0;
    in >> std::hex >> value;
    if (in.fail()) {
        return {false, ULLONG_MAX};
    }
    return {true, value};
}

// ---- hex and bytes ------------------------------------------------------------------------

void StringUtils::hexStringToByteArray(const std::string& s, unsigned char* out) {
    if (out == nullptr) {
        return;
    }
    // Whole pairs only: a final unpaired character has no byte of its own in out.
    for (size_t i = 0; i + 1 < s.size(); i += 2) {
        out[i / 2] = hexPairToByte(s[i], s[i + 1]);
    }
}

std::vector<unsigned char> StringUtils::hexStringToByteVector(const std::string& s) {
    if (s.empty() || s.size() % 2 != 0) {
        return {};
    }
    std::vector<unsigned char> bytes(s.size() / 2);
    hexStringToByteArray(s, bytes.data());
    return bytes;
}

std::string StringUtils::byteVectorToHexString(std::vector<unsigned char> bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (unsigned char b : bytes) {
        out += kDigits[b >> 4];
        out += kDigits[b & 0x0F];
    }
    return out;
}

std::string StringUtils::byteVectorToString(std::vector<unsigned char> bytes) {
    return std::string(bytes.begin(), bytes.end());
}

std::string StringUtils::uint64ToHexString(unsigned long long v) {
    std::ostringstream out;
    out << std::hex << v;
    return out.str();
}

std::string StringUtils::uint64ToHexString(unsigned long long v, unsigned char width) {
    std::ostringstream out;
    out << std::hex << std::setw(width) << std::setfill('0') << v;
    return out.str();
}

std::string StringUtils::uint64ToHex2sComplementString(unsigned long long v) {
    return uint64ToHexString(0ULL - v, 16);
}

// ---- UTF-8 ------------------------------------------------------------------------------------

bool StringUtils::isValidUtf8String(const std::string& s) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(s.data());
    const size_t size = s.size();
    size_t i = 0;
    while (i < size) {
        unsigned char lead = bytes[i];
        if (lead < 0x80) {
            ++i;
            continue;
        }
        if (lead == 0xED && i + 1 < size && bytes[i + 1] >= 0xA0) {
            return false;  // a UTF-16 surrogate
        }
        int need = continuationBytesFor(lead);
        if (need < 0) {
            return false;
        }
        for (int k = 1; k <= need; ++k) {
            if (i + k >= size || !isContinuation(bytes[i + k])) {
                return false;
            }
        }
        i += static_cast<size_t>(need) + 1;
    }
    return true;
}

std::string StringUtils::removeNonUtf8Characters(const std::string& s) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(s.data());
    const size_t size = s.size();
    std::string out;
    out.reserve(size);
    size_t i = 0;
    while (i < size) {
        unsigned char lead = bytes[i];
        if (lead < 0x80) {
            out += static_cast<char>(lead);
            ++i;
            continue;
        }
        int need = continuationBytesFor(lead);
        if (need < 0) {
            ++i;
            continue;
        }
        if (lead == 0xED && i + 1 < size && bytes[i + 1] >= 0xA0) {
            i += 3;  // the surrogate's three bytes, unexamined
            continue;
        }
        size_t k = 1;
        while (k <= static_cast<size_t>(need) && i + k < size && isContinuation(bytes[i + k])) {
            ++k;
        }
        if (k > static_cast<size_t>(need)) {
            out.append(s, i, k);
            i += k;
        } else {
            // Cut off by the end, or broken by a byte that is not a continuation: the
            // gathered bytes go, and so does the breaking byte.
            i += k + 1;
        }
    }
    return out;
}

// ---- printing -----------------------------------------------------------------------------

std::string StringUtils::toString(const std::vector<std::string>& values) {
    std::string out = "[";
    for (size_t i = 0; i < values.size(); ++i) {
        if (i != 0) {
            out += ", ";
        }
        out += values[i];
    }
    out += ']';
    return out;
}

}  // namespace smarthome
