// Message-loop costs: closures posted from one producer through a Handler to its Looper,
// against a minimal single-consumer queue (one mutex, one condition variable, a deque of
// std::function) and boost::asio's io_context in the same run; post-to-run latency for a
// burst and for spaced posts (idle wake-up); the cost of a post while a long callback
// runs; and one pass of the delayed-entry check at 1 000 and 10 000 entries.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#ifdef SMARTHOME_BENCH_WITH_ASIO
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#endif

#include "messaging/DelayedSchedule.h"
#include "smarthome/Handler.h"
#include "smarthome/Looper.h"
#include "testing/PostingLoad.h"
#include "testing/RatioReporter.h"

namespace {

using Clock = std::chrono::steady_clock;
using smarthome::bench::CrossCorePlacement;
using smarthome::bench::latency;
using smarthome::bench::throughput;

// The baseline: the smallest correct single-consumer queue.
class MinimalQueue {
public:
    MinimalQueue() : worker_([this] { run(); }) {}
    ~MinimalQueue() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            stop_ = true;
        }
        ready_.notify_one();
        worker_.join();
    }
    void post(std::function<void()> task) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            tasks_.push_back(std::move(task));
        }
        ready_.notify_one();
    }

private:
    void run() {
        while (true) {
            std::function<void()> task;
            {
                std::unique_lock<std::mutex> lock(mutex_);
                ready_.wait(lock, [this] { return stop_ || !tasks_.empty(); });
                if (tasks_.empty()) {
                    return;
                }
                task = std::move(tasks_.front());
                tasks_.pop_front();
            }
            task();
        }
    }

    std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<std::function<void()>> tasks_;
    bool stop_ = false;
    std::thread worker_;
};

// Runs start, which creates the consumer thread; pinned, the two threads are placed on two
// CPUs for as long as the result lives.
template <typename Start>
std::unique_ptr<CrossCorePlacement> startConsumer(bool pinned, Start start) {
    if (!pinned) {
        start();
        return nullptr;
    }
    return std::make_unique<CrossCorePlacement>(start);
}

// Warm bursts of 10 000 posts to one long-lived queue, with the threads wherever the
// scheduler puts them (as in a daemon), and again with producer and consumer pinned to two
// CPUs (reported beside, never instead).
template <bool kPinned>
void BM_Throughput_MinimalQueue(benchmark::State& state) {
    std::unique_ptr<MinimalQueue> queue;
    auto start = [&] { queue = std::make_unique<MinimalQueue>(); };
    auto placement = startConsumer(kPinned, start);
    throughput(state, [&](std::function<void()> task) { queue->post(std::move(task)); });
}

template <bool kPinned>
void BM_Throughput_Looper(benchmark::State& state) {
    std::unique_ptr<smarthome::Handler> handler;
    auto start = [&] {
        handler = std::make_unique<smarthome::Handler>([](std::unique_ptr<smarthome::Message>) {});
    };
    auto placement = startConsumer(kPinned, start);
    throughput(state, [&](std::function<void()> task) { handler->post(std::move(task)); });
}

#ifdef SMARTHOME_BENCH_WITH_ASIO
void BM_Throughput_Asio(benchmark::State& state) {
    boost::asio::io_context context;
    auto guard = boost::asio::make_work_guard(context);
    std::thread runner([&] { context.run(); });
    throughput(state,
               [&](std::function<void()> task) { boost::asio::post(context, std::move(task)); });
    guard.reset();
    runner.join();
}
BENCHMARK(BM_Throughput_Asio)->UseRealTime()->Repetitions(5);
#endif

BENCHMARK_TEMPLATE(BM_Throughput_MinimalQueue, false)->UseRealTime()->Repetitions(5);
BENCHMARK_TEMPLATE(BM_Throughput_Looper, false)->UseRealTime()->Repetitions(5);
BENCHMARK_TEMPLATE(BM_Throughput_MinimalQueue, true)->UseRealTime()->Repetitions(5);
BENCHMARK_TEMPLATE(BM_Throughput_Looper, true)->UseRealTime()->Repetitions(5);

// A cold burst: 200 000 posts to a freshly made queue (a new Handler, and so a new Looper
// and thread), timed from the first post until the last one has run. Nothing is warm: no
// spare entries, no grown containers, no allocator caches of the new thread.
constexpr int kColdBurst = 200000;

template <typename Make, typename Post>
void coldBurst(benchmark::State& state, Make make, Post post) {
    for (auto _ : state) {
        auto target = make();
        std::atomic<int> done{0};
        const auto begin = Clock::now();
        for (int i = 0; i < kColdBurst; ++i) {
            post(*target, [&done] { done.fetch_add(1, std::memory_order_release); });
        }
        smarthome::bench::waitFor(done, kColdBurst);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    }
    state.SetItemsProcessed(state.iterations() * kColdBurst);
}

