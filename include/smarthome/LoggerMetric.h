// One metric record under construction: a comma-separated list of data points, each
// "<sanitised name>=<value><type suffix>", kept in one of two text formats chosen at
// construction. The PQM format tags items by data-point class (";CT;1" counter, ";TI;1"
// timer, ";DV;1" discrete value) and has no booleans; the Vantor format tags them by value
// type (";IN", ";BO", ";FL", ";SY"). The record only grows; the buffer of the other format
// stays empty. Destruction emits nothing (see SHMetricImpl).
//
// Ownership: owns its two buffers. Thread-safety: none; one thread builds a record.
#pragma once

#include <string>

#include "smarthome/VantorPredefinedKey.h"

namespace smarthome {

class LoggerMetric {
public:
    explicit LoggerMetric(bool vantorFormat);

    // Each appends one data point to the selected buffer and returns true. A bool data
    // point on a PQM-format record appends nothing (still true).
    bool addLongDataPoint(const std::string& name, long value);
    bool addBoolDataPoint(const std::string& name, bool value);
    // PQM: the value truncated towards zero to an unsigned 64-bit integer (negative and NaN
    // give 0, values beyond the range the largest one); Vantor: "%f" (six decimals).
    bool addDoubleDataPoint(const std::string& name, double value);
    // The value is sanitised like the name.
    bool addStringDataPoint(const std::string& name, const std::string& value);
    // "<data-point name>=" with an empty string value; false (nothing appended) for INVALID,
    // OS_FILE_TAG and values outside 1..14.
    bool addPredefinedKey(VantorPredefinedKey key);

    // buffer, then "," when buffer was non-empty, the sanitised name, "=", value unchanged
    // and typeSuffix.
    std::string appendToBuffer(std::string buffer, std::string name, std::string value,
                               std::string typeSuffix);

    std::string getPQMBuffer() const;
    std::string getVantorBuffer() const;

private:
    std::string& selectedBuffer() { return vantorFormat ? vantorBuffer : pqmBuffer; }

    std::string pqmBuffer;
    std::string vantorBuffer;
    bool vantorFormat;
};

}  // namespace smarthome
