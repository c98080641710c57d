#include "smarthome/DynamicCapabilityReportingMetricsHelper.h"

#include <vector>

#include "smarthome/SHMetric.h"

namespace smarthome {

void DynamicCapabilityReportingMetricsHelper::recordCounter(const std::string& name, long count) {
    recordCounter(name, count, {});
}

void DynamicCapabilityReportingMetricsHelper::recordCounter(
    const std::string& name, long count, const std::map<std::string, std::string>& dimensions) {
    std::vector<VantorDimension> list;
    list.reserve(dimensions.size() + 1);
    list.push_back(VantorDimension::createLong(name, count));
    for (const auto& entry : dimensions) {  // a std::map iterates in ascending key order
        list.push_back(VantorDimension::createString(entry.first, entry.second));
    }
    SHMetric metric("SmartHome", "DynamicCapabilityReporting", list);  // emitted on return
}

}  // namespace smarthome
