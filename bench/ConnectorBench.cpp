// Publish cost of the in-process connector for 1, 10 and 100 subscribers against calling
// the same std::functions directly. Reported, not bounded: the connector adds a lookup, a
// snapshot of the subscribers and a debug-level log call per delivery.
#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

#include "smarthome/InProcessConnector.h"

namespace {

std::vector<std::function<void(const char*, unsigned)>> callbacks(int count, long* sink) {
    std::vector<std::function<void(const char*, unsigned)>> result;
    for (int i = 0; i < count; ++i) {
        result.emplace_back([sink](const char*, unsigned size) { *sink += size; });
    }
    return result;
}

void BM_Publish_DirectCalls(benchmark::State& state) {
    long total = 0;
    auto functions = callbacks(static_cast<int>(state.range(0)), &total);
    const std::string payload = "{\"state\":\"ON\"}";
    for (auto _ : state) {
        for (auto& function : functions) {
            function(payload.data(), static_cast<unsigned>(payload.size()));
        }
        benchmark::DoNotOptimize(total);
    }
}

void BM_Publish_InProcessConnector(benchmark::State& state) {
    long total = 0;
    smarthome::InProcessConnector connector("bench");
    auto functions = callbacks(static_cast<int>(state.range(0)), &total);
    for (size_t i = 0; i < functions.size(); ++i) {
        connector.subscribeForEvent("publisher" + std::to_string(i), "StateChanged", functions[i]);
    }
    const std::string payload = "{\"state\":\"ON\"}";
    for (auto _ : state) {
        connector.publishEvent("StateChanged", payload);
        benchmark::DoNotOptimize(total);
    }
}

BENCHMARK(BM_Publish_DirectCalls)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(BM_Publish_InProcessConnector)->Arg(1)->Arg(10)->Arg(100);

}  // namespace

BENCHMARK_MAIN();
