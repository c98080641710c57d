#include "smarthome/SmartHomeLoggerImpl.h"

#include <android/log.h>

namespace smarthome {

namespace {

void printException(int priority, const char* tag, const std::string& message,
                    const std::exception& error) {
    __android_log_print(priority, tag, "%s: %s", message.c_str(), error.what());
}

}  // namespace

void SmartHomeLoggerImpl::v(const char* tag, const char* format, va_list args) {
    __android_log_vprint(ANDROID_LOG_VERBOSE, tag, format, args);
}
void SmartHomeLoggerImpl::d(const char* tag, const char* format, va_list args) {
    __android_log_vprint(ANDROID_LOG_DEBUG, tag, format, args);
}
void SmartHomeLoggerImpl::i(const char* tag, const char* format, va_list args) {
    __android_log_vprint(ANDROID_LOG_INFO, tag, format, args);
}
void SmartHomeLoggerImpl::w(const char* tag, const char* format, va_list args) {
    __android_log_vprint(ANDROID_LOG_WARN, tag, format, args);
}
void SmartHomeLoggerImpl::e(const char* tag, const char* format, va_list args) {
    __android_log_vprint(ANDROID_LOG_ERROR, tag, format, args);
}

void SmartHomeLoggerImpl::v(const char* tag, const std::string& message,
                            const std::exception& error) {
    printException(ANDROID_LOG_VERBOSE, tag, message, error);
}
void SmartHomeLoggerImpl::d(const char* tag, const std::string& message,
                            const std::exception& error) {
    printException(ANDROID_LOG_DEBUG, tag, message, error);
}
void SmartHomeLoggerImpl::i(const char* tag, const std::string& message,
                            const std::exception& error) {
    printException(ANDROID_LOG_INFO, tag, message, error);
}
void SmartHomeLoggerImpl::w(const char* tag, const std::string& message,
                            const std::exception& error) {
    printException(ANDROID_LOG_WARN, tag, message, error);
}
void SmartHomeLoggerImpl::e(const char* tag, const std::string& message,
                            const std::exception& error) {
    printException(ANDROID_LOG_ERROR, tag, message, error);
}

}  // namespace smarthome
