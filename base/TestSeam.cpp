#include "base/TestSeam.h"

#if defined(SMARTHOME_TEST_SEAMS)

#include <memory>
#include <mutex>
#include <utility>

namespace smarthome {
namespace detail {

namespace {

std::mutex& hookMutex() {
    static std::mutex mutex;
    return mutex;
}

std::shared_ptr<const std::function<void(TestSeam)>>& currentHook() {
    static std::shared_ptr<const std::function<void(TestSeam)>> hook;
    return hook;
}

}  // namespace

void setTestSeamHook(std::function<void(TestSeam)> hook) {
    auto installed =
        hook ? std::make_shared<const std::function<void(TestSeam)>>(std::move(hook)) : nullptr;
    std::lock_guard<std::mutex> lock(hookMutex());
    currentHook() = std::move(installed);
}

void reachTestSeam(TestSeam seam) {
    std::shared_ptr<const std::function<void(TestSeam)>> hook;
    {
        std::lock_guard<std::mutex> lock(hookMutex());
        hook = currentHook();
    }
    if (hook) {
        (*hook)(seam);
    }
}

}  // namespace detail
}  // namespace smarthome

#endif
