// Every masking operation on arbitrary bytes, compared with the same rules written with
// std::regex and the documented patterns: the fuzzer hunts for inputs where the
// hand-written recognisers and the patterns disagree. Inputs are capped at 256 bytes,
// well past the longest identifier, because the regex engine recurses per character.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "logging/RegexMaskingReference.h"
#include "smarthome/SmartHomeLogger.h"

namespace reference = smarthome::reference;

namespace {

void same(const std::string& ours, const std::string& expected) {
    if (ours != expected) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 256) {
        return 0;
    }
    static const smarthome::SmartHomeLogger logger("Fuzz");
    const std::string input(reinterpret_cast<const char*>(data), size);
    same(logger.obfuscateMac(input), reference::obfuscateMac(input));
    same(logger.compressAndObfuscateMac(input), reference::compressAndObfuscateMac(input));
    same(logger.obfuscateIp(input), reference::obfuscateIp(input));
    same(logger.obfuscateUid(input), reference::obfuscateUid(input));
    same(logger.compressAndObfuscateUid(input), reference::compressAndObfuscateUid(input));
    same(logger.obfuscateUsbEpId(input), reference::obfuscateUsbEpId(input));
    logger.obfuscateSerialForPhilipsHue(input);
    logger.obfuscateSecret(input);
    std::string json = input;
    logger.obfuscateJsonObjectForKey(json, "token");
    if (json != input) {
        std::abort();
    }
    return 0;
}
