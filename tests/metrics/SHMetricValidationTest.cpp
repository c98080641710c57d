#include "smarthome/SHMetricValidation.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

namespace smarthome {
namespace {

// The replacement the sanitiser stands for: the class "[:|=|,|(|)]" compiled per call.
std::string regexSanitize(const std::string& text) {
    return std::regex_replace(text, std::regex("[:|=|,|(|)]"), "-");
}

// Mostly the reserved characters and their neighbours (';', '-', '\\', '[', ']'), plus
// any byte at all, NUL and bytes above 0x7f included.
std::string generate(std::mt19937& random) {
    static const std::string nearby = ":|=,()-;[]\\ aZ9_";
    std::uniform_int_distribution<int> length(0, 40);
    std::uniform_int_distribution<int> kind(0, 3);
    std::uniform_int_distribution<size_t> pick(0, nearby.size() - 1);
    std::uniform_int_distribution<int> anyByte(0, 255);
    std::string text(static_cast<size_t>(length(random)), '\0');
    for (char& c : text) {
        c = kind(random) == 0 ? static_cast<char>(anyByte(random)) : nearby[pick(random)];
    }
    return text;
}

TEST(SHMetricValidation, SanitizeMatchesTheRegexReplacementOnGeneratedInput) {
    std::mt19937 random(20261122);
    for (int i = 0; i < 120000; ++i) {
        const std::string text = generate(random);
        ASSERT_EQ(SHMetricValidation::sanitize(text), regexSanitize(text))
            << "input #" << i << " of " << text.size() << " bytes";
    }
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(3, static_cast<char>(byte));
        ASSERT_EQ(SHMetricValidation::sanitize(text), regexSanitize(text)) << "byte " << byte;
    }
}

TEST(SHMetricValidation, AppendSanitizedKeepsWhatIsAlreadyThere) {
    std::string out = "a=b,";
    SHMetricValidation::appendSanitized(out, "c:d");
    EXPECT_EQ(out, "a=b,c-d");
}

}  // namespace
}  // namespace smarthome
