// The IPC connector library's metrics sink: every metric it reports is emitted at once
// with program "SmartHome" and source "RIPCConnector". Without dimensions the metric is a
// counter named by the connector; with dimensions it carries exactly those (the name is
// then not used).
// Ownership: stateless. Thread-safety: any number of threads may record at once.
#pragma once

#include <ripcconnector/IMetricsRecorder.h>

#include <string>
#include <vector>

#include "smarthome/VantorDimension.h"

namespace smarthome {

class SmartHomeRIPCMetricsAdapter : public ripcconnector::IMetricsRecorder {
public:
    void recordMetric(const std::string& metricName,
                      const std::vector<VantorDimension>& dimensions) override;
};

}  // namespace smarthome
