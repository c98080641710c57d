// Host stand-in for the device's log interface: same priorities, same functions.
// Messages are formatted into a 1024-byte buffer (longer text is cut to 1023 bytes)
// and handed to the port's log sink (see smarthome-host/HostPort.h).
#pragma once

#include <stdarg.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum android_LogPriority {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT,  // only for SetMinPriority()
    ANDROID_LOG_VERBOSE,
    ANDROID_LOG_DEBUG,
    ANDROID_LOG_INFO,
    ANDROID_LOG_WARN,
    ANDROID_LOG_ERROR,
    ANDROID_LOG_FATAL,
    ANDROID_LOG_SILENT,  // only for SetMinPriority(); must be last
} android_LogPriority;

// Returns 1 when the message was handed to the log, -EPERM when the default sink's
// threshold filtered it out. A null tag logs with an empty tag; a null format logs "".
int __android_log_print(int prio, const char* tag, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));
int __android_log_vprint(int prio, const char* tag, const char* fmt, va_list ap)
    __attribute__((format(printf, 3, 0)));
int __android_log_write(int prio, const char* tag, const char* text);

#ifdef __cplusplus
}
#endif
