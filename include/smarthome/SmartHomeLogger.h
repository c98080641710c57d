// The library's logging front end: a fixed Android log tag ("SmartHome:" + component)
// and printf-style operations at the five priorities, written to the platform log.
// The same class carries the identifier-masking operations, so that a component masks
// an identifier through the logger it already holds. Masking is a pure function of its
// input: it never logs and never fails; identifiers it does not recognise pass through,
// except IP addresses and USB endpoint ids, which become "XXX".
//
// Ownership: holds only its tag. Thread-safety: immutable after construction; any
// number of threads may log through one logger at once.
#pragma once

#include <rapidjson/fwd.h>

#include <exception>
#include <initializer_list>
#include <string>
#include <utility>

#if defined(__GNUC__)
#define SMARTHOME_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define SMARTHOME_PRINTF_FORMAT(fmt, args)
#endif

namespace smarthome {

class SmartHomeLogger {
public:
    // Tag "SmartHome:" + tag.
    explicit SmartHomeLogger(std::string tag);
    // Tag "SmartHome:" + each part followed by ':', then the last character removed;
    // an empty list gives "SmartHome". Written SmartHomeLogger({"Looper", "Main"}).
    SmartHomeLogger(std::initializer_list<const char* const> parts);
    // As above, then "(" + compressAndObfuscateUid(id) + ")": a per-device tag stays short.
    // Call these with parentheses, never braces: SmartHomeLogger{"Zigbee", mac.c_str()}
    // is a two-part list, so the raw id ends up in the tag unmasked. A default member
    // initialiser is written "= SmartHomeLogger(...)" (no copy is made, so no re-prefix).
    // The ctest SmartHomeLogger.constructedWithParentheses rejects any braced construction
    // in the repository's sources.
    SmartHomeLogger(std::string tag, std::string id);
    SmartHomeLogger(std::initializer_list<const char* const> parts, std::string id);
    // Deliberately prefixes again: a copy of "SmartHome:X" is tagged "SmartHome:SmartHome:X".
    SmartHomeLogger(const SmartHomeLogger& other);
    SmartHomeLogger& operator=(const SmartHomeLogger&) = delete;
    virtual ~SmartHomeLogger() = default;

    std::string getTag() const;

    void v(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void d(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void i(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void w(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void e(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);

    // Logs "<message>: <error.what()>".
    void v(const std::string& message, const std::exception& error) const;
    void d(const std::string& message, const std::exception& error) const;
    void i(const std::string& message, const std::exception& error) const;
    void w(const std::string& message, const std::exception& error) const;
    void e(const std::string& message, const std::exception& error) const;

    // ---- identifier masking ---------------------------------------------------------------
    // "AA:BB:CC:DD:EE:FF" -> "XX:XX:XX:XX:EE:FF" (6 to 8 octets, ':' or '-' throughout);
    // anything else unchanged.
    std::string obfuscateMac(const std::string& mac) const;
    // "AA:BB:CC:DD:EE:FF" -> "XXXEE:FF"; anything else unchanged.
    std::string compressAndObfuscateMac(const std::string& mac) const;
    // "192.168.1.20" -> "XXX.XXX.1.20" (blanks around allowed); anything else "XXX".
    std::string obfuscateIp(const std::string& ip) const;
    // The first rule that recognises: MAC, IPv4, 32-hex UUID ("XXXXXXXXXXXX" + last 12),
    // endpoint id; otherwise unchanged.
    std::string obfuscateUid(const std::string& uid) const;
    // As obfuscateUid with the compressed MAC and UUID forms ("XXX" + tail).
    std::string compressAndObfuscateUid(const std::string& uid) const;
    // "1a2b_3c4d_SERIAL" -> "1a2b_3c4d_XXX1a2b"; a short id with a digit -> "XXX" + its
    // first four characters; anything else "XXX".
    std::string obfuscateUsbEpId(const std::string& id) const;
    // All but the last two characters become 'X'.
    std::string obfuscateSerialForPhilipsHue(const std::string& serial) const;
    // "XXXX" when the system property "ro.build.type" is "user"; else unchanged.
    std::string obfuscateSecret(const std::string& secret) const;
    // The JSON text with the value of every member named key (at any depth) replaced by
    // "XXXX", written compactly; "" when json does not parse. json is not modified.
    std::string obfuscateJsonObjectForKey(std::string& json, const std::string& key) const;

private:
    using JsonValue = rapidjson::GenericValue<rapidjson::UTF8<char>, rapidjson::CrtAllocator>;

    // The identifier formats the masking rules recognise.
    enum class Pattern { MacColon, MacDash, IPv4, Uuid, EndpointId, ShortId };

    // Each helper returns (recognised, text); unrecognised text is the input unchanged.
    // An empty input counts as recognised and gives "".
    std::pair<bool, std::string> obfuscateMacHelper(std::string mac, bool compress) const;
    std::pair<bool, std::string> obfuscateIPHelper(const std::string& ip) const;
    std::pair<bool, std::string> obfuscateUuidHelper(const std::string& uuid, bool compress) const;
    std::pair<bool, std::string> obfuscateOstEpIdHelper(const std::string& id) const;
    std::pair<bool, std::string> obfuscateUidHelper(std::string uid, bool compress) const;
    std::string obfuscateSerialForPhilipsHelper(std::string serial) const;
    void obfuscateJsonObjectForKeyHelper(JsonValue& value, rapidjson::CrtAllocator& allocator,
                                         const std::string& key) const;
    // Whole-string match of text against pattern.
    static bool validateExpression(const std::string& text, Pattern pattern);

    const std::string tag;
};

}  // namespace smarthome
