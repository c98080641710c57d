#include "smarthome/Uuid.h"

#include <openssl/evp.h>
#include <uuid/uuid.h>

#include <chrono>
#include <cstdint>
#include <random>

namespace smarthome {

namespace {

constexpr size_t kMd5Length = 16;

bool md5(const std::string& text, unsigned char (&digest)[kMd5Length]) {
    unsigned int length = 0;
    return EVP_Digest(text.data(), text.size(), digest, &length, EVP_md5(), nullptr) == 1 &&
           length == kMd5Length;
}

uint32_t randomSeed() {
    try {
        std::random_device device("/dev/urandom");
        return device();
    } catch (const std::exception&) {
        // No random device: the clock still gives distinct seeds per call.
        return static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
}

}  // namespace

std::string Uuid::generateRandomUUID() {
    static const char kDigits[] = "0123456789abcdef";
    std::mt19937 engine(randomSeed());
    std::uniform_int_distribution<int> digit(0, 15);
    std::uniform_int_distribution<int> variant(8, 11);
    std::string out;
    out.reserve(36);
    auto draw = [&](int count) {
        for (int i = 0; i < count; ++i) {
            out += kDigits[digit(engine)];
        }
    };
    draw(8);
    out += '-';
    draw(4);
    out += "-4";
    draw(3);
    out += '-';
    out += kDigits[variant(engine)];
    draw(3);
    out += '-';
    draw(12);
    return out;
}

// libuuid's own MD5 generator always hashes a namespace UUID ahead of the name, which gives a
// different value; the name-based form here hashes the bytes alone, so the digest comes from
// the crypto library and only the text formatting from libuuid.
std::string Uuid::nameUUIDFromString(const std::string& name) {
    unsigned char digest[kMd5Length];
    if (!md5(name, digest)) {
        return {};
    }
    digest[6] = static_cast<unsigned char>((digest[6] & 0x0f) | 0x30);  // version 3
    digest[8] = static_cast<unsigned char>((digest[8] & 0x3f) | 0x80);  // variant 10
    uuid_t uuid;
    static_assert(sizeof(uuid) == kMd5Length, "a UUID is 16 bytes");
    for (size_t i = 0; i < kMd5Length; ++i) {
        uuid[i] = digest[i];
    }
    char text[37];
    uuid_unparse_lower(uuid, text);
    return text;
}

std::string Uuid::computeMd5Hash(const std::string& text) {
    static const char kDigits[] = "0123456789abcdef";
    unsigned char digest[kMd5Length];
    if (!md5(text, digest)) {
        return {};
    }
    std::string hex;
    hex.reserve(2 * kMd5Length);
    for (unsigned char byte : digest) {
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 0x0f];
    }
    return hex;
}

}  // namespace smarthome
