#include "smarthome/JSONUtil.h"

#include <android/log.h>
#include <gtest/gtest.h>
#include <rapidjson/error/en.h>

#include <random>
#include <string>

#include "smarthome/SmartHomeLogger.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

using test::LogCapture;

std::string nested(unsigned depth, char open = '[', char close = ']') {
    return std::string(depth, open) + std::string(depth, close);
}

TEST(JSONUtilParse, NestingUpToTheLimitParsesAndOneMoreIsTerminated) {
    JSONDocument doc;
    EXPECT_FALSE(JSONUtil::parse(doc, nested(JSONUtil::kMaxParseDepth)).IsError());
    EXPECT_TRUE(doc.IsArray());

    rapidjson::ParseResult result = JSONUtil::parse(doc, nested(JSONUtil::kMaxParseDepth + 1));
    EXPECT_EQ(result.Code(), rapidjson::kParseErrorTermination);
    EXPECT_STREQ(rapidjson::GetParseError_En(result.Code()),
                 "Terminate parsing due to Handler error.");
    EXPECT_EQ(result.Offset(), JSONUtil::kMaxParseDepth + 1);  // just past the refused bracket

    std::string objects;
    for (unsigned i = 0; i < JSONUtil::kMaxParseDepth + 1; ++i) {
        objects += "{\"a\":";
    }
    objects += "1" + std::string(JSONUtil::kMaxParseDepth + 1, '}');
    EXPECT_EQ(JSONUtil::parse(doc, objects).Code(), rapidjson::kParseErrorTermination);
}

TEST(JSONUtilParse, VeryDeepDocumentsFailCleanly) {
    JSONDocument doc;
    EXPECT_TRUE(JSONUtil::parse(doc, std::string(200000, '[')).IsError());
    EXPECT_EQ(JSONUtil::createArrayFromString(nested(100000)), nullptr);
    EXPECT_EQ(JSONUtil::createFromString(nested(100000, '{', '}')), nullptr);
}

TEST(JSONUtilParse, FailedParseKeepsThePreviousValue) {
    JSONDocument doc;
    ASSERT_FALSE(JSONUtil::parse(doc, "{\"k\":1}").IsError());
    EXPECT_TRUE(JSONUtil::parse(doc, "{\"k\":").IsError());
    ASSERT_TRUE(doc.IsObject());
    EXPECT_EQ(doc["k"].GetInt(), 1);
}

// Below the depth limit the limited parse must behave exactly like RapidJSON's own:
// same error code, same offset, same value.
TEST(JSONUtilParse, MatchesThePlainParserBelowTheLimit) {
    const std::string fragments[] = {"{",           "}", "[",           "]",    "\"a\"", ":",
                                     ",",           "1", "-0.5e3",      "true", "null",  " ",
                                     "\"\\u00e9\"", "x", "\"\\ud800\"", "1e999"};
    std::mt19937 random(12345);
    for (int n = 0; n < 20000; ++n) {
        std::string text;
        int pieces = static_cast<int>(random() % 12);
        for (int k = 0; k < pieces; ++k) {
            text += fragments[random() % (sizeof(fragments) / sizeof(fragments[0]))];
        }
        JSONDocument plain;
        plain.Parse(text.c_str());
        JSONDocument limited;
        rapidjson::ParseResult result = JSONUtil::parse(limited, text);
        ASSERT_EQ(result.Code(), plain.GetParseError()) << text;
        ASSERT_EQ(result.Offset(), plain.GetErrorOffset()) << text;
        if (!result.IsError()) {
            ASSERT_EQ(JSONUtil::getStringForJSON(limited), JSONUtil::getStringForJSON(plain));
        }
    }
}

TEST(JSONUtilCreate, RootTypeDecides) {
    EXPECT_EQ(JSONUtil::createFromString(""), nullptr);
    EXPECT_EQ(JSONUtil::createFromString("[1]"), nullptr);
    EXPECT_EQ(JSONUtil::createFromString("{"), nullptr);
    auto object = JSONUtil::createFromString("{}");
    ASSERT_NE(object, nullptr);
    EXPECT_TRUE(object->IsObject());
    EXPECT_NE(JSONUtil::createArrayFromString("[]"), nullptr);
    EXPECT_EQ(JSONUtil::createArrayFromString("{}"), nullptr);
    EXPECT_EQ(JSONUtil::createArrayFromString("3"), nullptr);
}

TEST(JSONUtilCreate, ParseIntoValueLogsTheEnglishMessageAndTheSource) {
    LogCapture capture;
    SmartHomeLogger logger("Parser");
    JSONDocument doc;
    EXPECT_TRUE(JSONUtil::parseIntoValue(doc, "{\"a\":[1,2]}", &logger));
    EXPECT_TRUE(capture.lines().empty());
    EXPECT_FALSE(JSONUtil::parseIntoValue(doc, "{\"a\" 1}", &logger));
    EXPECT_FALSE(JSONUtil::parseIntoValue(doc, "", &logger));
    EXPECT_TRUE(JSONUtil::parseIntoValue(doc, "[]", nullptr));
    EXPECT_FALSE(JSONUtil::parseIntoValue(doc, nested(600), nullptr));
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].priority, ANDROID_LOG_ERROR);
    EXPECT_EQ(lines[0].tag, "SmartHome:Parser");
    EXPECT_EQ(lines[0].text,
              "event=parserError,reason=failedToParse,action=invalid,parseError=Missing a colon "
              "after a name of object member.,source={\"a\" 1}");
    EXPECT_EQ(lines[1].text,
              "event=parserError,reason=failedToParse,action=invalid,parseError=The document is "
              "empty.,source=");
}

