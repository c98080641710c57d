#include "smarthome/SHMetricValidation.h"

#include <array>

namespace smarthome {

namespace {

// The record format's reserved characters. A table lookup per byte replaces what used to be
// a regular-expression replacement with the class "[:|=|,|(|)]"; the output is identical
// (the tests compare both on generated input).
constexpr std::array<bool, 256> makeReservedTable() {
    std::array<bool, 256> table{};
    for (char c : {':', '|', '=', ',', '(', ')'}) {
        table[static_cast<unsigned char>(c)] = true;
    }
    return table;
}

constexpr std::array<bool, 256> kReserved = makeReservedTable();

constexpr size_t kMaxProgramOrSourceLength = 49;

}  // namespace

bool SHMetricValidation::isProgramAndSourceValid(const std::string& program,
                                                 const std::string& source) {
    return program.size() <= kMaxProgramOrSourceLength &&
           source.size() <= kMaxProgramOrSourceLength;
}

std::string SHMetricValidation::sanitize(const std::string& text) {
    std::string out;
    appendSanitized(out, text);
    return out;
}

void SHMetricValidation::appendSanitized(std::string& out, std::string_view text) {
    const size_t start = out.size();
    out += text;
    for (size_t i = start; i < out.size(); ++i) {
        if (kReserved[static_cast<unsigned char>(out[i])]) {
            out[i] = '-';
        }
    }
}

}  // namespace smarthome
