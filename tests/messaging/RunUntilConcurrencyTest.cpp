#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <thread>

#include "smarthome/RunUntil.h"
#include "testing/ExecutionTestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;
using test::kTestTimeout;

// Objects destroyed at random moments, asleep or evaluating, while another thread asks
// isDone(): every destruction returns promptly (the wake-up is never lost) and the
// destructor's write of the stop flag never races the poller's reads.
TEST(RunUntilConcurrency, DestructionAtRandomMomentsNeverHangsOrRaces) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::atomic<int> calls{0};
        const bool eventuallyTrue = round % 3 == 0;
        auto poller = std::make_unique<RunUntil>(
            [&calls, eventuallyTrue] { return ++calls > 2 && eventuallyTrue; },
            std::chrono::milliseconds(round % 2 == 0 ? 1 : 1000));
        std::atomic<bool> stop{false};
        std::thread asker([&] {
            while (!stop) {
                poller->isDone();
                std::this_thread::yield();
            }
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        stop = true;
        asker.join();
        test::BackgroundCall destroy([&poller] { poller.reset(); });
        ASSERT_TRUE(destroy.waitFor(kTestTimeout)) << round;
    }
}

}  // namespace
}  // namespace smarthome
