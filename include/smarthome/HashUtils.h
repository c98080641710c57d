// Fast non-cryptographic hashes and a checksummed text encoding (Base64 of the payload
// followed by the 64 hex digits of its SHA-256), used to detect corrupted stored values.
// Thread-safety: stateless; safe from any thread.
#pragma once

#include <string>

namespace smarthome {

class HashUtils {
public:
    // 32-bit MurmurHash2 of the bytes.
    static unsigned int MurmurHash(const std::string& data, unsigned int seed);
    // Despite its name: the 64-bit FNV-1a hash of the bytes.
    static unsigned long long Sha256Hash(const std::string& data);
    // "" for an empty input or when hashing fails (both logged).
    static std::string EncodeWithChecksum(const std::string& plain);
    // True with the payload in plain when the checksum matches; an empty input gives true
    // with an empty plain. Every failure is logged and leaves plain unchanged.
    static bool DecodeAndCheck(const std::string& encoded, std::string& plain);
};

}  // namespace smarthome
