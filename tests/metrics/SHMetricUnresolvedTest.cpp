// A deployment whose tables resolve nothing: this program's own definition of the resolver
// replaces the library's, so that the unresolved path of SHMetricImpl can be observed.
#include <android/log.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "smarthome/SHMetric.h"
#include "smarthome/VantorMetricsHelper.h"
#include "testing/TestSupport.h"

namespace smarthome {

std::pair<std::string, std::string> VantorMetricsHelper::getGroupAndSchemaId(const std::string&,
                                                                             const std::string&) {
    return {};
}

namespace {

TEST(SHMetricUnresolved, AcceptsDataPointsButEmitsNothing) {
    test::MetricsCapture metrics;
    test::LogCapture log;
    {
        SHMetricImpl impl("SmartHome", "Unregistered");
        EXPECT_FALSE(impl.isInitialized());
        EXPECT_TRUE(impl.addLongDataPoint("n", 1));
        SHMetric metric("SmartHome", "Unregistered", "Counter");
        EXPECT_TRUE(metric.isInitialized());  // the facade only says that it has an impl
    }
    EXPECT_TRUE(metrics.records().empty());
    EXPECT_EQ(log.texts(ANDROID_LOG_WARN, "SmartHome:SHMetricImpl"),
              (std::vector<std::string>{
                  "SHMetricImpl:programAndSourceNotValidForVantorMetric=SmartHome::Unregistered",
                  "SHMetricImpl:programAndSourceNotValidForVantorMetric=SmartHome::Unregistered"}));
    EXPECT_TRUE(log.texts(ANDROID_LOG_INFO, "SmartHome:SHMetricImpl").empty());
    EXPECT_TRUE(log.texts(ANDROID_LOG_DEBUG, "SmartHome:SHMetricImpl").empty());
}

}  // namespace
}  // namespace smarthome
