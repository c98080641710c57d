// Lets the in-house IPC connector library log through a SmartHomeLogger tagged
// "SmartHome:" + the tag given at construction.
// Ownership: holds its logger by value. Thread-safety: as SmartHomeLogger.
#pragma once

#include <ripcconnector/ILogger.h>

#include <exception>
#include <string>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

class SmartHomeRIPCLoggerAdapter : public ripcconnector::ILogger {
public:
    explicit SmartHomeRIPCLoggerAdapter(const std::string& tag);
    ~SmartHomeRIPCLoggerAdapter() override = default;

    void i(const char* format, ...) override;
    void d(const char* format, ...) override;
    void e(const char* format, ...) override;
    void v(const char* format, ...) override;
    void w(const char* format, ...) override;
    void i(const std::string& message, const std::exception& error) override;
    void d(const std::string& message, const std::exception& error) override;
    void e(const std::string& message, const std::exception& error) override;
    void v(const std::string& message, const std::exception& error) override;
    void w(const std::string& message, const std::exception& error) override;

private:
    SmartHomeLogger logger;
};

}  // namespace smarthome
