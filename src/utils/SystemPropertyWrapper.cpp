#include "smarthome/SystemPropertyWrapper.h"

#include <cutils/properties.h>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("SystemPropertyWrapper");

}  // namespace

std::string SystemPropertyWrapper::getSystemProperty(const std::string& key) const {
    if (key.empty()) {
        logger.e("%s:event=PropertyNameIsEmpty, action=returnEmptyValue", "getSystemProperty");
        return {};
    }
    char value[PROPERTY_VALUE_MAX] = {};
    if (property_get(key.c_str(), value, "") < 1) {
        logger.e("%s:event=PropertyDoesNotExist, action=return", "getSystemProperty");
        return {};
    }
    return value;
}

int SystemPropertyWrapper::getIntSystemProperty(const std::string& key, int defaultValue) const {
    if (key.empty()) {
        logger.e("%s:event=PropertyNameIsEmpty, action=returnEmptyValue", "getIntSystemProperty");
        return defaultValue;
    }
    return property_get_int32(key.c_str(), defaultValue);
}

bool SystemPropertyWrapper::getBoolSystemProperty(const std::string& key, bool defaultValue) const {
    if (key.empty()) {
        logger.e("%s:event=PropertyNameIsEmpty, action=returnEmptyValue", "getBoolSystemProperty");
        return defaultValue;
    }
    return property_get_bool(key.c_str(), defaultValue);
}

bool SystemPropertyWrapper::setSystemProperty(const std::string& key,
                                              const std::string& value) const {
    if (key.empty()) {
        logger.e("%s:event=PropertyNameIsEmpty, action=false", "setSystemProperty");
        return false;
    }
    return property_set(key.c_str(), value.c_str()) == 0;
}

bool SystemPropertyWrapper::isSystemPropertyEnabled(const std::string& key) const {
    return !getSystemProperty(key).empty();
}

}  // namespace smarthome
