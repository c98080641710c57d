// Console reporter that also remembers each benchmark's time per iteration, so that a
// benchmark program can print ratios between a baseline and the library's code measured
// in the same run. With repetitions, the fastest repetition counts (the least disturbed by
// the rest of the machine).
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace smarthome {
namespace bench {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
                const double ns =
                    run.GetAdjustedRealTime() * multiplierToNanoseconds(run.time_unit);
                auto known = nanoseconds_.find(run.run_name.str());
                if (known == nanoseconds_.end() || ns < known->second) {
                    nanoseconds_[run.run_name.str()] = ns;
                }
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // Prints baseline time / measured time for each pair; returns false when a ratio is
    // below minimum (or a pair is missing).
    bool printRatios(const std::vector<std::pair<std::string, std::string>>& pairs, double minimum,
                     const char* title) const {
        bool ok = true;
        std::printf("\n%s (baseline / library; required >= %.2f)\n", title, minimum);
        for (const auto& pair : pairs) {
            auto baseline = nanoseconds_.find(pair.first);
            auto measured = nanoseconds_.find(pair.second);
            if (baseline == nanoseconds_.end() || measured == nanoseconds_.end() ||
                measured->second <= 0) {
                std::printf("  %-60s missing\n", pair.second.c_str());
                ok = false;
                continue;
            }
            double ratio = baseline->second / measured->second;
            std::printf("  %-60s %8.2f  %s\n", pair.second.c_str(), ratio,
                        ratio >= minimum ? "ok" : "BELOW TARGET");
            ok = ok && ratio >= minimum;
        }
        return ok;
    }

private:
    static double multiplierToNanoseconds(benchmark::TimeUnit unit) {
        switch (unit) {
            case benchmark::kSecond:
                return 1e9;
            case benchmark::kMillisecond:
                return 1e6;
            case benchmark::kMicrosecond:
                return 1e3;
            default:
                return 1.0;
        }
    }

    std::map<std::string, double> nanoseconds_;
};

}  // namespace bench
}  // namespace smarthome
