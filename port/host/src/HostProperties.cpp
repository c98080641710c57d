// Host implementation of the system-property store with the device's lookup and
// naming rules (see cutils/properties.h for the rules themselves).
#include <cutils/properties.h>

#include <cerrno>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <unordered_map>

#include "base/Mutex.h"
#include "smarthome-host/HostPort.h"

namespace {

constexpr size_t kMaxValueLength = PROP_VALUE_MAX - 1;

bool isLegalNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-' || c == '@' || c == ':';
}

bool isLegalName(const std::string& name) {
    if (name.empty() || name.front() == '.' || name.back() == '.') {
        return false;
    }
    if (name.find("..") != std::string::npos) {
        return false;
    }
    for (char c : name) {
        if (!isLegalNameCharacter(c)) {
            return false;
        }
    }
    return true;
}

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isStrictUtf8(const std::string& text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    size_t size = text.size();
    size_t i = 0;
    while (i < size) {
        unsigned char lead = bytes[i];
        if (lead < 0x80) {
            ++i;
            continue;
        }
        size_t need = 0;
        uint32_t codePoint = 0;
        uint32_t minimum = 0;
        if (lead >= 0xC2 && lead <= 0xDF) {
            need = 1, codePoint = lead & 0x1F, minimum = 0x80;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            need = 2, codePoint = lead & 0x0F, minimum = 0x800;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            need = 3, codePoint = lead & 0x07, minimum = 0x10000;
        } else {
            return false;
        }
        if (size - i - 1 < need) {
            return false;
        }
        for (size_t k = 1; k <= need; ++k) {
            unsigned char next = bytes[i + k];
            if ((next & 0xC0) != 0x80) {
                return false;
            }
            codePoint = (codePoint << 6) | (next & 0x3F);
        }
        if (codePoint < minimum || codePoint > 0x10FFFF ||
            (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
            return false;
        }
        i += need + 1;
    }
    return true;
}

std::string trimBlanks(const std::string& text) {
    const char* blanks = " \t\r\n\f\v";
    size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return {};
    }
    size_t last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

class PropertyStore {
public:
    static PropertyStore& instance() {
        // Leaked on purpose: properties may be read during static destruction.
        static PropertyStore* store = new PropertyStore();
        return *store;
    }

    // Copies the value (cut to 91 characters) into out; false when missing or empty.
    bool read(const char* key, std::string* out) {
        smarthome::detail::MutexLock lock(mutex_);
        auto it = values_.find(key);
        if (it == values_.end() || it->second.empty()) {
            return false;
        }
        *out = it->second.substr(0, kMaxValueLength);
        return true;
    }

    int write(const std::string& key, const std::string& value) {
        if (!isLegalName(key)) {
            return -1;
        }
        bool readOnly = key.compare(0, 3, "ro.") == 0;
        if (value.size() >= PROP_VALUE_MAX && !readOnly) {
            return -1;
        }
        if (!isStrictUtf8(value)) {
            return -1;
        }
        smarthome::detail::MutexLock lock(mutex_);
        if (readOnly && values_.count(key) != 0) {
            return -1;
        }
        values_[key] = value;
        return 0;
    }

    void clear() {
        smarthome::detail::MutexLock lock(mutex_);
        values_.clear();
    }

    bool load(const std::string& path) {
        std::ifstream in(path);
        if (!in) {
            return false;
        }
        std::unordered_map<std::string, std::string> loaded;
        std::string line;
        while (std::getline(in, line)) {
            std::string trimmed = trimBlanks(line);
            if (trimmed.empty() || trimmed[0] == '#') {
                continue;
            }
            size_t equals = trimmed.find('=');
            if (equals == std::string::npos) {
                continue;
            }
            std::string key = trimBlanks(trimmed.substr(0, equals));
            if (!isLegalName(key)) {
                continue;
            }
            loaded[key] = trimBlanks(trimmed.substr(equals + 1));
        }
        smarthome::detail::MutexLock lock(mutex_);
        for (auto& entry : loaded) {
            values_[entry.first] = std::move(entry.second);
        }
        return true;
    }

private:
    PropertyStore() {
        const char* path = std::getenv("SMARTHOME_PROPERTIES");
        if (path != nullptr && path[0] != '\0') {
            load(path);
        }
    }

    smarthome::detail::Mutex mutex_;
    std::unordered_map<std::string, std::string> values_ SH_GUARDED_BY(mutex_);
};

intmax_t getBoundedInteger(const char* key, intmax_t lower, intmax_t upper, intmax_t defaultValue) {
    if (key == nullptr) {
        return defaultValue;
    }
    char buffer[PROP_VALUE_MAX];
    if (property_get(key, buffer, "") <= 0) {
        return defaultValue;
    }
    int savedErrno = errno;
    errno = 0;
    char* end = nullptr;
    intmax_t parsed = std::strtoimax(buffer, &end, 0);
    bool valid = errno != ERANGE && end != buffer && parsed >= lower && parsed <= upper;
    errno = savedErrno;
    return valid ? parsed : defaultValue;
}

}  // namespace

extern "C" int property_get(const char* key, char* value, const char* default_value) {
    if (value == nullptr) {
        return -1;
    }
    std::string stored;
    if (key != nullptr && PropertyStore::instance().read(key, &stored)) {
        std::memcpy(value, stored.data(), stored.size());
        value[stored.size()] = '\0';
        return static_cast<int>(stored.size());
    }
    if (default_value == nullptr) {
        value[0] = '\0';
        return 0;
    }
    size_t length = strnlen(default_value, kMaxValueLength);
    std::memcpy(value, default_value, length);
    value[length] = '\0';
    return static_cast<int>(length);
}

extern "C" bool property_get_bool(const char* key, bool default_value) {
    if (key == nullptr) {
        return default_value;
    }
    char buffer[PROP_VALUE_MAX];
    int length = property_get(key, buffer, "");
    if (length == 1) {
        switch (buffer[0]) {
            case '0':
            case 'n':
                return false;
            case '1':
            case 'y':
                return true;
            default:
                return default_value;
        }
    }
    if (length > 1) {
        if (std::strcmp(buffer, "no") == 0 || std::strcmp(buffer, "false") == 0 ||
            std::strcmp(buffer, "off") == 0) {
            return false;
        }
        if (std::strcmp(buffer, "yes") == 0 || std::strcmp(buffer, "true") == 0 ||
            std::strcmp(buffer, "on") == 0) {
            return true;
        }
    }
    return default_value;
}

extern "C" int64_t property_get_int64(const char* key, int64_t default_value) {
    return static_cast<int64_t>(getBoundedInteger(key, INT64_MIN, INT64_MAX, default_value));
}

extern "C" int32_t property_get_int32(const char* key, int32_t default_value) {
    return static_cast<int32_t>(getBoundedInteger(key, INT32_MIN, INT32_MAX, default_value));
}

extern "C" int property_set(const char* key, const char* value) {
    if (key == nullptr) {
        return -1;
    }
    return PropertyStore::instance().write(key, value != nullptr ? value : "");
}

namespace smarthome {
namespace port {

void clearSystemProperties() {
    PropertyStore::instance().clear();
}

bool loadSystemProperties(const std::string& path) {
    return PropertyStore::instance().load(path);
}

}  // namespace port
}  // namespace smarthome
