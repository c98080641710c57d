#include "smarthome/StringUtils.h"

#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace smarthome {
namespace {

using Pieces = std::vector<std::string>;

// What a line reader produces with delim as terminator: the reference for the
// single-character split.
Pieces readerSplit(const std::string& s, char delim) {
    Pieces pieces;
    std::istringstream in(s);
    std::string item;
    while (std::getline(in, item, delim)) {
        pieces.push_back(item);
    }
    return pieces;
}

Pieces readerSplit(const std::string& s, char delim, int maxCount) {
    if (s.empty()) {
        return {};
    }
    if (maxCount <= 1) {
        return {s};
    }
    Pieces pieces;
    std::istringstream in(s);
    std::string item;
    while (static_cast<int>(pieces.size()) < maxCount - 1 && std::getline(in, item, delim)) {
        pieces.push_back(item);
    }
    if (std::getline(in, item)) {
        pieces.push_back(item);
    }
    return pieces;
}

TEST(StringUtilsCleaning, TrimAndWhitespaceUseTheCLocaleClasses) {
    EXPECT_EQ(StringUtils::trim(" \t\n a b \r\v\f"), "a b");
    EXPECT_EQ(StringUtils::trim(""), "");
    EXPECT_EQ(StringUtils::trim("   "), "");
    EXPECT_EQ(StringUtils::trim("\xa0x\xa0"), "\xa0x\xa0");
    EXPECT_EQ(StringUtils::removeWhiteSpaces(" a\tb\nc "), "abc");
    EXPECT_EQ(StringUtils::stripCharacter("a-b--c", '-'), "abc");
}

TEST(StringUtilsCleaning, SpecialCharactersAndEndpointIds) {
    std::string text = "ok\x01 !~\x7f\x80\xff\xc3\xa9";
    StringUtils::removeSpecialCharacters(text);
    EXPECT_EQ(text, "ok !~");

    std::string id = "ab/c";
    EXPECT_TRUE(StringUtils::sanitizeEndpointId(id));
    EXPECT_EQ(id, "abc");
    id = "#&-:;=?@_ x9.%$";
    EXPECT_TRUE(StringUtils::sanitizeEndpointId(id));
    EXPECT_EQ(id, "#&-:;=?@_ x9");
    id = "////";
    EXPECT_FALSE(StringUtils::sanitizeEndpointId(id));
    EXPECT_EQ(id, "");
    id = std::string(256, 'a') + "/";
    EXPECT_TRUE(StringUtils::sanitizeEndpointId(id));
    id = std::string(257, 'a');
    EXPECT_FALSE(StringUtils::sanitizeEndpointId(id));
    id = std::string("a\0b", 3);
    EXPECT_TRUE(StringUtils::sanitizeEndpointId(id));
    EXPECT_EQ(id, "ab");
}

TEST(StringUtilsCleaning, CaseReplaceAndAffixes) {
    EXPECT_EQ(StringUtils::camelMerge("get", "value"), "getValue");
    EXPECT_EQ(StringUtils::camelMerge("get", ""), "get");
    EXPECT_EQ(StringUtils::toUpperCase("aZ\xe9!"), "AZ\xe9!");
    EXPECT_EQ(StringUtils::toLowerCase("Az\xc9!"), "az\xc9!");
    EXPECT_EQ(StringUtils::replaceAll("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(StringUtils::replaceAll("aaaa", "aa", "b"), "bb");
    EXPECT_EQ(StringUtils::replaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(StringUtils::replaceAll("", "a", "x"), "");
    EXPECT_TRUE(StringUtils::startsWith("abc", "ab"));
    EXPECT_TRUE(StringUtils::startsWith("abc", ""));
    EXPECT_FALSE(StringUtils::startsWith("ab", "abc"));
    EXPECT_TRUE(StringUtils::hasSuffix("abc", "bc"));
    EXPECT_FALSE(StringUtils::hasSuffix("bc", "abc"));
    EXPECT_EQ(StringUtils::concatenate({"a", "b", "c"}, ", "), "a, b, c");
    EXPECT_EQ(StringUtils::concatenate({"a", "b"}, nullptr), "ab");
    EXPECT_EQ(StringUtils::concatenate({}, ","), "");
    EXPECT_EQ(StringUtils::concatenate({"", ""}, ","), ",");
}

TEST(StringUtilsSplit, CharacterFormReadsLikeALineReader) {
    EXPECT_EQ(StringUtils::split("a,b,", ','), (Pieces{"a", "b"}));
    EXPECT_EQ(StringUtils::split(",a,,b", ','), (Pieces{"", "a", "", "b"}));
    EXPECT_EQ(StringUtils::split("", ','), Pieces{});
    EXPECT_EQ(StringUtils::split(",", ','), Pieces{""});
    const std::string inputs[] = {"a", ",,", "a,b\n,c", "\n", ",x,", "x,,", "abc"};
    for (const auto& input : inputs) {
        EXPECT_EQ(StringUtils::split(input, ','), readerSplit(input, ',')) << input;
    }
}

TEST(StringUtilsSplit, MaxCountKeepsTheRestUpToTheNextNewline) {
    EXPECT_EQ(StringUtils::split("a:b:c:d", ':', 2), (Pieces{"a", "b:c:d"}));
    EXPECT_EQ(StringUtils::split("x", ':', 0), Pieces{"x"});
    EXPECT_EQ(StringUtils::split("a:b", ':', 1), Pieces{"a:b"});
    EXPECT_EQ(StringUtils::split("a:b:c\nd:e", ':', 3), (Pieces{"a", "b", "c"}));
    EXPECT_EQ(StringUtils::split("a:b\nc", ':', 2), (Pieces{"a", "b"}));
    const std::string inputs[] = {"a:", "a::", ":", "a:\nb", "a:b:c", "::\n::", "abc\n"};
    for (const auto& input : inputs) {
        for (int maxCount = -1; maxCount <= 5; ++maxCount) {
            EXPECT_EQ(StringUtils::split(input, ':', maxCount), readerSplit(input, ':', maxCount))
                << input << " max " << maxCount;
        }
    }
}

TEST(StringUtilsSplit, StringFormKeepsTheTrailingEmptyPiece) {
    EXPECT_EQ(StringUtils::split(std::string("a,b,"), std::string(",")), (Pieces{"a", "b", ""}));
    EXPECT_EQ(StringUtils::split(std::string("a--b"), std::string("--")), (Pieces{"a", "b"}));
    EXPECT_EQ(StringUtils::split(std::string("---"), std::string("--")), (Pieces{"", "-"}));
    EXPECT_EQ(StringUtils::split(std::string("ab"), std::string("")), Pieces{"ab"});
    EXPECT_EQ(StringUtils::split(std::string(""), std::string(",")), Pieces{});
}

TEST(StringUtilsSplit, BraceGroupsAreNotCut) {
    auto split = StringUtils::splitStrIgnoringSubStrInBrackets;
    EXPECT_EQ(split("a,{b,c},d", ","), (Pieces{"a", "{b,c}", "d"}));
    EXPECT_EQ(split("{x,y},{z}", ","), (Pieces{"{x,y}", "{z}"}));
    EXPECT_EQ(split("a,b,", ","), (Pieces{"a", "b", ""}));
    EXPECT_EQ(split("a", ","), Pieces{"a"});
    EXPECT_EQ(split("", ","), Pieces{});
    // A group that is not followed by the delimiter: the character after the group is
    // skipped as if it were one.
    EXPECT_EQ(split("{a}bc,d", ","), (Pieces{"{a}", "c", "d"}));
    // Texts the splitter is not meant for still end, with the rest as the last piece.
    EXPECT_EQ(split("a,{b,c", ","), (Pieces{"a", "{b,c"}));
    EXPECT_EQ(split("{{{", ","), Pieces{"{{{"});
    EXPECT_EQ(split("x}", ","), (Pieces{"x}"}));
    EXPECT_EQ(split("{a}{b}c", ""), (Pieces{"{a}", "{b}", "c"}));
    EXPECT_EQ(split("abc", ""), Pieces{"abc"});
}

TEST(StringUtilsSplit, OutermostBracketUsesTheLastBraceAsALength) {
    EXPECT_EQ(StringUtils::getSubStrInOutermostBracket("{x}"), "x");
    EXPECT_EQ(StringUtils::getSubStrInOutermostBracket("{a{b}c}"), "a{b}c");
    EXPECT_EQ(StringUtils::getSubStrInOutermostBracket("x{ab}"), "ab}");
    EXPECT_EQ(StringUtils::getSubStrInOutermostBracket("no braces"), "");
    EXPECT_EQ(StringUtils::getSubStrInOutermostBracket("{open"), "");
    EXPECT_EQ(StringUtils::getSubStrInOutermostBracket(""), "");
    EXPECT_EQ(StringUtils::getSubStrInOutermostBracket("}{ab"), "ab");
}

TEST(StringUtilsNumbers, SignedParsingAllowsOnlyTrailingBlanks) {
    long long value = 7;
    EXPECT_TRUE(StringUtils::stringToInt64(" 42 ", &value, 10));
    EXPECT_EQ(value, 42);
    EXPECT_FALSE(StringUtils::stringToInt64("42x", &value, 10));
    EXPECT_FALSE(StringUtils::stringToInt64("", &value, 10));
    EXPECT_FALSE(StringUtils::stringToInt64("9223372036854775808", &value, 10));
    EXPECT_FALSE(StringUtils::stringToInt64("1", &value, 99));
    EXPECT_FALSE(StringUtils::stringToInt64(nullptr, &value, 10));
    EXPECT_FALSE(StringUtils::stringToInt64("1", nullptr, 10));
    EXPECT_EQ(value, 42);
    EXPECT_TRUE(StringUtils::stringToInt64("-0x10", &value, 16));
    EXPECT_EQ(value, -16);

    int i = 0;
    EXPECT_TRUE(StringUtils::stringToInt("-2147483648", &i));
    EXPECT_EQ(i, INT_MIN);
    EXPECT_FALSE(StringUtils::stringToInt("2147483648", &i));
    EXPECT_TRUE(StringUtils::stringToInt32("12\n", &i));
    EXPECT_EQ(i, 12);
}

TEST(StringUtilsNumbers, UnsignedRangesAndWrapping) {
    unsigned short u16 = 1;
    EXPECT_FALSE(StringUtils::stringToUInt16("65536", &u16, 10));
    EXPECT_FALSE(StringUtils::stringToUInt16("-1", &u16, 10));
    EXPECT_TRUE(StringUtils::stringToUInt16("ffff", &u16, 16));
    EXPECT_EQ(u16, 65535);
    unsigned char u8 = 1;
    EXPECT_FALSE(StringUtils::stringToUInt8("-1", &u8, 10));
    EXPECT_FALSE(StringUtils::stringToUInt8("256", &u8, 10));
    EXPECT_TRUE(StringUtils::stringToUInt8("0x7f", &u8, 16));
    EXPECT_EQ(u8, 0x7f);
    unsigned int u32 = 1;
    EXPECT_TRUE(StringUtils::stringToUInt32("4294967295", &u32));
    EXPECT_EQ(u32, 4294967295u);
    EXPECT_FALSE(StringUtils::stringToUInt32("4294967296", &u32));
    EXPECT_FALSE(StringUtils::stringToUInt32("-1", &u32));
    unsigned long long u64 = 1;
    EXPECT_TRUE(StringUtils::stringToUInt64("-1", &u64, 10));
    EXPECT_EQ(u64, ULLONG_MAX);
    EXPECT_FALSE(StringUtils::stringToUInt64("18446744073709551616", &u64, 10));
}

TEST(StringUtilsNumbers, DoublesIgnoreTrailingText) {
    double d = 0;
    EXPECT_TRUE(StringUtils::stringToDouble("42x", &d));
    EXPECT_EQ(d, 42.0);
    EXPECT_TRUE(StringUtils::stringToDouble("1.5", &d));
    EXPECT_EQ(d, 1.5);
    EXPECT_FALSE(StringUtils::stringToDouble("nan", &d));
    EXPECT_FALSE(StringUtils::stringToDouble("1e999", &d));
    EXPECT_FALSE(StringUtils::stringToDouble("x", &d));
    EXPECT_EQ(d, 1.5);
}

TEST(StringUtilsNumbers, PairParsers) {
    EXPECT_EQ(StringUtils::toInt64("12 "), std::make_pair(true, 12LL));
    EXPECT_EQ(StringUtils::toInt64(""), std::make_pair(false, 0LL));
    EXPECT_EQ(StringUtils::toInt64("12a"), std::make_pair(false, 0LL));
    EXPECT_EQ(StringUtils::toInt64("99999999999999999999"), std::make_pair(false, 0LL));
    EXPECT_EQ(StringUtils::toInt("0x1A"), std::make_pair(true, 26));
    EXPECT_EQ(StringUtils::toInt("12abc"), std::make_pair(true, 12));
    EXPECT_EQ(StringUtils::toInt("abc"), std::make_pair(false, -1));
    EXPECT_EQ(StringUtils::toInt("10 0x"), std::make_pair(true, 16));
    EXPECT_EQ(StringUtils::hexStringToUint64("ff"), std::make_pair(true, 255ULL));
    EXPECT_EQ(StringUtils::hexStringToUint64("0xFFFFFFFFFFFFFFFF"),
              std::make_pair(true, ULLONG_MAX));
    EXPECT_EQ(StringUtils::hexStringToUint64("zz"), std::make_pair(false, ULLONG_MAX));
}

TEST(StringUtilsHex, BytesAndHexText) {
    EXPECT_EQ(StringUtils::hexStringToByteVector("00fF7a"),
              (std::vector<unsigned char>{0x00, 0xff, 0x7a}));
    EXPECT_TRUE(StringUtils::hexStringToByteVector("abc").empty());
    EXPECT_TRUE(StringUtils::hexStringToByteVector("").empty());
    EXPECT_EQ(StringUtils::hexStringToByteVector("zz1g"), (std::vector<unsigned char>{0, 1}));
    // Whole pairs only: the bytes after s.size() / 2 keep their guard value.
    const std::pair<const char*, std::vector<unsigned char>> arrays[] = {
        {"abc", {0xab, 0x99, 0x99}}, {"a", {0x99, 0x99, 0x99}}, {"0aFf", {0x0a, 0xff, 0x99}}};
    for (const auto& [text, expected] : arrays) {
        std::vector<unsigned char> out(3, 0x99);
        StringUtils::hexStringToByteArray(text, out.data());
        EXPECT_EQ(out, expected) << text;
    }
    EXPECT_EQ(StringUtils::byteVectorToHexString({0x00, 0x0f, 0xab}), "000fab");
    EXPECT_EQ(StringUtils::byteVectorToString({'h', 'i'}), "hi");
    EXPECT_EQ(StringUtils::uint64ToHexString(255), "ff");
    EXPECT_EQ(StringUtils::uint64ToHexString(0), "0");
    EXPECT_EQ(StringUtils::uint64ToHexString(10, 4), "000a");
    EXPECT_EQ(StringUtils::uint64ToHexString(0x12345, 2), "12345");
    EXPECT_EQ(StringUtils::uint64ToHex2sComplementString(1), "ffffffffffffffff");
    EXPECT_EQ(StringUtils::uint64ToHex2sComplementString(0), "0000000000000000");
    EXPECT_EQ(StringUtils::uint64ToHex2sComplementString(0x10), "fffffffffffffff0");
}

TEST(StringUtilsUtf8, ValidityFollowsTheLaxRules) {
    struct Case {
        std::string bytes;
        bool valid;
    };
    const Case cases[] = {
        {"", true},
        {"plain", true},
        {"\xc3\xa9", true},
        {"\xc3", false},
        {"\xed\xa0\x80", false},
        {"\xed\x9f\xbf", true},
        {"\xed", false},
        {"\xc0\x80", true},          // overlong, accepted
        {"\xf4\x90\x80\x80", true},  // above U+10FFFF, accepted
        {"\xf7\xbf\xbf\xbf", true},
        {"\xf8\x80\x80\x80\x80", false},
        {"\x80", false},
        {"\xe2\x82", false},
        {"\xe2\x82\xac", true},
        {"\xe2\x28\xa1", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(StringUtils::isValidUtf8String(c.bytes), c.valid)
            << testing::PrintToString(c.bytes);
    }
}

TEST(StringUtilsUtf8, CleaningDropsBrokenSequencesWithTheirBreakingByte) {
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("a\xc3\xa9z"), "a\xc3\xa9z");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("a\x80z"), "az");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("\xc3zq"), "q");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("\xe2\x82zq"), "q");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("\xed\xa0zq"), "q");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("ab\xe2\x82"), "ab");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("x\xed\xa0"), "x");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters("\xff\xfe"), "");
    EXPECT_EQ(StringUtils::removeNonUtf8Characters(""), "");
}

TEST(StringUtilsPrinting, VectorsPrintInBrackets) {
    EXPECT_EQ(StringUtils::toString(std::vector<std::string>{}), "[]");
    EXPECT_EQ(StringUtils::toString(std::vector<std::string>{"a", "b"}), "[a, b]");
    EXPECT_EQ(StringUtils::toString(std::vector<int>{1, -2}), "[1, -2]");
    EXPECT_EQ(StringUtils::toString(std::vector<unsigned char>{7}), "[7]");
}

}  // namespace
}  // namespace smarthome
