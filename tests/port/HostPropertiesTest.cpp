#include <cutils/properties.h>
#include <gtest/gtest.h>

#include <string>

#include "smarthome-host/HostPort.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

class HostProperties : public testing::Test {
protected:
    void SetUp() override { port::clearSystemProperties(); }
    void TearDown() override { port::clearSystemProperties(); }

    static std::string get(const char* key, const char* defaultValue = nullptr,
                           int* length = nullptr) {
        char value[PROP_VALUE_MAX];
        int written = property_get(key, value, defaultValue);
        if (length != nullptr) {
            *length = written;
        }
        EXPECT_EQ(static_cast<size_t>(written), std::string(value).size());
        return value;
    }
};

TEST_F(HostProperties, GetFallsBackToTheDefaultForMissingOrEmptyValues) {
    int length = -1;
    EXPECT_EQ(get("missing", "dflt", &length), "dflt");
    EXPECT_EQ(length, 4);
    EXPECT_EQ(get("missing", nullptr, &length), "");
    EXPECT_EQ(length, 0);
    ASSERT_EQ(property_set("persist.empty", ""), 0);
    EXPECT_EQ(get("persist.empty", "dflt"), "dflt");
    ASSERT_EQ(property_set("persist.set", "value"), 0);
    EXPECT_EQ(get("persist.set", "dflt", &length), "value");
    EXPECT_EQ(length, 5);
    std::string longDefault(200, 'd');
    EXPECT_EQ(get("missing", longDefault.c_str(), &length), std::string(91, 'd'));
    EXPECT_EQ(length, 91);
}

TEST_F(HostProperties, SetEnforcesNamesAndValueRules) {
    EXPECT_EQ(property_set("a.b-c_d@e:f9", "ok"), 0);
    for (const char* bad : {"", ".lead", "trail.", "dou..ble", "sp ace", "sl/ash", "h\xc3\xa9"}) {
        EXPECT_EQ(property_set(bad, "v"), -1) << bad;
    }
    EXPECT_EQ(property_set(nullptr, "v"), -1);
    EXPECT_EQ(property_set("null.value", nullptr), 0);
    EXPECT_EQ(get("null.value", "d"), "d");

    // PROPERTY_KEY_MAX sizes a caller's name buffer; the store keeps longer names whole.
    static_assert(PROPERTY_KEY_MAX == 32, "the device's name size");
    const size_t nameLengths[] = {31, 32, 33, 200};
    for (size_t length : nameLengths) {
        const std::string name(length, 'k');
        EXPECT_EQ(property_set(name.c_str(), std::to_string(length).c_str()), 0) << length;
    }
    for (size_t length : nameLengths) {
        EXPECT_EQ(get(std::string(length, 'k').c_str()), std::to_string(length)) << length;
    }

    EXPECT_EQ(property_set("long.value", std::string(91, 'v').c_str()), 0);
    EXPECT_EQ(property_set("long.value", std::string(92, 'v').c_str()), -1);
    EXPECT_EQ(get("long.value"), std::string(91, 'v'));
    EXPECT_EQ(property_set("bad.utf8", "\xc3"), -1);
    EXPECT_EQ(property_set("bad.utf8", "\xed\xa0\x80"), -1);
    EXPECT_EQ(property_set("good.utf8", "caf\xc3\xa9"), 0);
}

TEST_F(HostProperties, ReadOnlyPropertiesAreWrittenOnceAndMayBeLong) {
    EXPECT_EQ(property_set("ro.build.type", "user"), 0);
    EXPECT_EQ(property_set("ro.build.type", "user"), -1);
    EXPECT_EQ(property_set("ro.build.type", "eng"), -1);
    EXPECT_EQ(get("ro.build.type"), "user");
    EXPECT_EQ(property_set("ro.long", std::string(300, 'r').c_str()), 0);
    EXPECT_EQ(get("ro.long"), std::string(91, 'r'));
    EXPECT_EQ(property_set("persist.x", "1"), 0);
    EXPECT_EQ(property_set("persist.x", "2"), 0);
    EXPECT_EQ(get("persist.x"), "2");
}

TEST_F(HostProperties, BoolFollowsTheDeviceSpellings) {
    struct Case {
        const char* value;
        bool withFalseDefault;
        bool withTrueDefault;
    };
    const Case cases[] = {
        {"1", true, true},       {"y", true, true},     {"yes", true, true}, {"true", true, true},
        {"on", true, true},      {"0", false, false},   {"n", false, false}, {"no", false, false},
        {"false", false, false}, {"off", false, false}, {"Y", false, true},  {"TRUE", false, true},
        {" yes", false, true},   {"yes ", false, true}, {"2", false, true},  {"nope", false, true}};
    for (const auto& c : cases) {
        ASSERT_EQ(property_set("test.flag", c.value), 0);
        EXPECT_EQ(property_get_bool("test.flag", false), c.withFalseDefault) << c.value;
        EXPECT_EQ(property_get_bool("test.flag", true), c.withTrueDefault) << c.value;
    }
    EXPECT_TRUE(property_get_bool("missing", true));
    EXPECT_FALSE(property_get_bool("missing", false));
}

TEST_F(HostProperties, IntegersParseWithBaseZeroAndFallBackOnRange) {
    auto int32 = [](const char* value, int32_t fallback) {
        EXPECT_EQ(property_set("test.int", value), 0);
        return property_get_int32("test.int", fallback);
    };
    EXPECT_EQ(int32("42", -1), 42);
    EXPECT_EQ(int32("0x1f", -1), 31);
    EXPECT_EQ(int32("010", -1), 8);
    EXPECT_EQ(int32("  -7", -1), -7);
    EXPECT_EQ(int32("12abc", -1), 12);
    EXPECT_EQ(int32("abc", -1), -1);
    EXPECT_EQ(int32("2147483647", -1), 2147483647);
    EXPECT_EQ(int32("2147483648", -1), -1);
    EXPECT_EQ(int32("-2147483649", -1), -1);
    EXPECT_EQ(int32("", 5), 5);
    EXPECT_EQ(property_get_int32("missing", 9), 9);

    ASSERT_EQ(property_set("test.int64", "9223372036854775807"), 0);
    EXPECT_EQ(property_get_int64("test.int64", 0), INT64_MAX);
    ASSERT_EQ(property_set("test.int64", "9223372036854775808"), 0);
    EXPECT_EQ(property_get_int64("test.int64", 3), 3);
}

TEST_F(HostProperties, LoadReadsKeyValueLinesAndClearEmptiesTheStore) {
    test::TempDir dir;
    std::string path = dir.file("props");
    ASSERT_TRUE(test::writeFile(path,
                                "# comment\n\nro.build.type = userdebug\npersist.a=1=2\nnoequals\n"
                                "  spaced.key=  v  \n"));
    ASSERT_TRUE(port::loadSystemProperties(path));
    EXPECT_EQ(get("ro.build.type"), "userdebug");
    EXPECT_EQ(get("persist.a"), "1=2");
    EXPECT_EQ(get("spaced.key"), "v");
    EXPECT_EQ(get("noequals", "none"), "none");
    EXPECT_FALSE(port::loadSystemProperties(dir.file("absent")));
    port::clearSystemProperties();
    EXPECT_EQ(get("ro.build.type", "gone"), "gone");
}

}  // namespace
}  // namespace smarthome
