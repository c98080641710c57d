#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <vector>

#include "smarthome/ProcInfo.h"
#include "smarthome/RandomUtils.h"
#include "smarthome/RetryUtils.h"

namespace smarthome {
namespace {

TEST(RetryUtils, BackoffDoublesCapsAndWrapsLikeThe32BitProduct) {
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(100, 30000, 0), 100);
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(100, 30000, 3), 800);
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(100, 30000, 9), 30000);
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(1, 1000000, 17), 131072);
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(1, 1000000, 65535), 131072);
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(100, 30000, 17),
              RetryUtils::calculateExponentialBackoff(100, 30000, 60));
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(100000, INT_MAX, 17), 222298112);
    // A product past INT_MAX wraps negative and, compared signed, wins over maxDelay.
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(20000, INT_MAX, 17), -1673527296);
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(INT_MIN, 100, 1), 0);
    EXPECT_EQ(RetryUtils::calculateExponentialBackoff(-5, 100, 2), -20);
}

TEST(RandomUtils, StaysWithinInclusiveBounds) {
    EXPECT_EQ(RandomUtils::getRandomNumberWithinBounds(5, 5), 5);
    std::set<long long> seen;
    for (int i = 0; i < 2000; ++i) {
        long long value = RandomUtils::getRandomNumberWithinBounds(-2, 2);
        ASSERT_GE(value, -2);
        ASSERT_LE(value, 2);
        seen.insert(value);
    }
    EXPECT_EQ(seen.size(), 5u);
    EXPECT_GE(RandomUtils::getRandomNumberWithinBounds(LLONG_MAX - 1, LLONG_MAX), LLONG_MAX - 1);
    EXPECT_LE(RandomUtils::getRandomNumberWithinBounds(LLONG_MIN, LLONG_MIN + 1), LLONG_MIN + 1);
    long long swapped = RandomUtils::getRandomNumberWithinBounds(10, 1);
    EXPECT_GE(swapped, 1);
    EXPECT_LE(swapped, 10);
}

TEST(ProcInfo, ReportsThisProcessPssInKilobytes) {
    const int before = ProcInfo::getPssKb();
    EXPECT_GT(before, 0);
    // 64 MiB of private, touched pages add their full size to the PSS.
    std::vector<char> block(64 << 20, 1);
    const int after = ProcInfo::getPssKb();
    EXPECT_GE(after - before, 60 * 1024) << before << " -> " << after;
    EXPECT_EQ(block[block.size() / 2], 1);
}

}  // namespace
}  // namespace smarthome
