// Decodes arbitrary text into exactly sized buffers surrounded by guard bytes: decoding
// never writes past the size it is given, and what decodes re-encodes to itself.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "smarthome/Base64.h"

using smarthome::Base64;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const unsigned int limit = data[0];
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);

    std::vector<unsigned char> buffer(limit + 32, 0xA5);
    Base64::Decode(text, buffer.data() + 16, limit);
    for (size_t i = 0; i < 16; ++i) {
        if (buffer[i] != 0xA5 || buffer[16 + limit + i] != 0xA5) {
            std::abort();
        }
    }

    std::string decoded;
    if (Base64::Decode(text, decoded)) {
        if (decoded.size() != Base64::DecodedLength(text) && text.back() == '=') {
            std::abort();
        }
        std::string again;
        if (!Base64::Decode(Base64::Encode(decoded), again) || again != decoded) {
            std::abort();
        }
    }
    std::string roundTrip;
    if (!text.empty() && (!Base64::Decode(Base64::Encode(text), roundTrip) || roundTrip != text)) {
        std::abort();
    }
    return 0;
}
