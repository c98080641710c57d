#include <android/log.h>
#include <cutils/properties.h>
#include <gtest/gtest.h>
#include <ostrellog/metrics_log.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "smarthome-host/HostPort.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {
namespace {

// Loggers, metric emitters and property users on several threads while the sinks are
// swapped and the store is cleared: every message reaches exactly one sink, sink calls
// never overlap, and properties read back whole values.
TEST(HostPortConcurrency, SinksAndPropertiesStayConsistentUnderLoad) {
    constexpr int kThreads = 4;
    constexpr int kIterations = 2000;
    std::atomic<int> inSink{0};
    std::atomic<bool> overlapped{false};
    std::atomic<long> delivered{0};
    auto countingSink = [&](int, const std::string&, const std::string&) {
        if (inSink.fetch_add(1) != 0) {
            overlapped = true;
        }
        ++delivered;
        inSink.fetch_sub(1);
    };
    port::setLogSink(countingSink);
    port::setMetricsSink([&](int, const std::string&, const std::string&, const std::string&, int,
                             const std::string&) { ++delivered; });
    port::clearSystemProperties();

    std::atomic<bool> torn{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            SmartHomeLogger logger("Stress");
            std::string key = "persist.stress." + std::to_string(t);
            for (int n = 0; n < kIterations; ++n) {
                logger.i("%s:n=%d", "run", n);
                __metrics_log_print_v2(4, "p", "g", "s", 100, "%d", n);
                std::string value = std::to_string(n) + "-" + std::to_string(n);
                property_set(key.c_str(), value.c_str());
                char read[PROP_VALUE_MAX];
                int length = property_get("persist.stress.0", read, "");
                std::string seen(read, static_cast<size_t>(length));
                size_t dash = seen.find('-');
                if (!seen.empty() &&
                    (dash == std::string::npos || seen.substr(0, dash) != seen.substr(dash + 1))) {
                    torn = true;
                }
            }
        });
    }
    std::thread swapper([&] {
        for (int n = 0; n < 200; ++n) {
            port::setLogSink(countingSink);
            port::clearSystemProperties();
            std::this_thread::yield();
        }
    });
    for (auto& thread : threads) {
        thread.join();
    }
    swapper.join();
    port::setLogSink(nullptr);
    port::setMetricsSink(nullptr);
    port::clearSystemProperties();

    EXPECT_FALSE(overlapped);
    EXPECT_FALSE(torn);
    EXPECT_EQ(delivered.load(), 2L * kThreads * kIterations);
}

}  // namespace
}  // namespace smarthome
