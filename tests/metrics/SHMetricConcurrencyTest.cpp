#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "smarthome/SHMetric.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

// Metrics are built on many threads at once, each object on one thread: the id tables are
// built on first use by whichever thread gets there, and every record arrives whole.
TEST(SHMetricConcurrency, MetricsFromManyThreadsArriveWhole) {
    test::MetricsCapture metrics;
    constexpr int kThreads = 4;
    constexpr int kPerThread = 250;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kPerThread; ++i) {
                SHMetric metric("SmartHome", i % 2 == 0 ? "HueBridgeRequest" : "Unlisted",
                                t * kPerThread + i, "Load");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    auto records = metrics.records();
    ASSERT_EQ(records.size(), static_cast<size_t>(kThreads * kPerThread));
    std::vector<bool> seen(kThreads * kPerThread, false);
    const std::string prefix = "Program=SmartHome;SY,Source=";
    for (const auto& record : records) {
        ASSERT_EQ(record.record.compare(0, prefix.size(), prefix), 0) << record.record;
        auto counter = record.record.rfind(",Counter=");
        ASSERT_NE(counter, std::string::npos);
        const int value = std::stoi(record.record.substr(counter + 9));
        ASSERT_GE(value, 0);
        ASSERT_LT(value, kThreads * kPerThread);
        EXPECT_FALSE(seen[static_cast<size_t>(value)]);
        seen[static_cast<size_t>(value)] = true;
        EXPECT_EQ(record.schemaId, value % 2 == 0 ? "mu4p/2/01180460" : "tbwx/2/01180300");
    }
}

}  // namespace
}  // namespace smarthome
