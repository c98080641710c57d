#include "smarthome/LoggerMetric.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "smarthome/SHMetricValidation.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("LoggerMetric");

// Data-point names of the predefined keys, indexed by key value; null where the key is
// rejected (INVALID, and OS_FILE_TAG on purpose).
constexpr const char* kPredefinedKeyNames[] = {
    nullptr,         "_platform",       "_softwareVersion",    "_model",
    "_buildType",    "_hardware",       "_deviceType",         "_marketPlaceId",
    "_otaGroupName", "_deviceId",       "_countryOfResidence", "_timeZone",
    nullptr,         "_deviceLanguage", "_customerId"};

// The fraction is dropped; negative values and NaN give 0, values past the range the
// largest value (what a saturating float-to-integer conversion gives, without the
// undefined behaviour of a plain cast).
uint64_t truncateToUnsigned(double value) {
    if (!(value > 0.0)) {
        return 0;
    }
    if (value >= 18446744073709551616.0) {  // 2^64
        return UINT64_MAX;
    }
    return static_cast<uint64_t>(value);
}

enum class ValueText { Verbatim, Sanitized };

// Forms one data point at the end of buffer, in place: "," unless buffer is empty, the
// sanitised name, "=", the value and the type suffix. Every add operation and
// appendToBuffer go through here, so a data point costs no temporary strings.
void appendItem(std::string& buffer, std::string_view name, std::string_view value,
                ValueText valueText, std::string_view typeSuffix) {
    if (!buffer.empty()) {
        buffer += ',';
    }
    SHMetricValidation::appendSanitized(buffer, name);
    buffer += '=';
    if (valueText == ValueText::Sanitized) {
        SHMetricValidation::appendSanitized(buffer, value);
    } else {
        buffer += value;
    }
    buffer += typeSuffix;
}

// printf-style text of a number, for appendItem.
template <typename... Args>
std::string_view formatNumber(char* text, size_t capacity, const char* format, Args... args) {
    int length = std::snprintf(text, capacity, format, args...);
    if (length < 0) {
        return {};
    }
    return {text,
            static_cast<size_t>(length) < capacity ? static_cast<size_t>(length) : capacity - 1};
}

}  // namespace

LoggerMetric::LoggerMetric(bool vantorFormat) : vantorFormat(vantorFormat) {}

bool LoggerMetric::addLongDataPoint(const std::string& name, long value) {
    logger.d("%s:name=%s, count=%ld", "addLongDataPoint", name.c_str(), value);
    char text[24];
    appendItem(selectedBuffer(), name, formatNumber(text, sizeof(text), "%ld", value),
               ValueText::Verbatim, vantorFormat ? ";IN" : ";CT;1");
    return true;
}

bool LoggerMetric::addBoolDataPoint(const std::string& name, bool value) {
    logger.d("%s:addBooleanDataPoint name=%s value=%d", "addBoolDataPoint", name.c_str(),
             static_cast<int>(value));
    if (vantorFormat) {
        appendItem(vantorBuffer, name, value ? "true" : "false", ValueText::Verbatim, ";BO");
    }
    return true;
}

bool LoggerMetric::addDoubleDataPoint(const std::string& name, double value) {
    logger.d("%s:addDoubleDataPoint name=%s, value=%lf", "addDoubleDataPoint", name.c_str(), value);
    if (!vantorFormat) {
        char text[24];
        appendItem(pqmBuffer, name,
                   formatNumber(text, sizeof(text), "%" PRIu64, truncateToUnsigned(value)),
                   ValueText::Verbatim, ";TI;1");
        return true;
    }
    char text[400];  // "%f" of the largest double is about 320 characters
    appendItem(vantorBuffer, name, formatNumber(text, sizeof(text), "%f", value),
               ValueText::Verbatim, ";FL");
    return true;
}

bool LoggerMetric::addStringDataPoint(const std::string& name, const std::string& value) {
    logger.d("%s:addStringDataPoint name=%s, value=%s", "addStringDataPoint", name.c_str(),
             value.c_str());
    appendItem(selectedBuffer(), name, value, ValueText::Sanitized, vantorFormat ? ";SY" : ";DV;1");
    return true;
}

bool LoggerMetric::addPredefinedKey(VantorPredefinedKey key) {
    const auto index = static_cast<uint32_t>(key);
    if (index >= std::size(kPredefinedKeyNames) || kPredefinedKeyNames[index] == nullptr) {
        return false;
    }
    appendItem(selectedBuffer(), kPredefinedKeyNames[index], {}, ValueText::Verbatim,
               vantorFormat ? ";SY" : ";DV;1");
    return true;
}

std::string LoggerMetric::appendToBuffer(std::string buffer, std::string name, std::string value,
                                         std::string typeSuffix) {
    appendItem(buffer, name, value, ValueText::Verbatim, typeSuffix);
    return buffer;
}

std::string LoggerMetric::getPQMBuffer() const {
    return pqmBuffer;
}

std::string LoggerMetric::getVantorBuffer() const {
    return vantorBuffer;
}

}  // namespace smarthome