void BM_ColdBurst_MinimalQueue(benchmark::State& state) {
    coldBurst(
        state, [] { return std::make_unique<MinimalQueue>(); },
        [](MinimalQueue& queue, std::function<void()> task) { queue.post(std::move(task)); });
}

void BM_ColdBurst_Looper(benchmark::State& state) {
    coldBurst(
        state,
        [] {
            return std::make_unique<smarthome::Handler>([](std::unique_ptr<smarthome::Message>) {});
        },
        [](smarthome::Handler& handler, std::function<void()> task) {
            handler.post(std::move(task));
        });
}
BENCHMARK(BM_ColdBurst_MinimalQueue)->UseManualTime()->Iterations(3)->Repetitions(5);
BENCHMARK(BM_ColdBurst_Looper)->UseManualTime()->Iterations(3)->Repetitions(5);

// Post-to-run latency for a burst and for spaced posts (idle wake-up).
void BM_Latency_Looper(benchmark::State& state) {
    smarthome::Handler handler([](std::unique_ptr<smarthome::Message>) {});
    latency(state, [&](const std::function<void()>& task) { handler.post(task); });
}
BENCHMARK(BM_Latency_Looper)->Arg(0)->Arg(50)->Iterations(5)->UseRealTime();

// The cost of one post while the worker is idle, and while it runs a 50 ms callback:
// senders never wait for a callback, so the two must be alike.
void BM_PostCost(benchmark::State& state) {
    const bool busy = state.range(0) != 0;
    constexpr int kPosts = 1000;
    smarthome::Handler handler([](std::unique_ptr<smarthome::Message>) {});
    double totalNs = 0;
    for (auto _ : state) {
        std::atomic<bool> started{false};
        if (busy) {
            handler.post([&started] {
                started = true;
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            });
            while (!started) {
                std::this_thread::yield();
            }
        }
        const auto begin = Clock::now();
        for (int i = 0; i < kPosts; ++i) {
            handler.post([] {});
        }
        totalNs += std::chrono::duration<double, std::nano>(Clock::now() - begin).count();
        handler.getLooper()->flush();
    }
    state.counters["ns_per_post"] = totalNs / (static_cast<double>(state.iterations()) * kPosts);
}
BENCHMARK(BM_PostCost)->Arg(0)->Arg(1)->Iterations(20)->UseRealTime();

// One pass of the delayed-entry check over n entries, none due (a full walk), and with
// every other entry due (moves half of them in the same sweep).
void BM_DelayedCheck(benchmark::State& state) {
    const auto n = static_cast<size_t>(state.range(0));
    const bool halfDue = state.range(1) != 0;
    const auto now = Clock::now();
    std::deque<std::unique_ptr<smarthome::MessageOrRunnable>> queue;
    std::vector<std::unique_ptr<smarthome::DelayedMessage>> delayed;
    auto fill = [&] {
        delayed.clear();
        queue.clear();
        for (size_t i = 0; i < n; ++i) {
            const auto due = halfDue && i % 2 == 0 ? now - std::chrono::milliseconds(1)
                                                   : now + std::chrono::hours(1);
            delayed.push_back(std::make_unique<smarthome::DelayedMessage>(
                std::make_unique<smarthome::MessageOrRunnable>(
                    std::make_unique<smarthome::Message>(static_cast<int>(i)), nullptr),
                due));
        }
    };
    fill();
    for (auto _ : state) {
        if (halfDue) {
            state.PauseTiming();
            fill();
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(smarthome::detail::moveDueEntries(delayed, queue, now));
    }
    state.counters["ns_per_entry"] =
        benchmark::Counter(static_cast<double>(n) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_DelayedCheck)->Args({1000, 0})->Args({10000, 0})->Args({1000, 1})->Args({10000, 1});

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    smarthome::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    bool ok = reporter.printRatios(
        {{"BM_Throughput_MinimalQueue<false>/repeats:5/real_time",
          "BM_Throughput_Looper<false>/repeats:5/real_time"},
         {"BM_ColdBurst_MinimalQueue/iterations:3/repeats:5/manual_time",
          "BM_ColdBurst_Looper/iterations:3/repeats:5/manual_time"}},
        0.7, "Looper throughput relative to the minimal queue, unpinned (warm, cold)");
    reporter.printRatios({{"BM_Throughput_MinimalQueue<true>/repeats:5/real_time",
                           "BM_Throughput_Looper<true>/repeats:5/real_time"}},
                         0.7, "The same, producer and consumer pinned to two CPUs (reference)");
#ifdef SMARTHOME_BENCH_WITH_ASIO
    ok = reporter.printRatios({{"BM_Throughput_Asio/repeats:5/real_time",
                                "BM_Throughput_Looper<false>/repeats:5/real_time"}},
                              1.0, "Looper throughput relative to boost::asio, unpinned") &&
         ok;
#endif
    benchmark::Shutdown();
    return ok ? 0 : 1;
}
