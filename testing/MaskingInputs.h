// Generated masking inputs that cluster around the recognisers' boundaries: octet counts
// 5 to 9, mixed separators, 255/256, leading zeros, blanks around, 31 to 33 hex digits,
// underscores, 5/6/19/20-character ids with and without digits, non-ASCII bytes, empty;
// and small JSON documents whose members repeat, escape or nearly match the masked key,
// nested up to and past the parse depth limit, sometimes broken.
#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace smarthome {
namespace test {

class MaskingInputGenerator {
public:
    explicit MaskingInputGenerator(uint32_t seed) : random_(seed) {}

    std::string next() {
        std::string text;
        switch (pick(9)) {
            case 0:
                text = mac();
                break;
            case 1:
                text = ipv4();
                break;
            case 2:
                text = hexRun(30 + pick(5));
                break;
            case 3:
                text = endpointId();
                break;
            case 4:
                text = shortId();
                break;
            case 5:
                text = randomText(pick(24));
                break;
            case 6:
                text = "";
                break;
            case 7:
                text = dashedUuid();
                break;
            default:
                text = mutate(mac() + ipv4());
                break;
        }
        if (pick(6) == 0) {
            text = mutate(text);
        }
        if (pick(8) == 0) {
            text = blank() + text;
        }
        if (pick(8) == 0) {
            text += blank();
        }
        return text;
    }

    // A JSON text, usually valid.
    std::string json() {
        std::string s;
        if (pick(50) == 0) {
            // Around the parse depth limit of 512.
            const size_t depth = 508 + pick(8);
            s = std::string(depth, '[') + jsonValue(2) + std::string(depth, ']');
        } else {
            s = jsonValue(0);
        }
        if (pick(10) == 0) {
            s = mutate(s);
        }
        return s;
    }

    // A key to mask: mostly one the documents use, sometimes with an embedded NUL.
    std::string jsonKey() {
        static const std::string kKeys[] = {"token", "k", "", "tok", std::string("token\0x", 7)};
        return kKeys[pick(5)];
    }

private:
    std::string jsonValue(int depth) {
        // Member names, written as JSON string bodies: exact, escaped and near misses.
        static const char* const kNames[] = {"token", "k",           "",  "tok",          "tokens",
                                             "Token", "tok\\u0065n", "a", "token\\u0000x"};
        switch (depth > 4 ? 2 + pick(4) : pick(6)) {
            case 0: {
                std::string s = "{";
                const size_t members = pick(5);
                for (size_t i = 0; i < members; ++i) {
                    s += (i != 0 ? ",\"" : "\"") + std::string(kNames[pick(9)]) + "\":";
                    s += jsonValue(depth + 1);
                }
                return s + "}";
            }
            case 1: {
                std::string s = "[";
                const size_t elements = pick(5);
                for (size_t i = 0; i < elements; ++i) {
                    s += (i != 0 ? "," : "") + jsonValue(depth + 1);
                }
                return s + "]";
            }
            case 2:
                return "\"" + std::string(kNames[pick(9)]) + "\"";
            case 3:
                return std::to_string(static_cast<int>(pick(2000)) - 1000);
            case 4:
                return pick(2) == 0 ? "true" : "false";
            default:
                return "null";
        }
    }

    uint32_t pick(uint32_t n) { return static_cast<uint32_t>(random_() % n); }

    char hexDigit() {
        static const char kHex[] = "0123456789abcdefABCDEFgG";
        return kHex[pick(pick(10) == 0 ? 24 : 22)];
    }
    std::string blank() {
        static const char kBlanks[] = " \t\n\r\v\f";
        return std::string(1 + pick(2), kBlanks[pick(6)]);
    }
    std::string hexRun(size_t count) {
        std::string s;
        for (size_t i = 0; i < count; ++i) {
            s += hexDigit();
        }
        return s;
    }
    std::string mac() {
        static const char kSeparators[] = ":-.";
        const size_t octets = 5 + pick(5);
        const char separator = kSeparators[pick(2)];
        std::string s;
        for (size_t i = 0; i < octets; ++i) {
            if (i != 0) {
                s += pick(20) == 0 ? kSeparators[pick(3)] : separator;
            }
            s += hexRun(pick(15) == 0 ? 1 + pick(3) : 2);
        }
        return s;
    }
    std::string octet() {
        switch (pick(6)) {
            case 0:
                return std::to_string(250 + pick(10));
            case 1:
                return "0" + std::to_string(pick(100));
            case 2:
                return "00" + std::to_string(pick(10));
            case 3:
                return std::to_string(pick(300));
            case 4:
                return std::to_string(190 + pick(70));
            default:
                return std::to_string(pick(1000));
        }
    }
    std::string ipv4() {
        const size_t parts = pick(8) == 0 ? 3 + pick(3) : 4;
        std::string s;
        for (size_t i = 0; i < parts; ++i) {
            s += (i != 0 ? "." : "") + (pick(30) == 0 ? std::string() : octet());
        }
        return s;
    }
    std::string endpointId() {
        auto groupLength = [this] { return pick(3) == 0 ? 3 + pick(3) : 4u; };
        std::string s =
            hexRun(groupLength()) + (pick(10) == 0 ? "-" : "_") + hexRun(groupLength()) + "_";
        size_t serial = pick(10) == 0 ? 0 : 1 + pick(11);
        for (size_t i = 0; i < serial; ++i) {
            s += alnumOrOther();
        }
        return s;
    }
    char alnumOrOther() {
        static const char kChars[] =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-/";
        if (pick(40) == 0) {
            return static_cast<char>(0x80 + pick(128));
        }
        return kChars[pick(sizeof(kChars) - 1)];
    }
    std::string shortId() {
        static const size_t kLengths[] = {4, 5, 6, 7, 12, 18, 19, 20, 21};
        size_t length = kLengths[pick(9)];
        bool digits = pick(2) == 0;
        std::string s;
        for (size_t i = 0; i < length; ++i) {
            char c = alnumOrOther();
            if (!digits && c >= '0' && c <= '9') {
                c = 'q';
            }
            s += c;
        }
        return s;
    }
    std::string dashedUuid() {
        return hexRun(8) + "-" + hexRun(4) + "-" + hexRun(4) + "-" + hexRun(4) + "-" + hexRun(12);
    }
    std::string randomText(size_t length) {
        std::string s;
        for (size_t i = 0; i < length; ++i) {
            s += static_cast<char>(pick(256));
        }
        return s;
    }
    std::string mutate(std::string s) {
        if (s.empty()) {
            return s;
        }
        size_t where = pick(static_cast<uint32_t>(s.size()));
        switch (pick(4)) {
            case 0:
                s[where] = static_cast<char>(pick(256));
                break;
            case 1:
                s.erase(where, 1);
                break;
            case 2:
                s.insert(where, 1, "_.:-0aZ\xe9"[pick(8)]);
                break;
            default:
                s = s.substr(0, where);
                break;
        }
        return s;
    }

    std::mt19937 random_;
};

}  // namespace test
}  // namespace smarthome
