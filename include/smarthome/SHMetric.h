// The facade through which smart-home components record a metric. Each constructor creates
// one SHMetricImpl for (program, source) and turns a dimension list into data points; the
// metric is emitted when the SHMetric is destroyed, usually in the statement that made it.
//
// Standard dimensions of a simple metric, in order: "Program", "Source", "MetricName"
// (strings), then the predefined keys PLATFORM, SOFTWARE_VERSION, OTA_GROUP_NAME,
// BUILD_TYPE, DEVICE_ID. A counter made with SHMetric(program, source, name) therefore has
// nine data points: the three strings, the five keys and Counter=1.
//
// Report functions: static members that build the metrics of requests, state updates,
// sensors and feature support from a MetricMeta. Manufacturer and model come from its
// "ManfName" and "ModelName" entries, corrected to "NoManufacturer" / "NoModel" when
// missing; below, <manf> and <model> are those corrected names, "standard(x)" the standard
// dimensions with metric name x, and "counters(x)" three counter metrics named x,
// x_<manf> and x_<manf>_<model>.
//
// Ownership: owns its SHMetricImpl. Thread-safety: none; an SHMetric is used by one thread.
// A Device that several threads update needs outside locking.
#pragma once

#include <initializer_list>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "smarthome/MetricMeta.h"
#include "smarthome/SHMetricImpl.h"
#include "smarthome/VantorDimension.h"

namespace smarthome {

class SHMetric {
public:
    // Standard dimensions, then LONG "Counter" = 1.
    SHMetric(const std::string& program, const std::string& source, const std::string& metricName);
    // Standard dimensions, then LONG "Counter" = count.
    SHMetric(const std::string& program, const std::string& source, int count,
             const std::string& metricName);
    // Standard dimensions, then DOUBLE "Ratio" = ratio.
    SHMetric(const std::string& program, const std::string& source, const std::string& metricName,
             double ratio);
    // Standard dimensions, then LONG "Timer" = timeValue.
    SHMetric(const std::string& program, const std::string& source, const std::string& metricName,
             long timeValue);
    // Additions to the two constructors above, so that a value's kind, not its exact type,
    // picks the form: without them an int, unsigned or long long value is ambiguous between
    // double and long, and code written with int64_t (long here, long long on a 32-bit
    // device) builds on one platform only.
    // - Every other integer type is a timer; a value outside long's range is clamped to
    //   its nearest bound (LONG_MAX for a huge unsigned value, never a wrapped negative).
    template <
        typename Integer,
        std::enable_if_t<std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>, int> = 0>
    SHMetric(const std::string& program, const std::string& source, const std::string& metricName,
             Integer timeValue)
        : SHMetric(program, source, metricName, clampToLong(timeValue)) {}
    // - Every other floating type is a ratio; a long double beyond double's range becomes
    //   the infinity of its sign.
    template <typename Floating, std::enable_if_t<std::is_floating_point_v<Floating>, int> = 0>
    SHMetric(const std::string& program, const std::string& source, const std::string& metricName,
             Floating ratio)
        : SHMetric(program, source, metricName, toDouble(ratio)) {}
    // - A bool is neither a duration nor a ratio: it does not compile here. Record a flag as
    //   a BOOLEAN dimension in a dimension list.
    SHMetric(const std::string& program, const std::string& source, const std::string& metricName,
             bool) = delete;
    // Exactly the given dimensions.
    SHMetric(const std::string& program, const std::string& source,
             const std::vector<VantorDimension>& dimensions);
    // Addition: exactly the listed dimensions, as the vector form. It makes SHMetric(program,
    // source, {}) mean the empty dimension list (a record without data points) instead of
    // being ambiguous between an empty list and an empty metric name.
    SHMetric(const std::string& program, const std::string& source,
             std::initializer_list<VantorDimension> dimensions);
    // Ends the SHMetricImpl, which emits the metric.
    virtual ~SHMetric();
    SHMetric(const SHMetric&) = delete;
    SHMetric& operator=(const SHMetric&) = delete;

    // True whenever the object was constructed (impl exists); whether (program, source)
    // resolved is the SHMetricImpl's business.
    bool isInitialized() const;
    // Adds each dimension as a data point of its type (INVALID and unknown types are skipped)
    // and logs the list. Always returns false; callers do not use the result.
    bool addDimensions(const std::vector<VantorDimension>& dimensions);

    static void addDefaultDimensionsForSimpleMetric(const std::string& program,
                                                    const std::string& source,
                                                    const std::string& metricName,
                                                    std::vector<VantorDimension>& dimensions);

