// Typed access to the platform's system properties, logging misuse (an empty name, a
// missing property) at error level.
// Thread-safety: stateless; safe from any thread (the property store is thread-safe).
#pragma once

#include <string>

namespace smarthome {

class SystemPropertyWrapper {
public:
    // The value, or "" for an empty key or a missing or empty property (both logged).
    std::string getSystemProperty(const std::string& key) const;
    // property_get_int32 semantics; defaultValue for an empty key (logged).
    int getIntSystemProperty(const std::string& key, int defaultValue) const;
    // property_get_bool semantics; defaultValue for an empty key (logged).
    bool getBoolSystemProperty(const std::string& key, bool defaultValue) const;
    // True when the property was set; false for an empty key (logged) or a refused value.
    bool setSystemProperty(const std::string& key, const std::string& value) const;
    // True for any non-empty value, "0" and "false" included: a flag property is on when
    // it is set at all.
    bool isSystemPropertyEnabled(const std::string& key) const;
};

}  // namespace smarthome
