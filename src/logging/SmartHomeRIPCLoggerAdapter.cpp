#include "smarthome/SmartHomeRIPCLoggerAdapter.h"

#include <cstdarg>

#include "smarthome/SmartHomeLoggerImpl.h"

namespace smarthome {

SmartHomeRIPCLoggerAdapter::SmartHomeRIPCLoggerAdapter(const std::string& tag) : logger(tag) {}

#define SMARTHOME_ADAPTER_FORWARD(letter)                                  \
    void SmartHomeRIPCLoggerAdapter::letter(const char* format, ...) {     \
        std::string tag = logger.getTag();                                 \
        va_list args;                                                      \
        va_start(args, format);                                            \
        SmartHomeLoggerImpl::letter(tag.c_str(), format, args);            \
        va_end(args);                                                      \
    }                                                                      \
    void SmartHomeRIPCLoggerAdapter::letter(const std::string& message,    \
                                            const std::exception& error) { \
        logger.letter(message, error);                                     \
    }

SMARTHOME_ADAPTER_FORWARD(i)
SMARTHOME_ADAPTER_FORWARD(d)
SMARTHOME_ADAPTER_FORWARD(e)
SMARTHOME_ADAPTER_FORWARD(v)
SMARTHOME_ADAPTER_FORWARD(w)

#undef SMARTHOME_ADAPTER_FORWARD

}  // namespace smarthome
