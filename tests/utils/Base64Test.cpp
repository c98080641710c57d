#include "smarthome/Base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace smarthome {
namespace {

TEST(Base64, Rfc4648Vectors) {
    const std::pair<std::string, std::string> vectors[] = {{"", ""},
                                                           {"f", "Zg=="},
                                                           {"fo", "Zm8="},
                                                           {"foo", "Zm9v"},
                                                           {"foob", "Zm9vYg=="},
                                                           {"fooba", "Zm9vYmE="},
                                                           {"foobar", "Zm9vYmFy"}};
    for (const auto& v : vectors) {
        EXPECT_EQ(Base64::Encode(v.first), v.second);
        std::string decoded = "untouched";
        EXPECT_EQ(Base64::Decode(v.second, decoded), !v.first.empty()) << v.second;
        if (!v.first.empty()) {
            EXPECT_EQ(decoded, v.first);
            EXPECT_EQ(Base64::DecodedLength(v.second), v.first.size());
        }
    }
}

TEST(Base64, BinaryRoundTripsAndUnpaddedInputDecodes) {
    std::mt19937 random(7);
    for (size_t length = 1; length < 70; ++length) {
        std::string bytes(length, '\0');
        for (char& c : bytes) {
            c = static_cast<char>(random());
        }
        std::string encoded = Base64::Encode(bytes);
        std::string decoded;
        ASSERT_TRUE(Base64::Decode(encoded, decoded));
        EXPECT_EQ(decoded, bytes);
        std::string unpadded = encoded.substr(0, encoded.find('='));
        ASSERT_TRUE(Base64::Decode(unpadded, decoded)) << unpadded;
        EXPECT_EQ(decoded, bytes);
    }
}

TEST(Base64, BadInputIsRefused) {
    std::string out = "kept";
    for (const char* bad : {"Zm9v!", "Zm 9v", "Z", "Zm9vY", "=", "==", "Zg===", "Zg=a",
                            "Z===", "Zm9=Zm9v", "\xff\xfe"}) {
        EXPECT_FALSE(Base64::Decode(bad, out)) << bad;
        EXPECT_EQ(out, "kept");
    }
    EXPECT_EQ(Base64::DecodedLength("Zg=="), 1u);
    EXPECT_EQ(Base64::DecodedLength("Zm9vYg"), 4u);
    EXPECT_EQ(Base64::DecodedLength("===="), 0u);
}

TEST(Base64, LookupCoversExactlyTheAlphabet) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (int c = 0; c < 256; ++c) {
        size_t index = alphabet.find(static_cast<char>(c));
        int expected = c != 0 && index != std::string::npos ? static_cast<int>(index) : -1;
        EXPECT_EQ(Base64::b64_lookup(static_cast<char>(c)), expected) << c;
    }
    const unsigned char man[4] = {19, 22, 5, 46};  // "TWFu"
    unsigned char out[3] = {};
    Base64::a4_to_a3(out, man);
    EXPECT_EQ(std::string(out, out + 3), "Man");
}

TEST(Base64, LargeInputRoundTrips) {
    std::string bytes(3 * 1024 * 1024 + 1, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i * 31 + 7);
    }
    std::string encoded = Base64::Encode(bytes);
    EXPECT_EQ(encoded.size(), (bytes.size() + 2) / 3 * 4);
    EXPECT_EQ(Base64::DecodedLength(encoded), bytes.size());
    std::string decoded;
    ASSERT_TRUE(Base64::Decode(encoded, decoded));
    EXPECT_EQ(decoded, bytes);
}

TEST(Base64, CallerBufferIsNeverOverrun) {
    const std::string encoded = Base64::Encode("foobar!");  // 7 bytes
    for (unsigned size = 0; size <= 8; ++size) {
        std::vector<unsigned char> buffer(size + 16, 0xAA);
        bool ok = Base64::Decode(encoded, buffer.data(), size);
        EXPECT_EQ(ok, size >= 7) << size;
        for (size_t k = size; k < buffer.size(); ++k) {
            ASSERT_EQ(buffer[k], 0xAA) << "wrote past " << size;
        }
        if (ok) {
            EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + 7), "foobar!");
        }
        // An exactly sized heap block, so that AddressSanitizer sees any overrun.
        std::vector<unsigned char> exact(size);
        EXPECT_EQ(Base64::Decode(encoded, exact.data(), size), ok);
    }
    // Padded forms need exactly their decoded length, not a whole group of three.
    for (const char* padded : {"Zg==", "Zm8="}) {
        const unsigned length = Base64::DecodedLength(padded);
        std::vector<unsigned char> buffer(length + 4, 0xAA);
        EXPECT_TRUE(Base64::Decode(padded, buffer.data(), length)) << padded;
        EXPECT_FALSE(Base64::Decode(padded, buffer.data(), length - 1)) << padded;
        EXPECT_EQ(buffer[length], 0xAA);
    }
    EXPECT_FALSE(Base64::Decode(encoded, nullptr, 10));
    EXPECT_TRUE(Base64::Decode("", nullptr, 0));
}

}  // namespace
}  // namespace smarthome
