// Task-executor costs against the message loop in the same run: bursts of 10 000 closures
// posted from one producer to a TaskExecutor on an idle default pool and to a
// Handler/Looper; post-to-run latency for a burst and for spaced posts; the pool's live
// thread count before and after the idle time-out; and how long quitSafely() takes on an
// executor whose job is lingering (it must not sit out its 200 ms bound).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "smarthome/DynamicThreadPool.h"
#include "smarthome/Handler.h"
#include "smarthome/TaskExecutor.h"
#include "testing/PostingLoad.h"
#include "testing/RatioReporter.h"

namespace {

using Clock = std::chrono::steady_clock;
using smarthome::bench::latency;
using smarthome::bench::throughput;

bool idleReturnedToZero = false;

void BM_Throughput_Looper(benchmark::State& state) {
    smarthome::Handler handler([](std::unique_ptr<smarthome::Message>) {});
    throughput(state, [&](const std::function<void()>& task) { handler.post(task); });
}
BENCHMARK(BM_Throughput_Looper)->UseRealTime();

void BM_Throughput_TaskExecutor(benchmark::State& state) {
    auto pool = std::make_shared<smarthome::DynamicThreadPool>();  // the default 5 and 1 s
    smarthome::TaskExecutor executor([](std::unique_ptr<smarthome::Message>) {}, pool);
    throughput(state, [&](const std::function<void()>& task) { executor.post(task); });
}
BENCHMARK(BM_Throughput_TaskExecutor)->UseRealTime();

void BM_Latency_Looper(benchmark::State& state) {
    smarthome::Handler handler([](std::unique_ptr<smarthome::Message>) {});
    latency(state, [&](const std::function<void()>& task) { handler.post(task); });
}
BENCHMARK(BM_Latency_Looper)->Arg(0)->Arg(50)->Iterations(5)->UseRealTime();

void BM_Latency_TaskExecutor(benchmark::State& state) {
    auto pool = std::make_shared<smarthome::DynamicThreadPool>();
    smarthome::TaskExecutor executor([](std::unique_ptr<smarthome::Message>) {}, pool);
    latency(state, [&](const std::function<void()>& task) { executor.post(task); });
}
BENCHMARK(BM_Latency_TaskExecutor)->Arg(0)->Arg(50)->Iterations(5)->UseRealTime();

// One task on an idle default pool, then the wait for its worker to time out: the live
// thread count while the job runs, after the idle time-out, and how long that took.
void BM_IdleThreadCount(benchmark::State& state) {
    auto pool = std::make_shared<smarthome::DynamicThreadPool>();
    smarthome::TaskExecutor executor([](std::unique_ptr<smarthome::Message>) {}, pool);
    int whileBusy = -1;
    int afterIdle = -1;
    double msToIdle = 0;
    for (auto _ : state) {
        std::atomic<int> seen{-1};
        executor.post([&] { seen = pool->getLiveThreadCount(); });
        while (seen.load() < 0) {
            std::this_thread::yield();
        }
        const auto ran = Clock::now();
        const auto limit = ran + std::chrono::seconds(10);
        while (pool->getLiveThreadCount() > 0 && Clock::now() < limit) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        whileBusy = seen.load();
        afterIdle = pool->getLiveThreadCount();
        msToIdle = std::chrono::duration<double, std::milli>(Clock::now() - ran).count();
    }
    state.counters["threads_while_busy"] = whileBusy;
    state.counters["threads_after_idle"] = afterIdle;
    state.counters["ms_to_idle"] = msToIdle;
    idleReturnedToZero = whileBusy == 1 && afterIdle == 0;
}
BENCHMARK(BM_IdleThreadCount)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

// quitSafely() while the job lingers after its last task: the job ends because of the
// stop and wakes quitSafely() at once.
void BM_QuitSafelyWhileLingering(benchmark::State& state) {
    auto pool = std::make_shared<smarthome::DynamicThreadPool>();
    double totalUs = 0;
    for (auto _ : state) {
        state.PauseTiming();
        smarthome::TaskExecutor executor([](std::unique_ptr<smarthome::Message>) {}, pool);
        std::atomic<bool> ran{false};
        executor.post([&ran] { ran = true; });
        while (!ran.load()) {
            std::this_thread::yield();
        }
        state.ResumeTiming();
        const auto begin = Clock::now();
        executor.quitSafely();
        totalUs += std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
    }
    state.counters["quit_us"] = totalUs / static_cast<double>(state.iterations());
}
BENCHMARK(BM_QuitSafelyWhileLingering)->Iterations(20)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    smarthome::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    bool ok = reporter.printRatios(
        {{"BM_Throughput_Looper/real_time", "BM_Throughput_TaskExecutor/real_time"}}, 0.5,
        "TaskExecutor throughput relative to Handler/Looper, bursts of 10 000 posts");
    std::printf("\nIdle default pool back to 0 live threads after the idle time-out: %s\n",
                idleReturnedToZero ? "ok" : "NO");
    ok = ok && idleReturnedToZero;
    benchmark::Shutdown();
    return ok ? 0 : 1;
}
