// Counters of dynamic capability reporting, emitted at once with program "SmartHome" and
// source "DynamicCapabilityReporting": the long data point <name>=<count>, then one string
// data point per extra dimension in ascending key order.
// Stateless; any thread may record.
#pragma once

#include <map>
#include <string>

namespace smarthome {

class DynamicCapabilityReportingMetricsHelper {
public:
    static void recordCounter(const std::string& name, long count);
    static void recordCounter(const std::string& name, long count,
                              const std::map<std::string, std::string>& dimensions);
};

}  // namespace smarthome
