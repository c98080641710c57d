#include "smarthome/HashUtils.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smarthome/Base64.h"
#include "smarthome/HashGenerator.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const char kTag[] = "SmartHome:HashUtils";

TEST(HashGenerator, Sha256KnownAnswers) {
    const std::pair<std::string, std::string> vectors[] = {
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"}};
    for (const auto& v : vectors) {
        std::string hex;
        EXPECT_TRUE(HashGenerator::sha256(v.first, hex));
        EXPECT_EQ(hex, v.second);
    }
}

TEST(HashUtils, MurmurHash2MatchesAnIndependentImplementation) {
    // Values from a separate, straightforward implementation of MurmurHash2 (one per tail
    // length, bytes with the high bit set, and the largest seed).
    EXPECT_EQ(HashUtils::MurmurHash("", 0), 0u);
    EXPECT_EQ(HashUtils::MurmurHash("ab", 0), 446775395u);
    EXPECT_EQ(HashUtils::MurmurHash("hello!", 42), 3116761673u);
    EXPECT_EQ(HashUtils::MurmurHash(std::string(5, '\0'), 0xffffffffu), 1284185937u);
    std::string allBytes;
    for (int i = 0; i < 256; ++i) {
        allBytes += static_cast<char>(i);
    }
    EXPECT_EQ(HashUtils::MurmurHash(allBytes, 0x12345678), 2773879562u);
    EXPECT_EQ(HashUtils::MurmurHash("a", 0), 2456313694u);
    EXPECT_EQ(HashUtils::MurmurHash("abc", 0), 324500635u);
    EXPECT_EQ(HashUtils::MurmurHash("abcd", 1), 3376380438u);
    EXPECT_EQ(HashUtils::MurmurHash("hello world", 0x9747b28c), 1221641059u);
    EXPECT_EQ(HashUtils::MurmurHash("The quick brown fox jumps over the lazy dog", 0x9747b28c),
              495243318u);
    EXPECT_EQ(HashUtils::MurmurHash("\xff\x80\x01", 7), 838131374u);
}

TEST(HashUtils, Sha256HashIsFnv1a64) {
    EXPECT_EQ(HashUtils::Sha256Hash(""), 14695981039346656037ULL);
    EXPECT_EQ(HashUtils::Sha256Hash("a"), 0xaf63dc4c8601ec8cULL);
    EXPECT_EQ(HashUtils::Sha256Hash("foobar"), 0x85944171f73967e8ULL);
}

TEST(HashUtils, ChecksummedEncodingRoundTripsAnyBytes) {
    test::LogCapture capture;
    for (const std::string& plain : {std::string("x"), std::string("secret value"),
                                     std::string("\0\xff\x80 bin", 7), std::string(500, 'z')}) {
        std::string encoded = HashUtils::EncodeWithChecksum(plain);
        std::string decoded;
        ASSERT_TRUE(Base64::Decode(encoded, decoded));
        std::string hex;
        ASSERT_TRUE(HashGenerator::sha256(plain, hex));
        EXPECT_EQ(decoded, plain + hex);
        std::string back;
        EXPECT_TRUE(HashUtils::DecodeAndCheck(encoded, back));
        EXPECT_EQ(back, plain);
    }
    const std::string big(1 << 20, '\x9c');
    std::string back;
    EXPECT_TRUE(HashUtils::DecodeAndCheck(HashUtils::EncodeWithChecksum(big), back));
    EXPECT_EQ(back, big);
}

TEST(HashUtils, DebugLinesShowHashCombinationAndPayload) {
    std::string hex;
    ASSERT_TRUE(HashGenerator::sha256("x", hex));
    test::LogCapture capture;
    std::string encoded = HashUtils::EncodeWithChecksum("x");
    std::string plain;
    ASSERT_TRUE(HashUtils::DecodeAndCheck(encoded, plain));
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kTag),
              (std::vector<std::string>{"EncodeWithChecksum:hashed string: " + hex,
                                        "EncodeWithChecksum:combinedString: x" + hex,
                                        "DecodeAndCheck:decodedString: x" + hex,
                                        "DecodeAndCheck:out: x"}));
    EXPECT_EQ(capture.lines().size(), 4u);
}

TEST(HashUtils, DecodeAndCheckRefusesCorruption) {
    test::LogCapture capture;
    std::string plain = "kept";
    std::string hex;
    ASSERT_TRUE(HashGenerator::sha256("payload", hex));

    EXPECT_FALSE(HashUtils::DecodeAndCheck(Base64::Encode(hex), plain));
    EXPECT_FALSE(HashUtils::DecodeAndCheck("not base64!", plain));
    std::string upper = hex;
    upper[upper.find_first_of("abcdef")] ^= 0x20;
    EXPECT_FALSE(HashUtils::DecodeAndCheck(Base64::Encode("payload" + upper), plain));
    EXPECT_EQ(plain, "kept");
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{"DecodeAndCheck:decodedString len is too short. len: 64",
                                        "DecodeAndCheck:fail to decode input string: not base64!",
                                        "DecodeAndCheck:checksum mismatch"}));

    // Damaged texts: every one fails with a logged reason and never touches plain.
    const std::string good = HashUtils::EncodeWithChecksum("payload");
    std::string wrongPadding = good + "=";
    std::string flipped = good;
    flipped[2] = flipped[2] == 'A' ? 'B' : 'A';
    for (const std::string& bad :
         {good.substr(0, good.size() - 2), good.substr(0, good.size() - 4), wrongPadding,
          good.substr(1), flipped, std::string("\0\xff\x01", 3), std::string(1, '='),
          std::string(4097, '='), Base64::Encode(std::string(65, '\0'))}) {
        capture.clear();
        EXPECT_FALSE(HashUtils::DecodeAndCheck(bad, plain)) << bad;
        EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag).size(), 1u) << bad;
    }
    EXPECT_EQ(plain, "kept");

    capture.clear();
    EXPECT_TRUE(HashUtils::DecodeAndCheck("", plain));
    EXPECT_EQ(plain, "");
    EXPECT_EQ(HashUtils::EncodeWithChecksum(""), "");
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kTag),
              (std::vector<std::string>{
                  "DecodeAndCheck:NoDecodeForEmptyString. Return empty string.",
                  "EncodeWithChecksum:NoEncodeForEmptyString. Return empty string."}));
}

}  // namespace
}  // namespace smarthome
