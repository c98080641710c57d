// Every library thread is started inside a try block: when the system refuses a thread,
// the owner logs why and stays usable instead of letting std::system_error escape.
#include <android/log.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <system_error>

#include "base/TestSeam.h"
#include "smarthome/DynamicThreadPool.h"
#include "smarthome/Handler.h"
#include "smarthome/RunUntil.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

using namespace std::chrono_literals;

// Makes every thread start fail while it lives.
class RefusedThreads {
public:
    RefusedThreads() {
        detail::setTestSeamHook([](detail::TestSeam seam) {
            if (seam == detail::TestSeam::ThreadStart) {
                throw std::system_error(EAGAIN, std::generic_category(), "no thread for you");
            }
        });
    }
    ~RefusedThreads() { detail::setTestSeamHook(nullptr); }
    RefusedThreads(const RefusedThreads&) = delete;
    RefusedThreads& operator=(const RefusedThreads&) = delete;
};

TEST(ThreadStartFailure, TheOwnerLogsWhyAndStaysUsable) {
    const struct {
        const char* tag;
        const char* line;
        std::function<void()> use;
    } cases[] = {
        {"SmartHome:Looper", "Looper:event=workerNotStarted,reason=no thread for you",
         [] {
             Handler handler([](std::unique_ptr<Message>) {});
             EXPECT_FALSE(handler.sendEmptyMessage(1));
             EXPECT_FALSE(handler.post([] {}));
             EXPECT_FALSE(handler.getLooper()->hasAnyMessages());
             handler.getLooper()->flush();  // returns: there is no pass to wait for
         }},
        {"SmartHome:DynamicThreadPool", "submit:event=workerNotStarted,reason=no thread for you",
         [] {
             DynamicThreadPool pool(2, 1s);
             auto first = pool.submit([] { return 1; });
             EXPECT_EQ(first.wait_for(0s), std::future_status::timeout);
             // The task stays queued for the next worker that can start.
             detail::setTestSeamHook(nullptr);
             auto second = pool.submit([] { return 2; });
             ASSERT_EQ(first.wait_for(test::kTestTimeout), std::future_status::ready);
             EXPECT_EQ(first.get() + second.get(), 3);
         }},
        {"SmartHome:RunUntil", "RunUntil:event=pollerNotStarted,reason=no thread for you",
         [] { RunUntil poller([] { return false; }, 1ms); }},
    };
    for (const auto& c : cases) {
        test::LogCapture capture;
        {
            RefusedThreads refused;
            c.use();
        }
        const auto errors = capture.texts(ANDROID_LOG_ERROR, c.tag);
        ASSERT_EQ(errors.size(), 1u) << c.tag;
        EXPECT_NE(errors[0].find(c.line), std::string::npos) << errors[0];
    }
}

}  // namespace
}  // namespace smarthome
