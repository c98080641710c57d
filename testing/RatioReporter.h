// Console reporter that also remembers each benchmark's time per iteration, so that a
// benchmark program can print ratios between a baseline and the library's code measured
// in the same run. With repetitions, the median repetition counts: neither the luckiest nor
// the most disturbed run decides.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
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
                samples_[run.run_name.str()].push_back(ns);
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
            const double baseline = median(pair.first);
            const double measured = median(pair.second);
            if (baseline <= 0 || measured <= 0) {
                std::printf("  %-60s missing\n", pair.second.c_str());
                ok = false;
                continue;
            }
            double ratio = baseline / measured;
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

    // Median time per iteration of a benchmark's repetitions; 0 when it did not run.
    double median(const std::string& name) const {
        auto found = samples_.find(name);
        if (found == samples_.end() || found->second.empty()) {
            return 0;
        }
        std::vector<double> sorted = found->second;
        std::sort(sorted.begin(), sorted.end());
        const size_t middle = sorted.size() / 2;
        return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
    }

    std::map<std::string, std::vector<double>> samples_;
};

}  // namespace bench
}  // namespace smarthome
