#include "smarthome/Uuid.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

namespace smarthome {
namespace {

TEST(Uuid, NameBasedUuidsMatchTheJvmNameBasedForm) {
    // Reference texts: MD5 of the bytes with version 3 and the IETF variant, as the JVM's
    // name-based UUID prints them.
    EXPECT_EQ(Uuid::nameUUIDFromString(""), "d41d8cd9-8f00-3204-a980-0998ecf8427e");
    EXPECT_EQ(Uuid::nameUUIDFromString("hello"), "5d41402a-bc4b-3a76-b971-9d911017c592");
    EXPECT_EQ(Uuid::nameUUIDFromString("smarthome-device-1"),
              "1cb2d90a-dc27-3238-acb4-a772d02147de");
    EXPECT_EQ(Uuid::nameUUIDFromString(std::string("\0\xff", 2)),
              "d07d34ef-ac63-3800-bad6-7c7e0a985e00");
    EXPECT_EQ(Uuid::nameUUIDFromString("h\xc3\xa9llo"), "be50e847-8cf2-3ff3-995b-c7307fb91b50");
}

// The test suite of the MD5 definition.
TEST(Uuid, Md5KnownAnswers) {
    EXPECT_EQ(Uuid::computeMd5Hash(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Uuid::computeMd5Hash("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(Uuid::computeMd5Hash("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Uuid::computeMd5Hash("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(Uuid::computeMd5Hash("abcdefghijklmnopqrstuvwxyz"),
              "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(
        Uuid::computeMd5Hash("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
        "d174ab98d277d9f5a5611c2c9f419d9f");
    std::string digits;
    for (int i = 0; i < 8; ++i) {
        digits += "1234567890";
    }
    EXPECT_EQ(Uuid::computeMd5Hash(digits), "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Uuid, RandomUuidsAreVersionFourAndDistinct) {
    const std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 200; ++i) {
        std::string uuid = Uuid::generateRandomUUID();
        EXPECT_TRUE(std::regex_match(uuid, form)) << uuid;
        seen.insert(uuid);
    }
    EXPECT_EQ(seen.size(), 200u);
}

}  // namespace
}  // namespace smarthome
