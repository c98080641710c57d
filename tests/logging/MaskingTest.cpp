#include <cutils/properties.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smarthome-host/HostPort.h"
#include "smarthome/SmartHomeLogger.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

class MaskingTest : public testing::Test {
protected:
    void SetUp() override { port::clearSystemProperties(); }
    void TearDown() override { port::clearSystemProperties(); }

    const SmartHomeLogger logger = SmartHomeLogger("Masking");
    test::LogCapture capture;  // masking never logs
};

TEST_F(MaskingTest, MacsKeepTheirLastTwoOctetsAndSeparators) {
    EXPECT_EQ(logger.obfuscateMac("AA:BB:CC:DD:EE:FF"), "XX:XX:XX:XX:EE:FF");
    EXPECT_EQ(logger.compressAndObfuscateMac("AA:BB:CC:DD:EE:FF"), "XXXEE:FF");
    EXPECT_EQ(logger.obfuscateMac("00-11-22-33-44-55-66-77"), "XX-XX-XX-XX-XX-XX-66-77");
    EXPECT_EQ(logger.obfuscateMac("aa:bb:cc:dd:ee:ff:00"), "XX:XX:XX:XX:XX:ff:00");
    EXPECT_EQ(logger.obfuscateMac("AA:BB-CC:DD:EE:FF"), "AA:BB-CC:DD:EE:FF");
    EXPECT_EQ(logger.obfuscateMac(" AA:BB:CC:DD:EE:FF"), " AA:BB:CC:DD:EE:FF");
    EXPECT_EQ(logger.obfuscateMac("AA:BB:CC:DD:EE"), "AA:BB:CC:DD:EE");
    EXPECT_EQ(logger.obfuscateMac("not a mac"), "not a mac");
    EXPECT_EQ(logger.obfuscateMac(""), "");
}

TEST_F(MaskingTest, IpsKeepTheirLastTwoPartsAndOthersBecomeXXX) {
    EXPECT_EQ(logger.obfuscateIp("192.168.1.20"), "XXX.XXX.1.20");
    EXPECT_EQ(logger.obfuscateIp(" 10.0.0.1 "), "XXX.XXX.0.1");
    EXPECT_EQ(logger.obfuscateIp("001.002.003.004"), "XXX.XXX.003.004");
    EXPECT_EQ(logger.obfuscateIp("256.1.1.1"), "XXX");
    EXPECT_EQ(logger.obfuscateIp("1.2.3"), "XXX");
    EXPECT_EQ(logger.obfuscateIp(""), "");
}

TEST_F(MaskingTest, UidsTakeTheFirstRuleThatRecognisesThem) {
    EXPECT_EQ(logger.obfuscateUid("AA:BB:CC:DD:EE:FF"), "XX:XX:XX:XX:EE:FF");
    EXPECT_EQ(logger.compressAndObfuscateUid("AA:BB:CC:DD:EE:FF"), "XXXEE:FF");
    EXPECT_EQ(logger.obfuscateUid("192.168.1.20"), "XXX.XXX.1.20");
    EXPECT_EQ(logger.obfuscateUid("0123456789abcdef0123456789abcdef"), "XXXXXXXXXXXX456789abcdef");
    EXPECT_EQ(logger.compressAndObfuscateUid("0123456789abcdef0123456789abcdef"),
              "XXX456789abcdef");
    EXPECT_EQ(logger.obfuscateUid("1a2b_3c4d_ABC123"), "1a2b_3c4d_XXX1a2b");
    EXPECT_EQ(logger.obfuscateUid("999.1.1.1"), "XXX999.");
    const std::string dashed = "01234567-89ab-cdef-0123-456789abcdef";
    EXPECT_EQ(logger.obfuscateUid(dashed), dashed);
    EXPECT_EQ(logger.obfuscateUid("plain"), "plain");
    EXPECT_EQ(logger.obfuscateUid(""), "");
}

TEST_F(MaskingTest, EndpointIdsKeepTheirFirstFourCharacters) {
    EXPECT_EQ(logger.obfuscateUsbEpId("1a2b_3c4d_ABC123"), "1a2b_3c4d_XXX1a2b");
    EXPECT_EQ(logger.obfuscateUsbEpId("Hue12345"), "XXXHue1");
    EXPECT_EQ(logger.obfuscateUsbEpId("abcdefgh"), "XXX");
    EXPECT_EQ(logger.obfuscateUsbEpId("ab1"), "XXX");
    EXPECT_EQ(logger.obfuscateUsbEpId("a1234567890123456789"), "XXX");
    EXPECT_EQ(logger.obfuscateUsbEpId(""), "");
}

TEST_F(MaskingTest, HueSerialsKeepTheirLastTwoCharacters) {
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue("00178810ABCD"), "XXXXXXXXXXCD");
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue("7"), "X");
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue("AB"), "XX");
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue("ABC"), "XBC");
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue(" ABC "), "XBC");
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue(""), "");
}

