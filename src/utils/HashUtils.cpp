#include "smarthome/HashUtils.h"

#include <cstdint>

#include "smarthome/Base64.h"
#include "smarthome/HashGenerator.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("HashUtils");
constexpr size_t kChecksumLength = 64;

}  // namespace

unsigned int HashUtils::MurmurHash(const std::string& data, unsigned int seed) {
    const uint32_t m = 0x5bd1e995;
    const int r = 24;
    size_t length = data.size();
    const auto* bytes = reinterpret_cast<const unsigned char*>(data.data());
    uint32_t h = seed ^ static_cast<uint32_t>(length);
    while (length >= 4) {
        uint32_t k = static_cast<uint32_t>(bytes[0]) | (static_cast<uint32_t>(bytes[1]) << 8) |
                     (static_cast<uint32_t>(bytes[2]) << 16) |
                     (static_cast<uint32_t>(bytes[3]) << 24);
        k *= m;
        k ^= k >> r;
        k *= m;
        h *= m;
        h ^= k;
        bytes += 4;
        length -= 4;
    }
    switch (length) {
        case 3:
            h ^= static_cast<uint32_t>(bytes[2]) << 16;
            [[fallthrough]];
        case 2:
            h ^= static_cast<uint32_t>(bytes[1]) << 8;
            [[fallthrough]];
        case 1:
            h ^= bytes[0];
            h *= m;
            break;
        default:
            break;
    }
    h ^= h >> 13;
    h *= m;
    h ^= h >> 15;
    return h;
}

unsigned long long HashUtils::Sha256Hash(const std::string& data) {
    unsigned long long hash = 0xcbf29ce484222325ULL;
    for (unsigned char byte : data) {
        hash ^= byte;
        hash *= 0x100000001b3ULL;
    }
    return hash;
}

std::string HashUtils::EncodeWithChecksum(const std::string& plain) {
    if (plain.empty()) {
        logger.w("%s:NoEncodeForEmptyString. Return empty string.", "EncodeWithChecksum");
        return {};
    }
    std::string hash;
    if (!HashGenerator::sha256(plain, hash)) {
        logger.e("%s:fail to generate sha256 hash", "EncodeWithChecksum");
        return {};
    }
    std::string combined = plain + hash;
    logger.d("%s:hashed string: %s", "EncodeWithChecksum", hash.c_str());
    logger.d("%s:combinedString: %s", "EncodeWithChecksum", combined.c_str());
    return Base64::Encode(combined);
}

bool HashUtils::DecodeAndCheck(const std::string& encoded, std::string& plain) {
    if (encoded.empty()) {
        logger.w("%s:NoDecodeForEmptyString. Return empty string.", "DecodeAndCheck");
        plain.clear();
        return true;
    }
    std::string decoded;
    if (!Base64::Decode(encoded, decoded)) {
        logger.e("%s:fail to decode input string: %s", "DecodeAndCheck", encoded.c_str());
        return false;
    }
    if (decoded.size() <= kChecksumLength) {
        logger.e("%s:decodedString len is too short. len: %d", "DecodeAndCheck",
                 static_cast<int>(decoded.size()));
        return false;
    }
    logger.d("%s:decodedString: %s", "DecodeAndCheck", decoded.c_str());
    std::string payload = decoded.substr(0, decoded.size() - kChecksumLength);
    std::string checksum = decoded.substr(decoded.size() - kChecksumLength);
    std::string computed;
    if (!HashGenerator::sha256(payload, computed)) {
        logger.e("%s:fail to generate sha256 hash", "DecodeAndCheck");
        return false;
    }
    if (checksum != computed) {
        logger.e("%s:checksum mismatch", "DecodeAndCheck");
        return false;
    }
    plain = payload;
    logger.d("%s:out: %s", "DecodeAndCheck", plain.c_str());
    return true;
}

}  // namespace smarthome
