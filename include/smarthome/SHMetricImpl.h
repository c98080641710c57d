// One metric for a (program, source) pair: resolves the pair to the metrics service's
// group and schema ids, collects data points in the Vantor format, and emits the record
// once, when it is destroyed, through __metrics_log_print_v2 (priority 4, version 100).
// An object whose pair did not resolve accepts data points but emits nothing.
//
// Ownership: owns its record; not copyable (a copy would emit twice). Thread-safety: none;
// a metric is built and ended on one thread.
#pragma once

#include <string>
#include <unordered_map>

#include "smarthome/LoggerMetric.h"
#include "smarthome/VantorPredefinedKey.h"

namespace smarthome {

class SHMetricImpl {
public:
    SHMetricImpl(const std::string& program, const std::string& source);
    // Emits the record when initialised (see the class comment).
    virtual ~SHMetricImpl();
    SHMetricImpl(const SHMetricImpl&) = delete;
    SHMetricImpl& operator=(const SHMetricImpl&) = delete;

    // Forward to the record whether or not the object is initialised.
    virtual bool addLongDataPoint(const std::string& name, long value);
    virtual bool addBoolDataPoint(const std::string& name, bool value);
    virtual bool addDoubleDataPoint(const std::string& name, double value);
    virtual bool addStringDataPoint(const std::string& name, const std::string& value);
    // addStringDataPoint for every entry in the map's iteration order; the AND of the
    // results (true for an empty map).
    virtual bool addStringDataPoints(const std::unordered_map<std::string, std::string>& points);
    virtual bool addPredefinedKey(VantorPredefinedKey key);
    virtual bool isInitialized() const;

private:
    std::string program;
    std::string source;
    std::string metricName;  // program + "::" + source, used in every log line
    std::string groupId;
    std::string schemaId;
    LoggerMetric record{true};
    bool initialized = false;
    bool loggingToVantor = false;
};

}  // namespace smarthome
