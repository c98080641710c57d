// Cloud message model costs: a discovery report of 200 endpoints read into the model and
// written back to text, against a plain RapidJSON parse plus compact write of the same text
// in the same run (the model must stay within 3 times of it). Warm: one text read again and
// again. Cold: 64 distinct copies (a few MB, beyond the caches) read in turn.
#include <benchmark/benchmark.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/ReportEndpointsPayload.h"
#include "testing/RatioReporter.h"

namespace {

constexpr int kEndpoints = 200;
constexpr int kColdCopies = 64;

// A report like a provisioner's: Zigbee and BLE endpoints with credentials and identifiers,
// every fourth a Matter endpoint. copy makes the texts distinct.
std::string discoveryReport(int copy) {
    std::string text = R"({"endpoints":[)";
    for (int i = 0; i < kEndpoints; ++i) {
        const std::string n = std::to_string(copy * kEndpoints + i);
        text += i == 0 ? "" : ",";
        text += R"({"connections":[{"type":"ZIGBEE","id":"zb-)" + n +
                R"(","version":"1.2.0","macAddress":"00:17:88:01:02:)" + n + R"("})";
        if (i % 4 == 0) {
            text += R"(,{"type":"MATTER","id":"mt-)" + n +
                    R"(","version":"1","protocolData":{"manualPairingCode":"34970112332",)"
                    R"("commissioningWindowExpirationTimestamp":"2026-11-24T10:15:00"}})";
        }
        text += R"(],"credentials":{"discoveryKey":"dk-)" + n + R"(","controlKey":"ck-)" + n +
                R"("},"identifiers":{"customIdentifier":"ci-)" + n + R"(","serialNumber":"SN)" + n +
                R"(","macAddress":"00:17:88:01:02:)" + n + R"("}})";
    }
    return text + "]}";
}

const std::vector<std::string>& reports() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> all;
        for (int copy = 0; copy < kColdCopies; ++copy) {
            all.push_back(discoveryReport(copy));
        }
        return all;
    }();
    return texts;
}

std::string plainRoundTrip(const std::string& text) {
    smarthome::JSONDocument document;
    if (smarthome::JSONUtil::parse(document, text).IsError()) {
        return {};
    }
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize());
}

std::string modelRoundTrip(const std::string& text) {
    smarthome::JSONDocument document;
    if (smarthome::JSONUtil::parse(document, text).IsError()) {
        return {};
    }
    return smarthome::V3API::ReportEndpointsPayload::create(document)->toJsonString();
}

template <std::string (*roundTrip)(const std::string&)>
void run(benchmark::State& state, int copies) {
    const auto& texts = reports();
    std::size_t bytes = 0;
    int next = 0;
    for (auto _ : state) {
        const std::string& text = texts[static_cast<std::size_t>(next)];
        next = (next + 1) % copies;
        std::string written = roundTrip(text);
        benchmark::DoNotOptimize(written.data());
        bytes += text.size();
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void BM_Warm_PlainParseAndWrite(benchmark::State& state) {
    run<plainRoundTrip>(state, 1);
}
void BM_Warm_ReportEndpointsPayload(benchmark::State& state) {
    run<modelRoundTrip>(state, 1);
}
void BM_Cold_PlainParseAndWrite(benchmark::State& state) {
    run<plainRoundTrip>(state, kColdCopies);
}
void BM_Cold_ReportEndpointsPayload(benchmark::State& state) {
    run<modelRoundTrip>(state, kColdCopies);
}

BENCHMARK(BM_Warm_PlainParseAndWrite)->Repetitions(5);
BENCHMARK(BM_Warm_ReportEndpointsPayload)->Repetitions(5);
BENCHMARK(BM_Cold_PlainParseAndWrite)->Repetitions(5);
BENCHMARK(BM_Cold_ReportEndpointsPayload)->Repetitions(5);

}  // namespace

int main(int argc, char** argv) {
    // A daemon logs warnings and errors; the reader's info line per Matter connection is
    // filtered as it would be there (the caller's own setting wins).
    setenv("SMARTHOME_LOG_LEVEL", "w", 0);
    benchmark::Initialize(&argc, argv);
    // The model's round trip must be right before it is timed.
    const std::string& sample = reports().front();
    smarthome::JSONDocument original;
    smarthome::JSONDocument written;
    if (smarthome::JSONUtil::parse(original, sample).IsError() ||
        smarthome::JSONUtil::parse(written, modelRoundTrip(sample)).IsError() ||
        !(original == written)) {
        std::fprintf(stderr, "the model does not write back the report it read\n");
        return 1;
    }
    smarthome::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    // Required: the model's time at most 3 x the plain round trip's.
    const bool ok = reporter.printRatios(
        {{"BM_Warm_PlainParseAndWrite/repeats:5", "BM_Warm_ReportEndpointsPayload/repeats:5"},
         {"BM_Cold_PlainParseAndWrite/repeats:5", "BM_Cold_ReportEndpointsPayload/repeats:5"}},
        1.0 / 3.0,
        "200-endpoint discovery report read and written: plain RapidJSON relative to the model");
    benchmark::Shutdown();
    return ok ? 0 : 1;
}
