// Logging interface of the in-house IPC connector library, declared here for builds
// where that library is absent. Slot order matters: it matches the library's own.
#pragma once

#include <exception>
#include <string>

namespace ripcconnector {

class ILogger {
public:
    virtual ~ILogger() = default;
    virtual void i(const char* format, ...) = 0;
    virtual void d(const char* format, ...) = 0;
    virtual void e(const char* format, ...) = 0;
    virtual void v(const char* format, ...) = 0;
    virtual void w(const char* format, ...) = 0;
    virtual void i(const std::string& message, const std::exception& error) = 0;
    virtual void d(const std::string& message, const std::exception& error) = 0;
    virtual void e(const std::string& message, const std::exception& error) = 0;
    virtual void v(const std::string& message, const std::exception& error) = 0;
    virtual void w(const std::string& message, const std::exception& error) = 0;
};

}  // namespace ripcconnector
