// Points inside the library where a test can stop or fail a thread, so that a window too
// narrow to hit by chance can be hit every time. Compiled in only when the library is built
// together with its tests (SMARTHOME_TEST_SEAMS); otherwise SMARTHOME_TEST_SEAM(point)
// expands to nothing. Private to the library.
#pragma once

#if defined(SMARTHOME_TEST_SEAMS)
#include <functional>
#endif

namespace smarthome {
namespace detail {

enum class TestSeam {
    ThreadStart,          // just before a library thread is created (may throw to fail it)
    ExecutorLingerEnded,  // a task executor's job found nothing more and is about to end
};

#if defined(SMARTHOME_TEST_SEAMS)
// The hook runs on the thread that reaches the seam; an empty hook removes it.
void setTestSeamHook(std::function<void(TestSeam)> hook);
void reachTestSeam(TestSeam seam);
#define SMARTHOME_TEST_SEAM(seam) ::smarthome::detail::reachTestSeam(seam)
#else
#define SMARTHOME_TEST_SEAM(seam) ((void)0)
#endif

}  // namespace detail
}  // namespace smarthome
