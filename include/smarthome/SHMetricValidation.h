// Checks and the character sanitiser applied to metric names and values: the record format
// reserves ':', '|', '=', ',', '(' and ')', so each of them is written as '-'.
// Stateless; every operation may be called from any thread.
#pragma once

#include <string>
#include <string_view>

namespace smarthome {

class SHMetricValidation {
public:
    // True when both names are at most 49 characters long.
    static bool isProgramAndSourceValid(const std::string& program, const std::string& source);
    // text with every reserved character replaced by '-'; all other bytes unchanged.
    static std::string sanitize(const std::string& text);
    // Appends sanitize(text) to out without an intermediate string.
    static void appendSanitized(std::string& out, std::string_view text);
};

}  // namespace smarthome
