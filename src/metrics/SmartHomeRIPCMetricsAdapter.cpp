#include "smarthome/SmartHomeRIPCMetricsAdapter.h"

#include "smarthome/SHMetric.h"

namespace smarthome {

void SmartHomeRIPCMetricsAdapter::recordMetric(const std::string& metricName,
                                               const std::vector<VantorDimension>& dimensions) {
    // Each metric is emitted when it goes out of scope, at the end of its block.
    if (dimensions.empty()) {
        SHMetric metric("SmartHome", "RIPCConnector", metricName);
    } else {
        SHMetric metric("SmartHome", "RIPCConnector", dimensions);
    }
}

}  // namespace smarthome
