// The library's logging front end: a fixed Android log tag ("SmartHome:" + component)
// and printf-style operations at the five priorities, written to the platform log.
// The same class carries the identifier-masking operations, so that a component masks
// an identifier through the logger it already holds.
//
// Ownership: holds only its tag. Thread-safety: immutable after construction; any
// number of threads may log through one logger at once.
#pragma once

#include <exception>
#include <initializer_list>
#include <string>

#if defined(__GNUC__)
#define SMARTHOME_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define SMARTHOME_PRINTF_FORMAT(fmt, args)
#endif

namespace smarthome {

class SmartHomeLogger {
public:
    // Tag "SmartHome:" + tag.
    explicit SmartHomeLogger(std::string tag);
    // Tag "SmartHome:" + each part followed by ':', then the last character removed;
    // an empty list gives "SmartHome".
    SmartHomeLogger(std::initializer_list<const char* const> parts);
    // Deliberately prefixes again: a copy of "SmartHome:X" is tagged "SmartHome:SmartHome:X".
    SmartHomeLogger(const SmartHomeLogger& other);
    SmartHomeLogger& operator=(const SmartHomeLogger&) = delete;
    virtual ~SmartHomeLogger() = default;

    std::string getTag() const;

    void v(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void d(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void i(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void w(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);
    void e(const char* format, ...) const SMARTHOME_PRINTF_FORMAT(2, 3);

    // Logs "<message>: <error.what()>".
    void v(const std::string& message, const std::exception& error) const;
    void d(const std::string& message, const std::exception& error) const;
    void i(const std::string& message, const std::exception& error) const;
    void w(const std::string& message, const std::exception& error) const;
    void e(const std::string& message, const std::exception& error) const;

private:
    const std::string tag;
};

}  // namespace smarthome
