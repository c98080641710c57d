// DecodeAndCheck on arbitrary text must fail cleanly or return a payload whose checksum
// encoding decodes back to it; EncodeWithChecksum of any bytes must check out.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome/HashUtils.h"
#include "smarthome/port/HostPort.h"

using smarthome::HashUtils;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::string plain = "unchanged";
    if (HashUtils::DecodeAndCheck(text, plain)) {
        if (!text.empty() && plain.empty()) {
            std::abort();
        }
    } else if (plain != "unchanged") {
        std::abort();
    }
    if (!text.empty()) {
        std::string back;
        if (!HashUtils::DecodeAndCheck(HashUtils::EncodeWithChecksum(text), back) || back != text) {
            std::abort();
        }
    }
    HashUtils::MurmurHash(text, size);
    HashUtils::Sha256Hash(text);
    return 0;
}
