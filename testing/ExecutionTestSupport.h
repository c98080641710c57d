// Helpers for the thread-pool, task-executor and RunUntil suites: bounded polling for a
// state that other threads bring about, and a probe that notices two tasks overlapping.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <thread>

#include "testing/TestSupport.h"

namespace smarthome {
namespace test {

// True as soon as condition holds; false when kTestTimeout passes first.
inline bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kTestTimeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// Runs a call on a thread of its own so that the test can bound how long it takes. A call
// still running when the object goes (kTestTimeout after waitFor() gave up) aborts the
// test program: a hung thread cannot be cleaned up, and a failure must not become a hang.
class BackgroundCall {
public:
    explicit BackgroundCall(std::function<void()> call)
        : thread_([this, call = std::move(call)] {
              call();
              {
                  std::lock_guard<std::mutex> lock(mutex_);
                  done_ = true;
              }
              changed_.notify_all();
          }) {}
    ~BackgroundCall() {
        if (!waitFor(kTestTimeout)) {
            std::fprintf(stderr, "a call under test never returned\n");
            std::abort();
        }
        thread_.join();
    }
    BackgroundCall(const BackgroundCall&) = delete;
    BackgroundCall& operator=(const BackgroundCall&) = delete;

    // True when the call has returned within timeout.
    template <typename Rep, typename Period>
    bool waitFor(std::chrono::duration<Rep, Period> timeout) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, [this] { return done_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool done_ = false;
    std::thread thread_;  // last: starts once the rest is built
};

// Tasks that must never run at the same time wrap their bodies in a Scope; overlaps()
// counts the times a task began while another was inside.
class OverlapProbe {
public:
    class Scope {
    public:
        explicit Scope(OverlapProbe& probe) : probe_(probe) {
            if (probe_.inside_.fetch_add(1) != 0) {
                probe_.overlaps_.fetch_add(1);
            }
        }
        ~Scope() { probe_.inside_.fetch_sub(1); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        OverlapProbe& probe_;
    };

    int overlaps() const { return overlaps_.load(); }

private:
    std::atomic<int> inside_{0};
    std::atomic<int> overlaps_{0};
};

}  // namespace test
}  // namespace smarthome
