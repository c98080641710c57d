// A std::mutex with clang thread-safety annotations, so that clang's -Wthread-safety
// checks which members a lock guards. Private to the library.
//
// Locking spins briefly before it sleeps: the library's critical sections are a few dozen
// instructions, so a contended lock is nearly always free again within that time, and
// waiting in the kernel instead costs a system call on each side (sleep and wake-up).
// Between attempts the wait doubles (1, 2, 4, ... 128 pauses): each attempt takes the
// lock's cache line away from its holder, and attempts in a tight loop slowed the holder's
// own unlock enough to cost a message loop half its throughput.
#pragma once

#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define SH_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define SH_THREAD_ANNOTATION(x)
#endif

#define SH_CAPABILITY(x) SH_THREAD_ANNOTATION(capability(x))
#define SH_SCOPED_CAPABILITY SH_THREAD_ANNOTATION(scoped_lockable)
#define SH_GUARDED_BY(x) SH_THREAD_ANNOTATION(guarded_by(x))
#define SH_PT_GUARDED_BY(x) SH_THREAD_ANNOTATION(pt_guarded_by(x))
#define SH_REQUIRES(...) SH_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define SH_EXCLUDES(...) SH_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define SH_ACQUIRE(...) SH_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define SH_RELEASE(...) SH_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define SH_NO_THREAD_SAFETY_ANALYSIS SH_THREAD_ANNOTATION(no_thread_safety_analysis)

namespace smarthome {
namespace detail {

class SH_CAPABILITY("mutex") Mutex {
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() SH_ACQUIRE() { acquire(); }
    void unlock() SH_RELEASE() { mutex_.unlock(); }
    std::mutex& native() { return mutex_; }

    // Locks the underlying mutex and returns it (for a lock object that adopts it).
    std::mutex& acquire() SH_NO_THREAD_SAFETY_ANALYSIS {
        for (int spin = 0; spin < kSpinAttempts; ++spin) {
            if (mutex_.try_lock()) {
                return mutex_;
            }
            for (int pause = 0; pause < (1 << spin); ++pause) {
                relax();
            }
        }
        mutex_.lock();
        return mutex_;
    }

private:
    static constexpr int kSpinAttempts = 8;

    static void relax() {
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#elif defined(__aarch64__) || defined(__arm__)
        __asm__ __volatile__("yield");
#endif
    }

    std::mutex mutex_;
};

// Scoped lock over Mutex. Waiting on a condition variable goes through wait()/waitFor(),
// which keep the annotations honest (the lock is held again when they return).
class SH_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) SH_ACQUIRE(mutex)
        : mutex_(mutex), lock_(mutex.acquire(), std::adopt_lock) {}
    ~MutexLock() SH_RELEASE() = default;
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    template <typename Predicate>
    void wait(std::condition_variable& cv, Predicate predicate) {
        cv.wait(lock_, predicate);
    }
    template <typename Clock, typename Duration, typename Predicate>
    bool waitUntil(std::condition_variable& cv,
                   const std::chrono::time_point<Clock, Duration>& deadline, Predicate predicate) {
        return cv.wait_until(lock_, deadline, predicate);
    }
    template <typename Clock, typename Duration>
    std::cv_status waitUntil(std::condition_variable& cv,
                             const std::chrono::time_point<Clock, Duration>& deadline) {
        return cv.wait_until(lock_, deadline);
    }
    template <typename Rep, typename Period, typename Predicate>
    bool waitFor(std::condition_variable& cv, const std::chrono::duration<Rep, Period>& timeout,
                 Predicate predicate) {
        return cv.wait_for(lock_, timeout, predicate);
    }
    void unlock() SH_RELEASE() { lock_.unlock(); }
    void relock() SH_ACQUIRE() {
        mutex_.acquire();
        lock_ = std::unique_lock<std::mutex>(mutex_.native(), std::adopt_lock);
    }

private:
    Mutex& mutex_;
    std::unique_lock<std::mutex> lock_;
};

}  // namespace detail
}  // namespace smarthome
