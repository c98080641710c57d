// The UTF-8 cleaner must always produce text the checker accepts, leave valid text
// untouched, and be idempotent.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome/StringUtils.h"

using smarthome::StringUtils;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const bool valid = StringUtils::isValidUtf8String(text);
    const std::string cleaned = StringUtils::removeNonUtf8Characters(text);
    if (!StringUtils::isValidUtf8String(cleaned)) {
        std::abort();
    }
    if (valid && cleaned != text) {
        std::abort();
    }
    if (StringUtils::removeNonUtf8Characters(cleaned) != cleaned) {
        std::abort();
    }
    std::string special = text;
    StringUtils::removeSpecialCharacters(special);
    if (!StringUtils::isValidUtf8String(special)) {
        std::abort();  // only ASCII survives
    }
    return 0;
}
