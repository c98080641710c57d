// DecodeAndCheck on arbitrary text fails cleanly (plain untouched) or returns the payload
// the text carries; EncodeWithChecksum of any bytes checks out; and a checksummed text with
// one character replaced passes exactly when it still decodes to the same bytes.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/Base64.h"
#include "smarthome/HashUtils.h"

using smarthome::Base64;
using smarthome::HashUtils;

namespace {

const std::string kUnchanged = "unchanged";

bool sameBytes(const std::string& a, const std::string& b) {
    std::string left;
    std::string right;
    return Base64::Decode(a, left) && Base64::Decode(b, right) && left == right;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    std::string plain = kUnchanged;
    if (HashUtils::DecodeAndCheck(text, plain)) {
        // The payload re-encodes to a text carrying the same bytes.
        if (!text.empty() &&
            (plain.empty() || !sameBytes(HashUtils::EncodeWithChecksum(plain), text))) {
            std::abort();
        }
    } else if (plain != kUnchanged) {
        std::abort();
    }

    if (text.empty()) {
        return 0;
    }
    const std::string encoded = HashUtils::EncodeWithChecksum(text);
    std::string back = kUnchanged;
    if (!HashUtils::DecodeAndCheck(encoded, back) || back != text) {
        std::abort();
    }

    // Replace one character of the checksummed text, position and value from the input.
    std::string damaged = encoded;
    const size_t position = (static_cast<size_t>(data[0]) << 8 | data[size - 1]) % damaged.size();
    damaged[position] = static_cast<char>(data[size / 2]);
    std::string result = kUnchanged;
    const bool passed = HashUtils::DecodeAndCheck(damaged, result);
    if (passed != sameBytes(damaged, encoded) || (passed ? result != text : result != kUnchanged)) {
        std::abort();
    }

    HashUtils::MurmurHash(text, static_cast<unsigned int>(size));
    HashUtils::Sha256Hash(text);
    return 0;
}
