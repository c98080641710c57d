// Identifier masking of SmartHomeLogger. The recognisers are hand-written scans that
// accept exactly what the documented patterns accept (see IdentifierMatchers.h), so a
// mask costs a few dozen nanoseconds instead of a regular-expression match.
#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <new>
#include <utility>
#include <vector>

#include "masking/IdentifierMatchers.h"
#include "smarthome/JSONUtil.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/SystemPropertyWrapper.h"

namespace smarthome {

namespace {

const char kSecretMask[] = "XXXX";
const char kUnrecognisedMask[] = "XXX";

// The rules below write the masked text into out and return true when they recognise
// the input; out is untouched otherwise. They build each result with a single sizing of
// out, so a mask costs at most one allocation (none when the result fits the string's
// inline buffer).

void assign(std::string& out, std::initializer_list<std::pair<const char*, size_t>> pieces) {
    size_t size = 0;
    for (const auto& piece : pieces) {
        size += piece.second;
    }
    out.clear();
    out.reserve(size);
    for (const auto& piece : pieces) {
        out.append(piece.first, piece.second);
    }
}

bool maskMac(const std::string& mac, bool compress, std::string& out) {
    if (mac.empty()) {
        out.clear();
        return true;
    }
    // Matched on the untrimmed input: a MAC with blanks around is not one, so a match
    // has nothing to trim.
    const char* data = mac.data();
    const size_t size = mac.size();
    if (!detail::isMacWithSeparator(data, size, ':') &&
        !detail::isMacWithSeparator(data, size, '-')) {
        return false;
    }
    const char* tail = data + size - 5;
    if (compress) {
        assign(out, {{kUnrecognisedMask, 3}, {tail, 5}});
        return true;
    }
    // At most 23 characters: build them on the stack and copy once.
    char buffer[23];
    const char separator = data[2];
    // 4, 5 or 6 octets masked: every one but the last two.
    const size_t maskedOctets = std::min<size_t>((size + 1) / 3 - 2, 6);
    char* cursor = buffer;
    for (size_t i = 0; i < maskedOctets; ++i) {
        *cursor++ = 'X';
        *cursor++ = 'X';
        *cursor++ = separator;
    }
    std::copy_n(tail, 5, cursor);
    out.assign(buffer, static_cast<size_t>(cursor + 5 - buffer));
    return true;
}

bool maskIp(const std::string& ip, std::string& out) {
    if (ip.empty()) {
        out.clear();
        return true;
    }
    detail::TrimmedView t = detail::trimmedView(ip);
    if (!detail::isIPv4(t.data, t.size)) {
        return false;
    }
    // "XXX.XXX." + the third part + "." + the fourth part: everything after the second dot.
    const char* second = static_cast<const char*>(std::memchr(t.data, '.', t.size));
    second = static_cast<const char*>(std::memchr(second + 1, '.', t.size - (second + 1 - t.data)));
    const char* rest = second + 1;
    assign(out, {{"XXX.XXX.", 8}, {rest, static_cast<size_t>(t.data + t.size - rest)}});
    return true;
}

bool maskUuid(const std::string& uuid, bool compress, std::string& out) {
    if (uuid.empty()) {
        out.clear();
        return true;
    }
    detail::TrimmedView t = detail::trimmedView(uuid);
    if (!detail::isHex32(t.data, t.size)) {
        return false;
    }
    const char* tail = t.data + t.size - 12;
    if (compress) {
        assign(out, {{kUnrecognisedMask, 3}, {tail, 12}});
    } else {
        assign(out, {{"XXXXXXXXXXXX", 12}, {tail, 12}});
    }
    return true;
}

bool maskEndpointId(const std::string& id, std::string& out) {
    if (id.empty()) {
        out.clear();
        return true;
    }
    detail::TrimmedView t = detail::trimmedView(id);
    if (detail::isEndpointId(t.data, t.size)) {
        // vendor "_" product "_XXX" + the first four characters of the whole id (the
        // vendor again, not the serial's head).
        char buffer[17];
        std::copy_n(t.data, 10, buffer);
        std::copy_n(kUnrecognisedMask, 3, buffer + 10);
        std::copy_n(t.data, 4, buffer + 13);
        out.assign(buffer, sizeof(buffer));
        return true;
    }
    if (detail::isShortId(t.data, t.size)) {
        assign(out, {{kUnrecognisedMask, 3}, {t.data, 4}});
        return true;
    }
    return false;
}

bool maskUid(const std::string& uid, bool compress, std::string& out) {
    return maskMac(uid, compress, out) || maskIp(uid, out) || maskUuid(uid, compress, out) ||
           maskEndpointId(uid, out);
}

// Adapts a rule to the (recognised, text) form of the private helpers.
std::pair<bool, std::string> asPair(bool recognised, std::string&& masked,
                                    const std::string& input) {
    if (recognised) {
        return {true, std::move(masked)};
    }
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
    std::string masked;
    bool recognised = maskMac(mac, compress, masked);
    return asPair(recognised, std::move(masked), mac);
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateIPHelper(const std::string& ip) const {
    std::string masked;
    bool recognised = maskIp(ip, masked);
    return asPair(recognised, std::move(masked), ip);
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateUuidHelper(const std::string& uuid,
                                                                  bool compress) const {
    std::string masked;
    bool recognised = maskUuid(uuid, compress, masked);
    return asPair(recognised, std::move(masked), uuid);
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateOstEpIdHelper(const std::string& id) const {
    std::string masked;
    bool recognised = maskEndpointId(id, masked);
    return asPair(recognised, std::move(masked), id);
}

std::pair<bool, std::string> SmartHomeLogger::obfuscateUidHelper(std::string uid,
                                                                 bool compress) const {
    std::string masked;
    bool recognised = maskUid(uid, compress, masked);
    return asPair(recognised, std::move(masked), uid);
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
    std::string masked;
    if (maskMac(mac, false, masked)) {
        return masked;
    }
    return mac;
}

std::string SmartHomeLogger::compressAndObfuscateMac(const std::string& mac) const {
    std::string masked;
    if (maskMac(mac, true, masked)) {
        return masked;
    }
    return mac;
}

std::string SmartHomeLogger::obfuscateIp(const std::string& ip) const {
    std::string masked;
    if (maskIp(ip, masked)) {
        return masked;
    }
    return kUnrecognisedMask;
}

std::string SmartHomeLogger::obfuscateUid(const std::string& uid) const {
    std::string masked;
    if (maskUid(uid, false, masked)) {
        return masked;
    }
    return uid;
}

std::string SmartHomeLogger::compressAndObfuscateUid(const std::string& uid) const {
    std::string masked;
    if (maskUid(uid, true, masked)) {
        return masked;
    }
    return uid;
}

std::string SmartHomeLogger::obfuscateUsbEpId(const std::string& id) const {
    std::string masked;
    if (maskEndpointId(id, masked)) {
        return masked;
    }
    return kUnrecognisedMask;
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
