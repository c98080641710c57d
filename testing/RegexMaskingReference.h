// The masking rules written with std::regex and the documented patterns, as the reference
// the hand-written recognisers are checked against (tests, benchmark, fuzzer). The rules
// that use no pattern (Hue serials, secrets, JSON members) are written here as plainly as
// their description reads: trimmed copies, a direct property read and a recursive walk.
#pragma once

#include <cutils/properties.h>

#include <cstring>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "smarthome/JSONUtil.h"
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

inline std::string obfuscateSerialForPhilipsHue(const std::string& s) {
    std::string t = StringUtils::trim(s);
    if (t.size() <= 2) {
        return std::string(t.size(), 'X');
    }
    return std::string(t.size() - 2, 'X') + t.substr(t.size() - 2);
}

inline std::string obfuscateSecret(const std::string& s) {
    char buildType[PROPERTY_VALUE_MAX] = {};
    property_get("ro.build.type", buildType, "");
    return std::string(buildType) == "user" ? "XXXX" : s;
}

// Depth-first; the parse bounds the depth, so the recursion is bounded too.
inline void maskJsonMembers(JSONValue& value, JSONValue::AllocatorType& allocator,
                            const std::string& key) {
    if (value.IsArray()) {
        for (JSONValue& element : value.GetArray()) {
            maskJsonMembers(element, allocator, key);
        }
    } else if (value.IsObject()) {
        for (auto& member : value.GetObject()) {
            if (member.name.GetStringLength() == key.size() &&
                std::memcmp(member.name.GetString(), key.data(), key.size()) == 0) {
                member.value.SetString("XXXX", allocator);
                break;
            }
        }
        for (auto& member : value.GetObject()) {
            maskJsonMembers(member.value, allocator, key);
        }
    }
}

inline std::string obfuscateJsonObjectForKey(const std::string& json, const std::string& key) {
    JSONDocument doc;
    if (JSONUtil::parse(doc, json).IsError()) {
        return "";
    }
    maskJsonMembers(doc, doc.GetAllocator(), key);
    return JSONUtil::getStringForJSON(doc);
}

}  // namespace reference
}  // namespace smarthome
