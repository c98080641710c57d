#include "smarthome/SmartHomeLogger.h"

#include <cstdarg>
#include <utility>

#include "smarthome/SmartHomeLoggerImpl.h"

namespace smarthome {

namespace {

const char kTagPrefix[] = "SmartHome:";

std::string tagFromParts(std::initializer_list<const char* const> parts) {
    std::string tag = kTagPrefix;
    for (const char* part : parts) {
        if (part != nullptr) {
            tag += part;
        }
        tag += ':';
    }
    tag.pop_back();
    return tag;
}

}  // namespace

SmartHomeLogger::SmartHomeLogger(std::string tag) : tag(kTagPrefix + std::move(tag)) {}

SmartHomeLogger::SmartHomeLogger(std::initializer_list<const char* const> parts)
    : tag(tagFromParts(parts)) {}

SmartHomeLogger::SmartHomeLogger(std::string tag, std::string id)
    : tag(kTagPrefix + std::move(tag) + "(" + compressAndObfuscateUid(id) + ")") {}

SmartHomeLogger::SmartHomeLogger(std::initializer_list<const char* const> parts, std::string id)
    : tag(tagFromParts(parts) + "(" + compressAndObfuscateUid(id) + ")") {}

SmartHomeLogger::SmartHomeLogger(const SmartHomeLogger& other) : tag(kTagPrefix + other.tag) {}

std::string SmartHomeLogger::getTag() const {
    return tag;
}

#define SMARTHOME_LOGGER_VARARGS(letter)                                                          \
    void SmartHomeLogger::letter(const char* format, ...) const {                                 \
        va_list args;                                                                             \
        va_start(args, format);                                                                   \
        SmartHomeLoggerImpl::letter(tag.c_str(), format, args);                                   \
        va_end(args);                                                                             \
    }                                                                                             \
    void SmartHomeLogger::letter(const std::string& message, const std::exception& error) const { \
        SmartHomeLoggerImpl::letter(tag.c_str(), message, error);                                 \
    }

SMARTHOME_LOGGER_VARARGS(v)
SMARTHOME_LOGGER_VARARGS(d)
SMARTHOME_LOGGER_VARARGS(i)
SMARTHOME_LOGGER_VARARGS(w)
SMARTHOME_LOGGER_VARARGS(e)

#undef SMARTHOME_LOGGER_VARARGS

}  // namespace smarthome
