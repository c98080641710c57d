// Records what callbacks saw, from any thread, and lets a test wait for it with the shared
// generous timeout.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "testing/TestSupport.h"

namespace smarthome {
namespace test {

class Recorder {
public:
    void add(int value) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            values_.push_back(value);
        }
        changed_.notify_all();
    }
    // True when at least count values arrived before the timeout.
    bool waitFor(size_t count) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, kTestTimeout, [&] { return values_.size() >= count; });
    }
    std::vector<int> values() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return values_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<int> values_;
};

// A one-shot gate a callback can block on until the test opens it.
class Gate {
public:
    void open() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            open_ = true;
        }
        changed_.notify_all();
    }
    bool wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, kTestTimeout, [&] { return open_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = false;
};

}  // namespace test
}  // namespace smarthome
