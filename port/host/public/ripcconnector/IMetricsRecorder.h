// Metrics interface of the in-house IPC connector library, declared here for builds where
// that library is absent. The connector reports a metric by name, optionally with
// dimensions; the embedding process decides where it goes.
#pragma once

#include <string>
#include <vector>

namespace smarthome {
struct VantorDimension;  // the smart-home library's metric dimension
}  // namespace smarthome

namespace ripcconnector {

class IMetricsRecorder {
public:
    virtual ~IMetricsRecorder() = default;
    virtual void recordMetric(const std::string& metricName,
                              const std::vector<smarthome::VantorDimension>& dimensions) = 0;
};

}  // namespace ripcconnector