    // ---- naming ---------------------------------------------------------------------------
    static std::string getManufacturerNamePrefix(std::string manufacturer);  // + "Manufacturer"
    static std::string getModelNamePrefix(std::string model);                // + "Model"
    static bool isNameValid(std::string name);                               // non-empty
    // prefix_manufacturer
    static std::string getMetricNameFromManf(std::string manufacturer, std::string prefix);
    // prefix_manufacturer_model
    static std::string getMetricNameFromModel(std::string manufacturer, std::string model,
                                              std::string prefix);
    // name, or fallback (with a debug line) when name is empty.
    static std::string correctName(std::string name, std::string fallback);
    // "DP_<rule>_" / "_DP_<rule>" for a metric caused by a dependent rule; "" without a rule.
    static std::string getDependentRulePrefix(const std::string& ruleName);
    static std::string getDependentRuleSuffix(const std::string& ruleName);

    // ---- report functions -----------------------------------------------------------------
    // Latencies of one request's legs in milliseconds; a negative value means the leg was
    // not measured (or measured inconsistently) and is left out of the metric.
    struct RequestLatencies {
        long clientToBrel = -1;
        long brelDispatchDelay = -1;
        long brelDispatchToResponse = -1;
        long brelResponseProcessing = -1;
    };

    // One metric: standard("Request"); strings "RequestNamespace", "RequestName",
    // "RequestIsSuccess", "RequestFailReason", "Protocol" (meta values, "Null" when
    // missing), "ManfName" = <manf>, "ModelName" = <model>; longs "ClientToBrelLatency",
    // "BrelDispatchDelayLatency", "BrelDispatchToResponseLatency",
    // "BrelResponseProcessingLatency", each only when measured; long
    // "AtLeastOneInvalidLatencyCount" = 1 when any leg was not measured, else 0.
    static void logVantorMetricOnRequest(const std::string& program, const std::string& source,
                                         const RequestLatencies& latencies, MetricMeta meta);
    // counters(getDependentRulePrefix(rule) + "MetricStateUpdate"), rule being the meta's
    // "RuleFriendlyName": DP_<rule>_MetricStateUpdate_<manf>... for a rule-driven update.
    static void logOnStateUpdate(const std::string& program, const std::string& source,
                                 MetricMeta meta);
    // One metric: standard("MetricStateUpdate" + getDependentRuleSuffix(rule)); strings
    // "ManfName" = <manf>, "ModelName" = <model>, "Protocol", "ReachabilityState" (meta
    // values, "Null" when missing); long "Counter" = 1.
    static void logVantorMetricOnStateUpdate(const std::string& program, const std::string& source,
                                             MetricMeta meta);
    // counters("Sensor_" + sensorType), sensorType corrected to "NoSensorType" when empty.
    static void logForSensors(const std::string& program, const std::string& source,
                              const std::string& sensorType, MetricMeta meta);
    // Two counters: "Feature_Poll_<status>_<manf>_<model>" and
    // "Feature_Battery_<status>_<manf>_<model>", status "Supported" or "Unsupported".
    static void logMetricsForFeatureSupport(const std::string& program, const std::string& source,
                                            bool pollSupported, bool batterySupported,
                                            MetricMeta meta);
    // One counter: "BatteryReportMethod_<method>_<manf>_<model>", method corrected to
    // "NoReportMethod" when empty.
    static void logMetricsForBatteryReportMethod(const std::string& program,
                                                 const std::string& source,
                                                 const std::string& reportMethod, MetricMeta meta);

    // Request tally of one device.
    class Device {
    public:
        Device(std::string manufacturerName, std::string modelName);
        // total + 1, then succeeded or failed + 1; logs the three counters.
        void recordRequest(bool success);
        // failed / total; not a number while total is 0.
        double getFailureRatio() const;
        int32_t getTotal() const { return total; }
        int32_t getNumFailed() const { return failed; }
        std::string getManufacturerName() const { return manufacturerName; }
        std::string getModelName() const { return modelName; }

    private:
        std::string manufacturerName;
        std::string modelName;
        int32_t total = 0;
        int32_t failed = 0;
        int32_t succeeded = 0;
    };

private:
    template <typename Integer>
    static constexpr long clampToLong(Integer value) {
        using Limits = std::numeric_limits<long>;
        if constexpr (std::is_signed_v<Integer>) {
            const auto wide = static_cast<long long>(value);
            return wide < Limits::min()   ? Limits::min()
                   : wide > Limits::max() ? Limits::max()
                                          : static_cast<long>(wide);
        } else {
            const auto wide = static_cast<unsigned long long>(value);
            return wide > static_cast<unsigned long>(Limits::max()) ? Limits::max()
                                                                    : static_cast<long>(wide);
        }
    }
    template <typename Floating>
    static constexpr double toDouble(Floating value) {
        using Limits = std::numeric_limits<double>;
        return value > Limits::max()    ? Limits::infinity()
               : value < -Limits::max() ? -Limits::infinity()
                                        : static_cast<double>(value);
    }

    std::unique_ptr<SHMetricImpl> impl;
};

}  // namespace smarthome
