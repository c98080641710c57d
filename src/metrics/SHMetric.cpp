#include "smarthome/SHMetric.h"

#include <cstdint>
#include <limits>
#include <utility>

#include "smarthome/SmartHomeLogger.h"
#include "smarthome/StringUtils.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("SHMetric");

constexpr const char* kStateUpdate = "MetricStateUpdate";

// Builds one metric and ends it at once, which emits it.
template <typename... Args>
void emit(const Args&... args) {
    SHMetric metric(args...);
}

std::vector<VantorDimension> standardDimensions(const std::string& program,
                                                const std::string& source,
                                                const std::string& metricName) {
    std::vector<VantorDimension> dimensions;
    dimensions.reserve(9);
    SHMetric::addDefaultDimensionsForSimpleMetric(program, source, metricName, dimensions);
    return dimensions;
}

// The standard dimensions, then the metric's one value.
std::vector<VantorDimension> simpleMetric(const std::string& program, const std::string& source,
                                          const std::string& metricName, VantorDimension value) {
    auto dimensions = standardDimensions(program, source, metricName);
    dimensions.push_back(std::move(value));
    return dimensions;
}

VantorDimension predefined(VantorPredefinedKey key) {
    VantorDimension dimension;
    dimension.type = VantorDimensionType::PREDEFINED;
    dimension.predefinedKey = key;
    return dimension;
}

// The value stored under key, "" when there is none (unlike getValue, which says "Null").
std::string rawValue(const std::unordered_map<std::string, std::string>& meta,
                     MetricMeta::Keys::KeyValues key) {
    auto found = meta.find(MetricMeta::toString(key));
    return found != meta.end() ? found->second : std::string();
}

// The device a report is about: manufacturer and model from the request metadata, corrected
// so that a metric name built from them is always well formed.
struct DeviceNames {
    std::string manufacturer;
    std::string model;
    std::string rule;  // friendly name of the rule that caused the event; "" for none
};

DeviceNames deviceNames(const MetricMeta& meta) {
    const auto entries = meta.getMeta();
    return {SHMetric::correctName(rawValue(entries, MetricMeta::Keys::ManfName), "NoManufacturer"),
            SHMetric::correctName(rawValue(entries, MetricMeta::Keys::ModelName), "NoModel"),
            rawValue(entries, MetricMeta::Keys::RuleFriendlyName)};
}

// Counters named prefix, prefix_<manufacturer> and prefix_<manufacturer>_<model>, so that
// an event can be followed overall, per manufacturer and per model.
void emitCounters(const std::string& program, const std::string& source, const std::string& prefix,
                  const DeviceNames& device) {
    emit(program, source, prefix);
    emit(program, source, SHMetric::getMetricNameFromManf(device.manufacturer, prefix));
    emit(program, source,
         SHMetric::getMetricNameFromModel(device.manufacturer, device.model, prefix));
}

void addMetaString(std::vector<VantorDimension>& dimensions, MetricMeta& meta,
                   MetricMeta::Keys::KeyValues key) {
    dimensions.push_back(
        VantorDimension::createString(MetricMeta::toString(key), meta.getValue(key)));
}

}  // namespace

SHMetric::SHMetric(const std::string& program, const std::string& source,
                   const std::string& metricName)
    : SHMetric(program, source, 1, metricName) {}

SHMetric::SHMetric(const std::string& program, const std::string& source, int count,
                   const std::string& metricName)
    : SHMetric(program, source,
               simpleMetric(program, source, metricName,
                            VantorDimension::createLong("Counter", count))) {}

SHMetric::SHMetric(const std::string& program, const std::string& source,
                   const std::string& metricName, double ratio)
    : SHMetric(program, source,
               simpleMetric(program, source, metricName,
                            VantorDimension::createDouble("Ratio", ratio))) {}

SHMetric::SHMetric(const std::string& program, const std::string& source,
                   const std::string& metricName, long timeValue)
    : SHMetric(program, source,
               simpleMetric(program, source, metricName,
                            VantorDimension::createLong("Timer", timeValue))) {}

