// Every masking operation on arbitrary bytes, compared with the same rules written with
// std::regex and the documented patterns (and, for the rules without a pattern, written
// plainly): the fuzzer hunts for inputs where the library and the reference disagree and
// aborts on the first difference. Inputs are capped at 256 bytes, well past the longest
// identifier, because the regex engine recurses per character; run with -max_len=256.
#include <cutils/properties.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/SmartHomeLogger.h"
#include "testing/RegexMaskingReference.h"

namespace reference = smarthome::reference;

namespace {

void same(const std::string& ours, const std::string& expected) {
    if (ours != expected) {
        std::abort();
    }
}

// The secret rule reads a property that is often unset here; keep the read's log line
// out of the fuzzer's output.
bool quietLog() {
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 256) {
        return 0;
    }
    static const bool quiet = quietLog();
    (void)quiet;
    static const smarthome::SmartHomeLogger logger("Fuzz");
    const std::string input(reinterpret_cast<const char*>(data), size);
    same(logger.obfuscateMac(input), reference::obfuscateMac(input));
    same(logger.compressAndObfuscateMac(input), reference::compressAndObfuscateMac(input));
    same(logger.obfuscateIp(input), reference::obfuscateIp(input));
    same(logger.obfuscateUid(input), reference::obfuscateUid(input));
    same(logger.compressAndObfuscateUid(input), reference::compressAndObfuscateUid(input));
    same(logger.obfuscateUsbEpId(input), reference::obfuscateUsbEpId(input));
    same(logger.obfuscateSerialForPhilipsHue(input),
         reference::obfuscateSerialForPhilipsHue(input));

    // The first byte picks the build type (or none), the length the JSON key.
    static const char* const kBuildTypes[] = {nullptr, "user", "userdebug", "User"};
    static const char* const kKeys[] = {"token", "k", "", "a"};
    const unsigned selector = size > 0 ? data[0] : 0;
    smarthome::port::clearSystemProperties();
    if (const char* buildType = kBuildTypes[selector % 4]) {
        property_set("ro.build.type", buildType);
    }
    same(logger.obfuscateSecret(input), reference::obfuscateSecret(input));

    const std::string key = kKeys[size % 4];
    std::string json = input;
    same(logger.obfuscateJsonObjectForKey(json, key),
         reference::obfuscateJsonObjectForKey(input, key));
    same(json, input);  // the argument is left as it was
    return 0;
}
