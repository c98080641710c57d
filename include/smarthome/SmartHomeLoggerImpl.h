// Stateless sink between SmartHomeLogger and the platform log: each function writes at
// the priority of its letter (v 2, d 3, i 4, w 5, e 6).
// Thread-safety: all functions may be called from any thread.
#pragma once

#include <cstdarg>
#include <exception>
#include <string>

namespace smarthome {

class SmartHomeLoggerImpl {
public:
    static void v(const char* tag, const char* format, va_list args);
    static void d(const char* tag, const char* format, va_list args);
    static void i(const char* tag, const char* format, va_list args);
    static void w(const char* tag, const char* format, va_list args);
    static void e(const char* tag, const char* format, va_list args);

    // Log "%s: %s" with message and error.what().
    static void v(const char* tag, const std::string& message, const std::exception& error);
    static void d(const char* tag, const std::string& message, const std::exception& error);
    static void i(const char* tag, const std::string& message, const std::exception& error);
    static void w(const char* tag, const std::string& message, const std::exception& error);
    static void e(const char* tag, const std::string& message, const std::exception& error);
};

}  // namespace smarthome
