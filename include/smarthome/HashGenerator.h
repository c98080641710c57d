// SHA-256 digests as lower-case hex text, through the crypto library's digest interface.
// Thread-safety: stateless; safe from any thread.
#pragma once

#include <string>

namespace smarthome {

class HashGenerator {
public:
    // outHex becomes the 64 hex digits of the SHA-256 of input; false (logged) when a
    // digest step fails, outHex then unchanged.
    static bool sha256(const std::string& input, std::string& outHex);
};

}  // namespace smarthome