SHMetric::SHMetric(const std::string& program, const std::string& source,
                   const std::vector<VantorDimension>& dimensions)
    : impl(std::make_unique<SHMetricImpl>(program, source)) {
    addDimensions(dimensions);
}

SHMetric::SHMetric(const std::string& program, const std::string& source,
                   std::initializer_list<VantorDimension> dimensions)
    : SHMetric(program, source, std::vector<VantorDimension>(dimensions)) {}

SHMetric::~SHMetric() = default;

bool SHMetric::isInitialized() const {
    return impl != nullptr;
}

bool SHMetric::addDimensions(const std::vector<VantorDimension>& dimensions) {
    if (!impl) {
        return false;
    }
    for (const VantorDimension& dimension : dimensions) {
        switch (dimension.type) {
            case VantorDimensionType::PREDEFINED:
                impl->addPredefinedKey(dimension.predefinedKey);
                break;
            case VantorDimensionType::STRING:
                impl->addStringDataPoint(dimension.name, dimension.stringValue);
                break;
            case VantorDimensionType::BOOLEAN:
                impl->addBoolDataPoint(dimension.name, dimension.boolValue);
                break;
            case VantorDimensionType::LONG:
                impl->addLongDataPoint(dimension.name, dimension.longValue);
                break;
            case VantorDimensionType::DOUBLE:
                impl->addDoubleDataPoint(dimension.name, dimension.doubleValue);
                break;
            default:
                break;
        }
    }
    logger.d("%s:dimensions=%s", "addDimensions", StringUtils::toString(dimensions).c_str());
    return false;
}

void SHMetric::addDefaultDimensionsForSimpleMetric(const std::string& program,
                                                   const std::string& source,
                                                   const std::string& metricName,
                                                   std::vector<VantorDimension>& dimensions) {
    dimensions.push_back(VantorDimension::createString("Program", program));
    dimensions.push_back(VantorDimension::createString("Source", source));
    dimensions.push_back(VantorDimension::createString("MetricName", metricName));
    for (VantorPredefinedKey key :
         {VantorPredefinedKey::PLATFORM, VantorPredefinedKey::SOFTWARE_VERSION,
          VantorPredefinedKey::OTA_GROUP_NAME, VantorPredefinedKey::BUILD_TYPE,
          VantorPredefinedKey::DEVICE_ID}) {
        dimensions.push_back(predefined(key));
    }
}

// ---- naming --------------------------------------------------------------------------------

std::string SHMetric::getManufacturerNamePrefix(std::string manufacturer) {
    return manufacturer + "Manufacturer";
}

std::string SHMetric::getModelNamePrefix(std::string model) {
    return model + "Model";
}

bool SHMetric::isNameValid(std::string name) {
    return !name.empty();
}

std::string SHMetric::getMetricNameFromManf(std::string manufacturer, std::string prefix) {
    return prefix + "_" + manufacturer;
}

std::string SHMetric::getMetricNameFromModel(std::string manufacturer, std::string model,
                                             std::string prefix) {
    return prefix + "_" + manufacturer + "_" + model;
}

std::string SHMetric::correctName(std::string name, std::string fallback) {
    if (isNameValid(name)) {
        return name;
    }
    logger.d("%s:correctNameNeeded: name= %s, correctedName= %s", "correctName", name.c_str(),
             fallback.c_str());
    return fallback;
}

std::string SHMetric::getDependentRulePrefix(const std::string& ruleName) {
    return ruleName.empty() ? std::string() : "DP_" + ruleName + "_";
}

std::string SHMetric::getDependentRuleSuffix(const std::string& ruleName) {
    return ruleName.empty() ? std::string() : "_DP_" + ruleName;
}

// ---- report functions ----------------------------------------------------------------------

