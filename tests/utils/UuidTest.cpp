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
}

TEST(Uuid, Md5KnownAnswers) {
    EXPECT_EQ(Uuid::computeMd5Hash(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Uuid::computeMd5Hash("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(Uuid::computeMd5Hash("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Uuid::computeMd5Hash("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(Uuid::computeMd5Hash("abcdefghijklmnopqrstuvwxyz"),
              "c3fcd3d76192e4007dfb496cca67e13b");
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
