// Identifier masking of SmartHomeLogger. The recognisers are hand-written scans that
// accept exactly what the documented patterns accept (see IdentifierMatchers.h), so a
// mask costs a few dozen nanoseconds instead of a regular-expression match.
#include <vector>

#include "logging/IdentifierMatchers.h"
#include "smarthome/JSONUtil.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/StringUtils.h"
#include "smarthome/SystemPropertyWrapper.h"

namespace smarthome {

namespace {

const char kSecretMask[] = "XXXX";
const char kUnrecognisedMask[] = "XXX";
const char kIpHead[] = "XXX.XXX.";
const char kUuidHead[] = "XXXXXXXXXXXX";

std::pair<bool, std::string> notRecognised(const std::string& input) {
    return {false, input};
}

// The last count characters of a view that holds at least count characters.
std::string tail(const detail::TrimmedView& view, size_t count) {
    return std::string(view.data + view.size - count, count);
}

}  // namespace

bool SmartHomeLogger::validateExpression(const std::string& text, Pattern pattern) {
    const char* data = text.data();
    const size_t size = text.size();
    switch (pattern) {
        case Pattern::MacColon:
            return detail::isMacWithSeparator(data, size, ':');
        case Pattern::MacDash:
            return detail::isMacWithSeparator(data, size, '-');
        case Pattern::IPv4:
            return detail::isIPv4(data, size);
        case Pattern::Uuid:
            return detail::isHex32(data, size);
        case Pattern::EndpointId:
            return detail::isEndpointId(data, size);
        case Pattern::ShortId:
            return detail::isShortId(data, size);
    }
    return false;
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateMacHelper(std::string mac,
                                                                 bool compress) const {
    if (mac.empty()) {
        return {true, {}};
    }
    // The patterns are tried on the untrimmed input: a MAC with blanks around is not one.
    if (!validateExpression(mac, Pattern::MacColon) && !validateExpression(mac, Pattern::MacDash)) {
        return notRecognised(mac);
    }
    detail::TrimmedView t = detail::trimmedView(mac);
    std::string masked;
    if (compress) {
        masked.reserve(8);
        masked = kUnrecognisedMask;
    } else {
        const char separator = t.data[2];
        const size_t maskedOctets = (t.size + 1) / 3 - 2;
        masked.reserve(t.size);
        for (size_t i = 0; i < maskedOctets; ++i) {
            masked += "XX";
            masked += separator;
        }
    }
    masked.append(t.data + t.size - 5, 5);
    return {true, masked};
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateIPHelper(const std::string& ip) const {
    if (ip.empty()) {
        return {true, {}};
    }
    detail::TrimmedView t = detail::trimmedView(ip);
    if (!detail::isIPv4(t.data, t.size)) {
        return notRecognised(ip);
    }
    std::vector<std::string> parts = StringUtils::split(t.str(), '.');
    return {true, kIpHead + parts[2] + "." + parts[3]};
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateUuidHelper(const std::string& uuid,
                                                                  bool compress) const {
    if (uuid.empty()) {
        return {true, {}};
    }
    detail::TrimmedView t = detail::trimmedView(uuid);
    if (!detail::isHex32(t.data, t.size)) {
        return notRecognised(uuid);
    }
    return {true, (compress ? kUnrecognisedMask : kUuidHead) + tail(t, 12)};
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateOstEpIdHelper(const std::string& id) const {
    if (id.empty()) {
        return {true, {}};
    }
    detail::TrimmedView t = detail::trimmedView(id);
    if (detail::isEndpointId(t.data, t.size)) {
        std::vector<std::string> parts = StringUtils::split(t.str(), '_');
        if (parts.size() < 2) {
            return notRecognised(id);
        }
        // The kept tail is the first four characters of the whole id, not of the serial.
        return {true, parts[0] + "_" + parts[1] + "_" + kUnrecognisedMask + std::string(t.data, 4)};
    }
    if (detail::isShortId(t.data, t.size)) {
        return {true, kUnrecognisedMask + std::string(t.data, 4)};
    }
    return notRecognised(id);
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateUidHelper(std::string uid,
                                                                 bool compress) const {
    auto result = obfuscateMacHelper(uid, compress);
    if (result.first) {
        return result;
    }
    result = obfuscateIPHelper(uid);
    if (result.first) {
        return result;
    }
    result = obfuscateUuidHelper(uid, compress);
    if (result.first) {
        return result;
    }
    result = obfuscateOstEpIdHelper(uid);
    if (result.first) {
        return result;
    }
    return notRecognised(uid);
}

std::string SmartHomeLogger::obfuscateSerialForPhilipsHelper(std::string serial) const {
    detail::TrimmedView t = detail::trimmedView(serial);
    if (t.size <= 2) {
        return std::string(t.size, 'X');
    }
    return std::string(t.size - 2, 'X') + tail(t, 2);
}

void SmartHomeLogger::obfuscateJsonObjectForKeyHelper(JsonValue& value,
                                                      rapidjson::CrtAllocator& allocator,
                                                      const std::string& key) const {
    // Depth-first over an explicit stack: the parse already bounds the depth, and this
    // keeps the walk off the call stack altogether.
    std::vector<JsonValue*> pending{&value};
    while (!pending.empty()) {
        JsonValue* current = pending.back();
        pending.pop_back();
        if (current->IsArray()) {
            for (auto& element : current->GetArray()) {
                pending.push_back(&element);
            }
        } else if (current->IsObject()) {
            auto member = current->FindMember(key);
            if (member != current->MemberEnd()) {
                member->value.SetString(kSecretMask, allocator);
            }
            for (auto& entry : current->GetObject()) {
                pending.push_back(&entry.value);
            }
        }
    }
}

std::string SmartHomeLogger::obfuscateMac(const std::string& mac) const {
    return obfuscateMacHelper(mac, false).second;
}

std::string SmartHomeLogger::compressAndObfuscateMac(const std::string& mac) const {
    return obfuscateMacHelper(mac, true).second;
}

std::string SmartHomeLogger::obfuscateIp(const std::string& ip) const {
    auto result = obfuscateIPHelper(ip);
    return result.first ? result.second : kUnrecognisedMask;
}

std::string SmartHomeLogger::obfuscateUid(const std::string& uid) const {
    return obfuscateUidHelper(uid, false).second;
}

std::string SmartHomeLogger::compressAndObfuscateUid(const std::string& uid) const {
    return obfuscateUidHelper(uid, true).second;
}

std::string SmartHomeLogger::obfuscateUsbEpId(const std::string& id) const {
    auto result = obfuscateOstEpIdHelper(id);
    return result.first ? result.second : kUnrecognisedMask;
}

std::string SmartHomeLogger::obfuscateSerialForPhilipsHue(const std::string& serial) const {
    return obfuscateSerialForPhilipsHelper(serial);
}

std::string SmartHomeLogger::obfuscateSecret(const std::string& secret) const {
    // Read on every call: the build type is a property, not a compile-time choice.
    if (SystemPropertyWrapper().getSystemProperty("ro.build.type") == "user") {
        return kSecretMask;
    }
    return secret;
}

std::string SmartHomeLogger::obfuscateJsonObjectForKey(std::string& json,
                                                       const std::string& key) const {
    try {
        JSONDocument doc;
        if (JSONUtil::parse(doc, json).IsError()) {
            return {};
        }
        obfuscateJsonObjectForKeyHelper(doc, doc.GetAllocator(), key);
        return JSONUtil::getStringForJSON(doc);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace smarthome