TEST_F(MaskingTest, SecretsAreMaskedOnlyOnUserBuilds) {
    // Unset: the property read reports the missing property, the secret stays in clear.
    EXPECT_EQ(logger.obfuscateSecret("hunter2"), "hunter2");
    ASSERT_EQ(capture.lines().size(), 1u);
    EXPECT_EQ(
        capture.texts(6, "SmartHome:SystemPropertyWrapper"),
        std::vector<std::string>{"getSystemProperty:event=PropertyDoesNotExist, action=return"});
    capture.clear();

    for (const char* buildType : {"userdebug", "eng", "users", "User"}) {
        port::clearSystemProperties();  // "ro." properties are write-once
        ASSERT_EQ(property_set("ro.build.type", buildType), 0);
        EXPECT_EQ(logger.obfuscateSecret("hunter2"), "hunter2") << buildType;
    }
    port::clearSystemProperties();
    ASSERT_EQ(property_set("ro.build.type", "user"), 0);
    EXPECT_EQ(logger.obfuscateSecret("hunter2"), "XXXX");
    EXPECT_EQ(logger.obfuscateSecret(""), "XXXX");
    // Read on every call, not cached.
    port::clearSystemProperties();
    ASSERT_EQ(property_set("ro.build.type", "eng"), 0);
    EXPECT_EQ(logger.obfuscateSecret("hunter2"), "hunter2");
    EXPECT_TRUE(capture.lines().empty());
}

TEST_F(MaskingTest, HugeAndBinaryInputsGetTheirDocumentedResults) {
    const std::string hexes(1 << 20, 'a');
    EXPECT_EQ(logger.obfuscateUid(hexes), hexes);
    EXPECT_EQ(logger.obfuscateMac(hexes), hexes);
    EXPECT_EQ(logger.obfuscateIp(hexes), "XXX");
    EXPECT_EQ(logger.obfuscateUsbEpId(hexes), "XXX");
    const std::string blanks(1 << 20, ' ');
    EXPECT_EQ(logger.obfuscateIp(blanks + "10.0.0.1" + blanks), "XXX.XXX.0.1");
    EXPECT_EQ(logger.obfuscateIp(blanks), "XXX");
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue(blanks), "");
    // A serial of any length is still an endpoint id.
    const std::string longSerial = "1a2b_3c4d_" + std::string(1 << 20, 'Z');
    EXPECT_EQ(logger.obfuscateUsbEpId(longSerial), "1a2b_3c4d_XXX1a2b");
    EXPECT_EQ(logger.compressAndObfuscateUid(longSerial), "1a2b_3c4d_XXX1a2b");

    // NUL and non-ASCII bytes are neither identifier characters nor blanks.
    const std::string macNul("AA:BB:CC:DD:EE:FF\0", 18);
    EXPECT_EQ(logger.obfuscateMac(macNul), macNul);
    EXPECT_EQ(logger.obfuscateIp(std::string("10.0.0.1\0", 9)), "XXX");
    EXPECT_EQ(logger.obfuscateIp(std::string("\xa0") + "10.0.0.1"), "XXX");
    EXPECT_EQ(logger.obfuscateUsbEpId("Hue1234\xe9"), "XXX");
    const std::string binary("\0\xff\x80\x01", 4);
    EXPECT_EQ(logger.obfuscateUid(binary), binary);
    EXPECT_EQ(logger.obfuscateSerialForPhilipsHue(binary), std::string("XX\x80\x01", 4));
    EXPECT_TRUE(capture.lines().empty());
}

TEST_F(MaskingTest, JsonMembersAreMaskedAtEveryDepthInOrder) {
    std::string json =
        R"({"token":"abc","list":[{"token":42,"keep":1}],"a":{"b":"c"},"z":[[{"token":null}]]})";
    const std::string original = json;
    EXPECT_EQ(logger.obfuscateJsonObjectForKey(json, "token"),
              R"({"token":"XXXX","list":[{"token":"XXXX","keep":1}],"a":{"b":"c"},)"
              R"("z":[[{"token":"XXXX"}]]})");
    EXPECT_EQ(json, original);
    std::string notJson = "{token:";
    EXPECT_EQ(logger.obfuscateJsonObjectForKey(notJson, "token"), "");
    std::string empty = "[]";
    EXPECT_EQ(logger.obfuscateJsonObjectForKey(empty, "token"), "[]");
    std::string deep = std::string(100000, '[') + std::string(100000, ']');
    EXPECT_EQ(logger.obfuscateJsonObjectForKey(deep, "token"), "");
    std::string duplicate = R"({"k":1,"k":2})";
    EXPECT_EQ(logger.obfuscateJsonObjectForKey(duplicate, "k"), R"({"k":"XXXX","k":2})");
    // A masked object is not searched further; its siblings are.
    std::string nested = R"({"k":{"k":1},"m":{"k":[1]}})";
    EXPECT_EQ(logger.obfuscateJsonObjectForKey(nested, "k"), R"({"k":"XXXX","m":{"k":"XXXX"}})");
    std::string scalar = "7";
    EXPECT_EQ(logger.obfuscateJsonObjectForKey(scalar, "k"), "7");
    // Parse errors are not reported.
    EXPECT_TRUE(capture.lines().empty());
}

TEST_F(MaskingTest, LoggersWithAnIdCarryItsCompressedMask) {
    EXPECT_EQ(SmartHomeLogger("Zigbee", "AA:BB:CC:DD:EE:FF").getTag(),
              "SmartHome:Zigbee(XXXEE:FF)");
    EXPECT_EQ(SmartHomeLogger({"Hue", "Bridge"}, "192.168.1.20").getTag(),
              "SmartHome:Hue:Bridge(XXX.XXX.1.20)");
    EXPECT_EQ(SmartHomeLogger("Dev", "").getTag(), "SmartHome:Dev()");
    EXPECT_TRUE(capture.lines().empty());
}

}  // namespace
}  // namespace smarthome
