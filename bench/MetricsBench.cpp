// Metrics: the record sanitiser against the per-call regular-expression replacement it
// stands for, and the cost of building and emitting a counter metric (nine data points)
// with the log and metrics sinks discarding their input, so that the library's own work is
// measured. Allocations per metric are reported for short and long names: they must not
// grow with the length of the text.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <regex>
#include <string>
#include <vector>

#include "smarthome-host/HostPort.h"
#include "smarthome/SHMetric.h"
#include "smarthome/SHMetricValidation.h"
#include "testing/RatioReporter.h"

namespace {

std::atomic<long> allocations{0};

}  // namespace

// The counting replacements below allocate with malloc and release with free; g++ cannot see
// that the pair matches once they are inlined into the standard containers.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

// Names and values as components write them: most without reserved characters, some with.
const std::vector<std::string>& texts() {
    static const std::vector<std::string> values = {"Program",
                                                    "HueBridgeRequest",
                                                    "MetricStateUpdate_Acme_Bulb",
                                                    "on:off",
                                                    "x(1)|y",
                                                    "Feature_Poll_Supported_Acme_Sensor1",
                                                    "a=b,c",
                                                    "ZIGBEE",
                                                    "00:17:88:01:02:03:04:05-0b",
                                                    "RequestFailReason"};
    return values;
}

void BM_Sanitize_RegexPerCall(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& text : texts()) {
            benchmark::DoNotOptimize(std::regex_replace(text, std::regex("[:|=|,|(|)]"), "-"));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(texts().size()));
}
BENCHMARK(BM_Sanitize_RegexPerCall);

void BM_Sanitize(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& text : texts()) {
            benchmark::DoNotOptimize(smarthome::SHMetricValidation::sanitize(text));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(texts().size()));
}
BENCHMARK(BM_Sanitize);

// One counter metric per iteration: SHMetric(program, source, name), emitted at the end of
// the statement. range(0) is the length of the metric name.
void BM_CounterMetric(benchmark::State& state) {
    const std::string name(static_cast<size_t>(state.range(0)), 'n');
    const long before = allocations.load();
    for (auto _ : state) {
        smarthome::SHMetric("SmartHome", "HueBridgeRequest", name);
    }
    state.counters["allocs/metric"] = benchmark::Counter(
        static_cast<double>(allocations.load() - before) / static_cast<double>(state.iterations()));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CounterMetric)->Arg(16)->Arg(400);

}  // namespace

int main(int argc, char** argv) {
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    smarthome::port::setMetricsSink(
        [](int, const std::string&, const std::string&, const std::string&, int,
           const std::string& record) { benchmark::DoNotOptimize(record.data()); });
    benchmark::Initialize(&argc, argv);
    smarthome::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const bool ok = reporter.printRatios({{"BM_Sanitize_RegexPerCall", "BM_Sanitize"}}, 100.0,
                                         "Sanitiser speed-up over the per-call regex");
    benchmark::Shutdown();
    smarthome::port::setLogSink({});
    smarthome::port::setMetricsSink({});
    return ok ? 0 : 1;
}
