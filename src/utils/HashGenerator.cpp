#include "smarthome/HashGenerator.h"

#include <openssl/evp.h>

#include <memory>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("HashGenerator");

struct DigestContextDeleter {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

}  // namespace

bool HashGenerator::sha256(const std::string& input, std::string& outHex) {
    std::unique_ptr<EVP_MD_CTX, DigestContextDeleter> context(EVP_MD_CTX_new());
    if (!context) {
        logger.e("%s:ctx allocation failed", "sha256");
        return false;
    }
    if (EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        logger.e("%s:EVP_DigestInit_ex failed", "sha256");
        return false;
    }
    if (EVP_DigestUpdate(context.get(), input.data(), input.size()) != 1) {
        logger.e("%s:EVP_DigestUpdate failed", "sha256");
        return false;
    }
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_DigestFinal_ex(context.get(), digest, &length) != 1) {
        return false;
    }
    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(static_cast<size_t>(length) * 2);
    for (unsigned int i = 0; i < length; ++i) {
        hex += kDigits[digest[i] >> 4];
        hex += kDigits[digest[i] & 0x0f];
    }
    outHex.swap(hex);
    return true;
}

}  // namespace smarthome
