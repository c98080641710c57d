// Loads shared by the message-loop benchmarks: bursts of closures from one producer,
// post-to-run latency, and a fixed placement of producer and consumer on two CPUs.
#pragma once

#include <benchmark/benchmark.h>
#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace smarthome {
namespace bench {

constexpr int kBurst = 10000;

// Puts the consumer thread that `start` creates on one CPU and the calling (producer) thread
// on another, so that every variant is measured with the same placement instead of
// wherever the scheduler happens to put the two threads. Restores the caller's CPU set on
// destruction. Without two usable CPUs placement is left alone.
class CrossCorePlacement {
public:
    template <typename Start>
    explicit CrossCorePlacement(Start start) {
        pthread_t self = pthread_self();
        const bool saved = pthread_getaffinity_np(self, sizeof(original_), &original_) == 0;
        std::vector<int> cpus;
        for (int cpu = 0; saved && cpu < CPU_SETSIZE; ++cpu) {
            if (CPU_ISSET(cpu, &original_)) {
                cpus.push_back(cpu);
            }
        }
        pinned_ = cpus.size() >= 2 && pin(cpus[1]);
        start();  // the consumer inherits the CPU set of the thread that creates it
        if (pinned_) {
            pin(cpus[0]);
        }
    }
    ~CrossCorePlacement() {
        if (pinned_) {
            pthread_setaffinity_np(pthread_self(), sizeof(original_), &original_);
        }
    }
    CrossCorePlacement(const CrossCorePlacement&) = delete;
    CrossCorePlacement& operator=(const CrossCorePlacement&) = delete;

private:
    static bool pin(int cpu) {
        cpu_set_t set;
        CPU_ZERO(&set);
        CPU_SET(cpu, &set);
        return pthread_setaffinity_np(pthread_self(), sizeof(set), &set) == 0;
    }

    cpu_set_t original_{};
    bool pinned_ = false;
};

void waitFor(const std::atomic<int>& counter, int target) {
    while (counter.load(std::memory_order_acquire) < target) {
        std::this_thread::yield();
    }
}

// Posts kBurst closures per iteration and waits until all have run.
template <typename Post>
void throughput(benchmark::State& state, Post post) {
    std::atomic<int> done{0};
    int target = 0;
    for (auto _ : state) {
        target += kBurst;
        for (int i = 0; i < kBurst; ++i) {
            post([&done] { done.fetch_add(1, std::memory_order_release); });
        }
        waitFor(done, target);
    }
    state.SetItemsProcessed(state.iterations() * kBurst);
}

// Post-to-run latency; spacing 0 is a burst, otherwise posts are spaced by that many
// microseconds so that the consumer waits in between.
template <typename Post>
void latency(benchmark::State& state, Post post) {
    const auto spacing = std::chrono::microseconds(state.range(0));
    constexpr int kPosts = 1000;
    std::vector<double> latencies;
    for (auto _ : state) {
        std::vector<double> sample(kPosts);
        std::atomic<int> done{0};
        for (int i = 0; i < kPosts; ++i) {
            const auto posted = std::chrono::steady_clock::now();
            post([&sample, &done, posted, i] {
                sample[static_cast<size_t>(i)] = std::chrono::duration<double, std::micro>(
                                                     std::chrono::steady_clock::now() - posted)
                                                     .count();
                done.fetch_add(1, std::memory_order_release);
            });
            if (spacing.count() > 0) {
                const auto next = posted + spacing;
                while (std::chrono::steady_clock::now() < next) {
                }
            }
        }
        waitFor(done, kPosts);
        latencies.insert(latencies.end(), sample.begin(), sample.end());
    }
    std::sort(latencies.begin(), latencies.end());
    state.counters["median_us"] = latencies[latencies.size() / 2];
    state.counters["p99_us"] = latencies[latencies.size() * 99 / 100];
}

}  // namespace bench
}  // namespace smarthome
