// Mesh payload simplification on the largest real export (a mesh configuration database
// wrapped as {"networkInfo": ...}) against a plain RapidJSON parse plus compact write of the
// same text in the same run; the simplification must stay within 1.5 times of it. Warm: one
// text again and again. Cold: 256 distinct copies (several MB) in turn.
#include <benchmark/benchmark.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "smarthome/BLEMeshNetworkSyncPayloadParser.h"
#include "smarthome/JSONUtil.h"
#include "testing/RatioReporter.h"

namespace {

constexpr int kColdCopies = 256;

std::string exportText() {
    std::ifstream file(std::string(SMARTHOME_SOURCE_DIR) +
                           "/tests/data/mesh-cdb/sig_cdb_example_brian_and_mary.json",
                       std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

const std::vector<std::string>& payloads() {
    static const std::vector<std::string> texts = [] {
        const std::string network = exportText();
        std::vector<std::string> all;
        for (int copy = 0; copy < kColdCopies; ++copy) {
            all.push_back(R"({"copy":)" + std::to_string(copy) + R"(,"networkInfo":)" + network +
                          "}");
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

std::string simplify(const std::string& text) {
    return smarthome::BLEMeshNetworkSyncPayloadParser::simplifyPayload(text);
}

template <std::string (*work)(const std::string&)>
void run(benchmark::State& state, int copies) {
    const auto& texts = payloads();
    std::size_t bytes = 0;
    int next = 0;
    for (auto _ : state) {
        const std::string& text = texts[static_cast<std::size_t>(next)];
        next = (next + 1) % copies;
        std::string written = work(text);
        benchmark::DoNotOptimize(written.data());
        bytes += text.size();
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void BM_Warm_PlainParseAndWrite(benchmark::State& state) {
    run<plainRoundTrip>(state, 1);
}
void BM_Warm_SimplifyPayload(benchmark::State& state) {
    run<simplify>(state, 1);
}
void BM_Cold_PlainParseAndWrite(benchmark::State& state) {
    run<plainRoundTrip>(state, kColdCopies);
}
void BM_Cold_SimplifyPayload(benchmark::State& state) {
    run<simplify>(state, kColdCopies);
}

BENCHMARK(BM_Warm_PlainParseAndWrite)->Repetitions(5);
BENCHMARK(BM_Warm_SimplifyPayload)->Repetitions(5);
BENCHMARK(BM_Cold_PlainParseAndWrite)->Repetitions(5);
BENCHMARK(BM_Cold_SimplifyPayload)->Repetitions(5);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (exportText().empty() || simplify(payloads().front()) == payloads().front()) {
        std::fprintf(stderr, "the mesh export is missing or was not simplified\n");
        return 1;
    }
    smarthome::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    // Required: the simplification's time at most 1.5 x the plain round trip's.
    const bool ok = reporter.printRatios(
        {{"BM_Warm_PlainParseAndWrite/repeats:5", "BM_Warm_SimplifyPayload/repeats:5"},
         {"BM_Cold_PlainParseAndWrite/repeats:5", "BM_Cold_SimplifyPayload/repeats:5"}},
        1.0 / 1.5, "mesh export: plain RapidJSON parse and write relative to simplifyPayload");
    benchmark::Shutdown();
    return ok ? 0 : 1;
}
