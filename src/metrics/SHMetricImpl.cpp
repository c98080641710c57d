#include "smarthome/SHMetricImpl.h"

#include <ostrellog/metrics_log.h>

#include "smarthome/SmartHomeLogger.h"
#include "smarthome/VantorMetricsHelper.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("SHMetricImpl");

constexpr int kMetricPriority = 4;
constexpr int kRecordVersion = 100;

}  // namespace

SHMetricImpl::SHMetricImpl(const std::string& program, const std::string& source)
    : program(program), source(source), metricName(program + "::" + source) {
    auto ids = VantorMetricsHelper::getGroupAndSchemaId(program, source);
    if (ids.first.empty() || ids.second.empty()) {
        logger.w("%s:programAndSourceNotValidForVantorMetric=%s", "SHMetricImpl",
                 metricName.c_str());
        return;
    }
    logger.i("%s:loggingMetricToVantor=%s", "SHMetricImpl", metricName.c_str());
    loggingToVantor = true;
    groupId = std::move(ids.first);
    schemaId = std::move(ids.second);
    logger.d("%s:metricInitialized=%s", "SHMetricImpl", metricName.c_str());
    initialized = true;
}

SHMetricImpl::~SHMetricImpl() {
    if (!initialized) {
        return;
    }
    // Written before every emission, including those that succeed.
    logger.d("%s:metricNotLogged=%s", "~SHMetricImpl", metricName.c_str());
    if (loggingToVantor) {
        const std::string text = record.getVantorBuffer();
        __metrics_log_print_v2(kMetricPriority, program.c_str(), groupId.c_str(), schemaId.c_str(),
                               kRecordVersion, "%s", text.c_str());
    }
    logger.d("%s:metricLogged=%s", "~SHMetricImpl", metricName.c_str());
}

bool SHMetricImpl::addLongDataPoint(const std::string& name, long value) {
    return record.addLongDataPoint(name, value);
}

bool SHMetricImpl::addBoolDataPoint(const std::string& name, bool value) {
    return record.addBoolDataPoint(name, value);
}

bool SHMetricImpl::addDoubleDataPoint(const std::string& name, double value) {
    return record.addDoubleDataPoint(name, value);
}

bool SHMetricImpl::addStringDataPoint(const std::string& name, const std::string& value) {
    return record.addStringDataPoint(name, value);
}

bool SHMetricImpl::addStringDataPoints(const std::unordered_map<std::string, std::string>& points) {
    bool allAdded = true;
    for (const auto& point : points) {
        allAdded = addStringDataPoint(point.first, point.second) && allAdded;
    }
    return allAdded;
}

bool SHMetricImpl::addPredefinedKey(VantorPredefinedKey key) {
    return record.addPredefinedKey(key);
}

bool SHMetricImpl::isInitialized() const {
    return initialized;
}

}  // namespace smarthome
