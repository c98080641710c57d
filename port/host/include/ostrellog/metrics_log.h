// Host stand-in for the device logging library's metrics entry point. The record is
// formatted (printf-style, never cut) and handed with its routing fields to
// the port's metrics sink (see smarthome-host/HostPort.h). Returns 1 when delivered.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

int __metrics_log_print_v2(int priority, const char* program, const char* groupId,
                           const char* schemaId, int version, const char* fmt, ...)
    __attribute__((format(printf, 6, 7)));

#ifdef __cplusplus
}
#endif