TEST(JSONUtilCreate, ParseFromFile) {
    test::TempDir dir;
    JSONDocument doc;
    EXPECT_FALSE(JSONUtil::parseJSONFromFile(dir.file("missing.json"), doc));
    ASSERT_TRUE(test::writeFile(dir.file("ok.json"), "{\"list\": [1, 2, {\"x\": null}]}\n"));
    EXPECT_TRUE(JSONUtil::parseJSONFromFile(dir.file("ok.json"), doc));
    EXPECT_EQ(JSONUtil::getStringForJSON(doc), "{\"list\":[1,2,{\"x\":null}]}");
    ASSERT_TRUE(test::writeFile(dir.file("bad.json"), "{\"list\": [1, 2"));
    EXPECT_FALSE(JSONUtil::parseJSONFromFile(dir.file("bad.json"), doc));
    ASSERT_TRUE(test::writeFile(dir.file("deep.json"), nested(5000)));
    EXPECT_FALSE(JSONUtil::parseJSONFromFile(dir.file("deep.json"), doc));
    EXPECT_FALSE(JSONUtil::parseJSONFromFile(dir.path(), doc));
}

class JSONUtilGetters : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(JSONUtil::parse(doc, R"({"n":null,"s":"v","a":[1],"o":{}})").IsError());
    }
    JSONDocument doc;
    JSONValue fallback{7};
};

TEST_F(JSONUtilGetters, OptionalGettersFallBack) {
    EXPECT_EQ(JSONUtil::getOptionalValue(doc, "s", fallback).GetString(), std::string("v"));
    EXPECT_EQ(&JSONUtil::getOptionalValue(doc, "n", fallback), &fallback);
    EXPECT_EQ(&JSONUtil::getOptionalValue(doc, "missing", fallback), &fallback);
    EXPECT_EQ(&JSONUtil::getOptionalValue(doc["a"], "s", fallback), &fallback);
    EXPECT_EQ(&JSONUtil::getOptionalValue(doc, "missing"), &JSONUtil::DEFAULT_VALUE);
    EXPECT_TRUE(JSONUtil::DEFAULT_VALUE.IsNull());

    EXPECT_TRUE(JSONUtil::getOptionalArray(doc, "a", fallback).IsArray());
    EXPECT_EQ(&JSONUtil::getOptionalArray(doc, "s", fallback), &fallback);
    EXPECT_EQ(&JSONUtil::getOptionalArray(fallback, "a", fallback), &fallback);
}

TEST_F(JSONUtilGetters, ValidatingGettersLogWhatIsMissing) {
    LogCapture capture;
    SmartHomeLogger logger("Reader");
    bool found = false;
    EXPECT_TRUE(JSONUtil::validateAndGetValue(doc, "o", &found, fallback, &logger).IsObject());
    EXPECT_TRUE(found);
    EXPECT_EQ(&JSONUtil::validateAndGetValue(doc, "n", &found, fallback, &logger), &fallback);
    EXPECT_FALSE(found);
    EXPECT_EQ(&JSONUtil::validateAndGetValue(doc["s"], "x", &found, fallback, &logger), &fallback);
    EXPECT_TRUE(JSONUtil::validateAndGetArray(doc, "a", &found, fallback, &logger).IsArray());
    EXPECT_TRUE(found);
    EXPECT_EQ(&JSONUtil::validateAndGetArray(doc, "o", &found, fallback, &logger), &fallback);
    EXPECT_FALSE(found);
    EXPECT_EQ(&JSONUtil::validateAndGetArray(fallback, "a", nullptr, fallback, &logger), &fallback);
    EXPECT_EQ(&JSONUtil::validateAndGetValue(doc, "gone", nullptr, fallback, nullptr), &fallback);
    EXPECT_EQ(
        capture.texts(ANDROID_LOG_ERROR, "SmartHome:Reader"),
        (std::vector<std::string>{"event=parserError,reason=valueNull,action=invalid,key=n",
                                  "event=parserError,reason=jsonNotObject,action=invalid",
                                  "event=parserError,reason=valueNotAnArray,action=invalid,key=o",
                                  "event=parserError,reason=jsonNotObject,action=invalid"}));
}

TEST(JSONUtilWrite, CompactTextAndNull) {
    EXPECT_EQ(JSONUtil::getStringForJSON(JSONValue()), "");
    EXPECT_EQ(JSONUtil::getStringForJSON(JSONValue(rapidjson::kObjectType)), "{}");
    JSONDocument doc;
    ASSERT_FALSE(
        JSONUtil::parse(doc, " { \"a\" : [ 1 , \"\\u0000x\" ] , \"b\" : 2.5 } ").IsError());
    EXPECT_EQ(JSONUtil::getStringForJSON(doc), std::string("{\"a\":[1,\"\\u0000x\"],\"b\":2.5}"));
    EXPECT_EQ(JSONUtil::getStringForJSON(JSONValue(std::numeric_limits<double>::quiet_NaN())), "");
}

}  // namespace
}  // namespace smarthome
