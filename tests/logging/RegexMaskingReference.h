// The masking rules written with std::regex and the documented patterns, as the reference
// the hand-written recognisers are checked against (tests, benchmark, fuzzer).
#pragma once

#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "smarthome/StringUtils.h"

namespace smarthome {
namespace reference {

struct Patterns {
    std::vector<std::regex> mac{std::regex("^([0-9A-Fa-f]{2}[:]){5,7}([0-9A-Fa-f]{2})$"),
                                std::regex("^([0-9A-Fa-f]{2}[-]){5,7}([0-9A-Fa-f]{2})$")};
    std::regex ip{R"(^(([01]?\d\d?|2[0-4]\d|25[0-5])\.){3}([01]?\d\d?|2[0-4]\d|25[0-5])$)"};
    std::regex uuid{"[0-9a-fA-F]{8}[0-9a-fA-F]{4}[0-9a-fA-F]{4}[0-9a-fA-F]{4}[0-9a-fA-F]{12}"};
    std::regex endpointId{"[[:xdigit:]]{4}_[[:xdigit:]]{4}_[[:alnum:]]+"};
    std::regex shortId{R"((?=.*\d)[a-zA-Z0-9_.-]{6,19})"};
};

inline const Patterns& patterns() {
    static const Patterns compiled;
    return compiled;
}

inline bool validate(const std::string& text, const std::regex& regex) {
    return std::regex_match(text, regex);
}

using Result = std::pair<bool, std::string>;

inline Result mac(const std::string& input, bool compress) {
    if (input.empty()) {
        return {true, ""};
    }
    std::string t = StringUtils::trim(input);
    for (const auto& regex : patterns().mac) {
        if (validate(input, regex)) {
            if (compress) {
                return {true, "XXX" + t.substr(t.size() - 5)};
            }
            std::string out;
            char separator = t[2];
            for (size_t i = 0; i < (t.size() + 1) / 3 - 2; ++i) {
                out += std::string("XX") + separator;
            }
            return {true, out + t.substr(t.size() - 5)};
        }
    }
    return {false, input};
}

inline Result ip(const std::string& input) {
    if (input.empty()) {
        return {true, ""};
    }
    std::string t = StringUtils::trim(input);
    if (!validate(t, patterns().ip)) {
        return {false, input};
    }
    auto parts = StringUtils::split(t, '.');
    return {true, "XXX.XXX." + parts[2] + "." + parts[3]};
}

inline Result uuid(const std::string& input, bool compress) {
    if (input.empty()) {
        return {true, ""};
    }
    std::string t = StringUtils::trim(input);
    if (!validate(t, patterns().uuid)) {
        return {false, input};
    }
    return {true, (compress ? "XXX" : "XXXXXXXXXXXX") + t.substr(t.size() - 12)};
}

inline Result endpointId(const std::string& input) {
    if (input.empty()) {
        return {true, ""};
    }
    std::string t = StringUtils::trim(input);
    if (validate(t, patterns().endpointId)) {
        auto parts = StringUtils::split(t, '_');
        if (parts.size() < 2) {
            return {false, input};
        }
        return {true, parts[0] + "_" + parts[1] + "_XXX" + t.substr(0, 4)};
    }
    if (validate(t, patterns().shortId)) {
        return {true, "XXX" + t.substr(0, 4)};
    }
    return {false, input};
}

inline Result uid(const std::string& input, bool compress) {
    Result result = mac(input, compress);
    if (result.first) {
        return result;
    }
    result = ip(input);
    if (result.first) {
        return result;
    }
    result = uuid(input, compress);
    if (result.first) {
        return result;
    }
    result = endpointId(input);
    if (result.first) {
        return result;
    }
    return {false, input};
}

// The public operations.
inline std::string obfuscateMac(const std::string& s) {
    return mac(s, false).second;
}
inline std::string compressAndObfuscateMac(const std::string& s) {
    return mac(s, true).second;
}
inline std::string obfuscateIp(const std::string& s) {
    Result r = ip(s);
    return r.first ? r.second : "XXX";
}
inline std::string obfuscateUid(const std::string& s) {
    return uid(s, false).second;
}
inline std::string compressAndObfuscateUid(const std::string& s) {
    return uid(s, true).second;
}
inline std::string obfuscateUsbEpId(const std::string& s) {
    Result r = endpointId(s);
    return r.first ? r.second : "XXX";
}

}  // namespace reference
}  // namespace smarthome
