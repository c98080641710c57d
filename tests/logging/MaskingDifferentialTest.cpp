#include "logging/MaskingDifferential.h"

namespace smarthome {
namespace {

// A fast subset of the differential run; the full million inputs run as a long test.
TEST(MaskingDifferential, FiftyThousandInputsMatchTheRegexReference) {
    test::expectMaskingMatchesReference(50000, 20261122);
}

}  // namespace
}  // namespace smarthome
