#include <cutils/properties.h>
#include <gtest/gtest.h>

#include <string>

#include "smarthome/SmartHomeLogger.h"
#include "smarthome/port/HostPort.h"
#include "support/TestSupport.h"

namespace smarthome {
namespace {

class MaskingTest : public testing::Test {
protected:
    void SetUp() override { port::clearSystemProperties(); }
    void TearDown() override { port::clearSystemProperties(); }

    const SmartHomeLogger logger{"Masking"};
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
    EXPECT_EQ(logger.obfuscateSecret("hunter2"), "hunter2");
    ASSERT_EQ(property_set("ro.build.type", "userdebug"), 0);
    EXPECT_EQ(logger.obfuscateSecret("hunter2"), "hunter2");
    port::clearSystemProperties();
    ASSERT_EQ(property_set("ro.build.type", "user"), 0);
    EXPECT_EQ(logger.obfuscateSecret("hunter2"), "XXXX");
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
