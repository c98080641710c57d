// Host implementation of the device log: formats each message into a 1024-byte buffer
// and hands it to the current sink under one lock.
#include <android/log.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <utility>

#include "base/Mutex.h"
#include "smarthome-host/HostPort.h"

namespace {

constexpr size_t kLogBufferSize = 1024;

int thresholdFromEnvironment() {
    const char* level = std::getenv("SMARTHOME_LOG_LEVEL");
    if (level == nullptr || level[0] == '\0') {
        return ANDROID_LOG_INFO;
    }
    switch (level[0]) {
        case 'v':
        case 'V':
            return ANDROID_LOG_VERBOSE;
        case 'd':
        case 'D':
            return ANDROID_LOG_DEBUG;
        case 'i':
        case 'I':
            return ANDROID_LOG_INFO;
        case 'w':
        case 'W':
            return ANDROID_LOG_WARN;
        case 'e':
        case 'E':
            return ANDROID_LOG_ERROR;
        case 'f':
        case 'F':
            return ANDROID_LOG_FATAL;
        case 's':
        case 'S':
            return ANDROID_LOG_SILENT;
        default:
            return ANDROID_LOG_INFO;
    }
}

int defaultThreshold() {
    static const int threshold = thresholdFromEnvironment();
    return threshold;
}

char priorityLetter(int priority) {
    static const char kLetters[] = "XXVDIWEF";
    if (priority < 0 || priority >= static_cast<int>(sizeof(kLetters) - 1)) {
        return 'S';
    }
    return kLetters[priority];
}

void writeDefaultLine(int priority, const char* tag, const char* text) {
    struct timeval now {};
    gettimeofday(&now, nullptr);
    struct tm local {};
    time_t seconds = now.tv_sec;
    localtime_r(&seconds, &local);
    char stamp[32];
    std::strftime(stamp, sizeof(stamp), "%m-%d %H:%M:%S", &local);
    std::fprintf(stderr, "%s.%03ld %5d %5ld %c %-8s: %s\n", stamp,
                 static_cast<long>(now.tv_usec / 1000), static_cast<int>(getpid()),
                 static_cast<long>(syscall(SYS_gettid)), priorityLetter(priority), tag, text);
}

class LogDispatcher {
public:
    static LogDispatcher& instance() {
        // Leaked on purpose: file-scope loggers may log during static destruction.
        static LogDispatcher* dispatcher = new LogDispatcher();
        return *dispatcher;
    }

    void setSink(smarthome::port::LogSink sink) {
        smarthome::detail::MutexLock lock(mutex_);
        hasCustomSink_.store(static_cast<bool>(sink), std::memory_order_release);
        sink_ = std::move(sink);
    }

    // Cheap pre-check so that filtered messages are not formatted at all.
    bool filteredOut(int priority) const {
        return !hasCustomSink_.load(std::memory_order_acquire) && priority < defaultThreshold();
    }

    // Returns 1 when handed to a sink, -EPERM when filtered by the default threshold.
    int dispatch(int priority, const char* tag, const char* text) {
        smarthome::detail::MutexLock lock(mutex_);
        if (sink_) {
            sink_(priority, tag, text);
            return 1;
        }
        if (priority < defaultThreshold()) {
            return -EPERM;
        }
        writeDefaultLine(priority, tag, text);
        return 1;
    }

private:
    smarthome::detail::Mutex mutex_;
    smarthome::port::LogSink sink_ SH_GUARDED_BY(mutex_);
    std::atomic<bool> hasCustomSink_{false};
};

}  // namespace

namespace smarthome {
namespace port {

void setLogSink(LogSink sink) {
    LogDispatcher::instance().setSink(std::move(sink));
}

}  // namespace port
}  // namespace smarthome

extern "C" int __android_log_write(int prio, const char* tag, const char* text) {
    return LogDispatcher::instance().dispatch(prio, tag != nullptr ? tag : "",
                                              text != nullptr ? text : "");
}

extern "C" int __android_log_vprint(int prio, const char* tag, const char* fmt, va_list ap) {
    if (LogDispatcher::instance().filteredOut(prio)) {
        return -EPERM;
    }
    char buffer[kLogBufferSize];
    buffer[0] = '\0';
    if (fmt != nullptr) {
        // vsnprintf never writes past the buffer and always terminates it, so longer
        // text is cut to 1023 bytes.
        std::vsnprintf(buffer, sizeof(buffer), fmt, ap);
    }
    return __android_log_write(prio, tag, buffer);
}

extern "C" int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int result = __android_log_vprint(prio, tag, fmt, ap);
    va_end(ap);
    return result;
}
