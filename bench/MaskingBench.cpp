// Masking cost of the hand-written recognisers against the same rules written with
// std::regex, on matching and non-matching inputs. Each library operation must be at
// least ten times faster than its regex counterpart.
#include <benchmark/benchmark.h>

#include <string>
#include <utility>
#include <vector>

#include "smarthome/SmartHomeLogger.h"
#include "testing/RatioReporter.h"
#include "testing/RegexMaskingReference.h"

namespace {

using smarthome::SmartHomeLogger;
namespace reference = smarthome::reference;

const SmartHomeLogger& logger() {
    static const SmartHomeLogger instance("Bench");
    return instance;
}

struct Case {
    const char* operation;
    const char* kind;
    std::string input;
    std::string (SmartHomeLogger::*ours)(const std::string&) const;
    std::string (*regex)(const std::string&);
};

const std::vector<Case>& cases() {
    static const std::vector<Case> all = {
        {"obfuscateUid", "mac", "AA:BB:CC:DD:EE:FF", &SmartHomeLogger::obfuscateUid,
         &reference::obfuscateUid},
        {"obfuscateUid", "uuid", "0123456789abcdef0123456789abcdef", &SmartHomeLogger::obfuscateUid,
         &reference::obfuscateUid},
        {"obfuscateUid", "endpointid", "1a2b_3c4d_ABC123", &SmartHomeLogger::obfuscateUid,
         &reference::obfuscateUid},
        {"obfuscateUid", "nomatch", "01234567-89ab-cdef-0123-456789abcdef",
         &SmartHomeLogger::obfuscateUid, &reference::obfuscateUid},
        {"compressAndObfuscateUid", "mac", "AA:BB:CC:DD:EE:FF",
         &SmartHomeLogger::compressAndObfuscateUid, &reference::compressAndObfuscateUid},
        {"compressAndObfuscateUid", "ip", "192.168.1.20", &SmartHomeLogger::compressAndObfuscateUid,
         &reference::compressAndObfuscateUid},
        {"compressAndObfuscateUid", "nomatch", "living room lamp",
         &SmartHomeLogger::compressAndObfuscateUid, &reference::compressAndObfuscateUid},
        {"obfuscateMac", "match", "00-11-22-33-44-55-66-77", &SmartHomeLogger::obfuscateMac,
         &reference::obfuscateMac},
        {"obfuscateMac", "nomatch", "AA:BB-CC:DD:EE:FF", &SmartHomeLogger::obfuscateMac,
         &reference::obfuscateMac},
        {"obfuscateIp", "match", " 10.0.0.1 ", &SmartHomeLogger::obfuscateIp,
         &reference::obfuscateIp},
        {"obfuscateIp", "nomatch", "256.1.1.1", &SmartHomeLogger::obfuscateIp,
         &reference::obfuscateIp},
        {"obfuscateUsbEpId", "match", "1a2b_3c4d_ABC123", &SmartHomeLogger::obfuscateUsbEpId,
         &reference::obfuscateUsbEpId},
        {"obfuscateUsbEpId", "shortid", "Hue12345", &SmartHomeLogger::obfuscateUsbEpId,
         &reference::obfuscateUsbEpId},
        {"obfuscateUsbEpId", "nomatch", "abcdefgh", &SmartHomeLogger::obfuscateUsbEpId,
         &reference::obfuscateUsbEpId},
    };
    return all;
}

std::string name(const char* side, const Case& c) {
    return std::string(side) + "/" + c.operation + "/" + c.kind;
}

void registerAll() {
    for (const Case& c : cases()) {
        benchmark::RegisterBenchmark(name("regex", c).c_str(), [&c](benchmark::State& state) {
            for (auto _ : state) {
                benchmark::DoNotOptimize(c.regex(c.input));
            }
        });
        benchmark::RegisterBenchmark(name("library", c).c_str(), [&c](benchmark::State& state) {
            for (auto _ : state) {
                benchmark::DoNotOptimize((logger().*c.ours)(c.input));
            }
        });
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    reference::patterns();  // compile the regexes before measuring
    registerAll();
    smarthome::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const Case& c : cases()) {
        pairs.emplace_back(name("regex", c), name("library", c));
    }
    bool ok = reporter.printRatios(pairs, 10.0, "Masking speed-up over std::regex");
    benchmark::Shutdown();
    return ok ? 0 : 1;
}