void SHMetric::logVantorMetricOnRequest(const std::string& program, const std::string& source,
                                        const RequestLatencies& latencies, MetricMeta meta) {
    const DeviceNames device = deviceNames(meta);
    auto dimensions = standardDimensions(program, source, "Request");
    for (auto key : {MetricMeta::Keys::RequestNamespace, MetricMeta::Keys::RequestName,
                     MetricMeta::Keys::RequestIsSuccess, MetricMeta::Keys::RequestFailReason,
                     MetricMeta::Keys::Protocol}) {
        addMetaString(dimensions, meta, key);
    }
    dimensions.push_back(VantorDimension::createString("ManfName", device.manufacturer));
    dimensions.push_back(VantorDimension::createString("ModelName", device.model));
    const std::pair<const char*, long> legs[] = {
        {"ClientToBrelLatency", latencies.clientToBrel},
        {"BrelDispatchDelayLatency", latencies.brelDispatchDelay},
        {"BrelDispatchToResponseLatency", latencies.brelDispatchToResponse},
        {"BrelResponseProcessingLatency", latencies.brelResponseProcessing}};
    bool anyInvalid = false;
    for (const auto& leg : legs) {
        if (leg.second < 0) {
            anyInvalid = true;
            continue;
        }
        dimensions.push_back(VantorDimension::createLong(leg.first, leg.second));
    }
    dimensions.push_back(
        VantorDimension::createLong("AtLeastOneInvalidLatencyCount", anyInvalid ? 1 : 0));
    emit(program, source, dimensions);
}

void SHMetric::logOnStateUpdate(const std::string& program, const std::string& source,
                                MetricMeta meta) {
    const DeviceNames device = deviceNames(meta);
    emitCounters(program, source, getDependentRulePrefix(device.rule) + kStateUpdate, device);
}

void SHMetric::logVantorMetricOnStateUpdate(const std::string& program, const std::string& source,
                                            MetricMeta meta) {
    const DeviceNames device = deviceNames(meta);
    auto dimensions =
        standardDimensions(program, source, kStateUpdate + getDependentRuleSuffix(device.rule));
    dimensions.push_back(VantorDimension::createString("ManfName", device.manufacturer));
    dimensions.push_back(VantorDimension::createString("ModelName", device.model));
    addMetaString(dimensions, meta, MetricMeta::Keys::Protocol);
    addMetaString(dimensions, meta, MetricMeta::Keys::ReachabilityState);
    dimensions.push_back(VantorDimension::createLong("Counter", 1));
    emit(program, source, dimensions);
}

void SHMetric::logForSensors(const std::string& program, const std::string& source,
                             const std::string& sensorType, MetricMeta meta) {
    emitCounters(program, source, "Sensor_" + correctName(sensorType, "NoSensorType"),
                 deviceNames(meta));
}

void SHMetric::logMetricsForFeatureSupport(const std::string& program, const std::string& source,
                                           bool pollSupported, bool batterySupported,
                                           MetricMeta meta) {
    const DeviceNames device = deviceNames(meta);
    const std::pair<const char*, bool> features[] = {{"Feature_Poll", pollSupported},
                                                     {"Feature_Battery", batterySupported}};
    for (const auto& feature : features) {
        const std::string prefix =
            std::string(feature.first) + "_" + (feature.second ? "Supported" : "Unsupported");
        emit(program, source, getMetricNameFromModel(device.manufacturer, device.model, prefix));
    }
}

void SHMetric::logMetricsForBatteryReportMethod(const std::string& program,
                                                const std::string& source,
                                                const std::string& reportMethod, MetricMeta meta) {
    const DeviceNames device = deviceNames(meta);
    const std::string prefix = "BatteryReportMethod_" + correctName(reportMethod, "NoReportMethod");
    emit(program, source, getMetricNameFromModel(device.manufacturer, device.model, prefix));
}

// ---- Device --------------------------------------------------------------------------------

namespace {

// The tally saturates instead of overflowing in a daemon that runs for years.
void increment(int32_t& counter) {
    if (counter < std::numeric_limits<int32_t>::max()) {
        ++counter;
    }
}

}  // namespace

SHMetric::Device::Device(std::string manufacturerName, std::string modelName)
    : manufacturerName(std::move(manufacturerName)), modelName(std::move(modelName)) {}

void SHMetric::Device::recordRequest(bool success) {
    increment(total);
    increment(success ? succeeded : failed);
    logger.d("%s:total= %d, success= %d, failed= %d", "recordRequest", total, succeeded, failed);
}

double SHMetric::Device::getFailureRatio() const {
    return static_cast<double>(failed) / static_cast<double>(total);
}

}  // namespace smarthome
