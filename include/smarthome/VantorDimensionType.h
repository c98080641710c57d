// Which value field of a VantorDimension is meaningful. Textual names through
// StringUtils::toString; values outside 0..5 print as "INVALID".
#pragma once

#include <cstdint>

namespace smarthome {

enum class VantorDimensionType : int32_t {
    INVALID = 0,
    PREDEFINED = 1,
    STRING = 2,
    BOOLEAN = 3,
    LONG = 4,
    DOUBLE = 5,
};

}  // namespace smarthome
