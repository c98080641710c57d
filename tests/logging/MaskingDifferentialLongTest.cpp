#include "logging/MaskingDifferential.h"

namespace smarthome {
namespace {

TEST(MaskingDifferentialLong, AMillionInputsMatchTheRegexReference) {
    test::expectMaskingMatchesReference(1000000, 424242);
}

}  // namespace
}  // namespace smarthome
