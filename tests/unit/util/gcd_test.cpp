#include "zktarn/util/gcd.hpp"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace zktarn::util;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();
constexpr double least_normal = std::numeric_limits<double>::min();
constexpr double least_subnormal = std::numeric_limits<double>::denorm_min();

TEST(RealGcd, IsEuclidsAlgorithmWithATolerance) {
    EXPECT_EQ(xgcd_r8(12.0, 18.0, 1e-9), 6.0);
    EXPECT_EQ(xgcd_r8(0.5, 0.75, 1e-9), 0.25);
    EXPECT_EQ(xgcd_r8(-6.0, 4.0, 1e-9), 2.0);
    EXPECT_EQ(xgcd_r8(3.0, 1.0e-12, 1e-9), 3.0);
    EXPECT_EQ(xgcd_r8(7.0, 0.0, 1e-9), 7.0);
    EXPECT_EQ(xgcd_r8(0.0, -7.0, 0.0), 7.0);
    EXPECT_EQ(xgcd_r8(0.0, 0.0, 0.0), 0.0);
    EXPECT_EQ(xgcd_r8(10.0, 7.0, 1.0), 3.0);
    EXPECT_EQ(xgcd_r8(10.0, 7.0, 3.0), 7.0);
}

TEST(RealGcd, ReturnsZeroForTheLargestRealInfinityAndNaN) {
    EXPECT_EQ(xgcd_r8(largest, 2.0, 0.0), 0.0);
    EXPECT_EQ(xgcd_r8(2.0, -largest, 0.0), 0.0);
    EXPECT_EQ(xgcd_r8(inf, 2.0, 0.0), 0.0);
    EXPECT_EQ(xgcd_r8(2.0, nan, 0.0), 0.0);
    EXPECT_EQ(xgcd_r8(std::nextafter(largest, 0.0), 2.0, 0.0), 2.0);
}

TEST(RealGcd, ReturnsForNegativeNaNAndInfiniteTolerances) {
    EXPECT_EQ(xgcd_r8(12.0, 18.0, -1.0), 0.0);
    EXPECT_EQ(xgcd_r8(12.0, 0.0, -1.0), 0.0);
    EXPECT_EQ(xgcd_r8(12.0, 18.0, nan), 12.0);
    EXPECT_EQ(xgcd_r8(12.0, 18.0, inf), 18.0);
}

TEST(RealGcd, TakesExactRemainders) {
    // The quotient in doubles is rounded up to an integer, one above the exact quotient.
    EXPECT_EQ(xgcd_r8(0x1p53 - 1.0, 3.0 + 0x1p-51, 0.5), xgcd_r8(3.0 + 0x1p-51, 0x1p53 - 1.0, 0.5));
    EXPECT_EQ(xgcd_r8(0.3, 0.1, 1e-12), std::fmod(0.3, 0.1));
    EXPECT_EQ(xgcd_r8(5e-324, 1e-323, 0.0), 5e-324);
}

TEST(RealGcd, ARemainderEqualToTheToleranceCountsAsZero) {
    EXPECT_EQ(xgcd_r8(0.75, 0.5, 0.25), 0.5);
    EXPECT_EQ(xgcd_r8(0.75, 0.5, std::nextafter(0.25, 0.0)), 0.25);
    EXPECT_EQ(xgcd_r8(3.0, 2.0, 1.0), 2.0);
    EXPECT_EQ(xgcd_r8(3.0, 2.0, std::nextafter(1.0, 0.0)), 1.0);
}

TEST(RealGcd, IsExactForLargeAndSmallExponents) {
    EXPECT_EQ(xgcd_r8(15.0 * 0x1p900, 35.0 * 0x1p-900, 0.0), 5.0 * 0x1p-900);
    EXPECT_EQ(xgcd_r8(6.0 * 0x1p1000, 0x1p1001, 0.0), 0x1p1001);
    EXPECT_EQ(xgcd_r8(0x1p53 - 1.0, 0x1p53 - 1.0, 0.5), 0x1p53 - 1.0);
    EXPECT_EQ(xgcd_r8(0x1p1023, least_normal, 0.0), least_normal);
}

TEST(RealGcd, IsExactForSubnormals) {
    EXPECT_EQ(xgcd_r8(12.0 * least_subnormal, 18.0 * least_subnormal, 0.0), 6.0 * least_subnormal);
    EXPECT_EQ(xgcd_r8(1.0, 3.0 * least_subnormal, 0.0), least_subnormal);
    // The numbers are normal, their divisor is subnormal.
    EXPECT_EQ(xgcd_r8(least_normal + 3.0 * least_subnormal, least_normal, 0.0), least_subnormal);
    EXPECT_EQ(xgcd_r8(least_normal, 3.0 * least_normal, -0.0), least_normal);
}

TEST(IntegerGcd, IgnoresSigns) {
    EXPECT_EQ(xgcd_i4(-12, 18), 6);
    EXPECT_EQ(xgcd_i4(18, -12), 6);
    EXPECT_EQ(xgcd_i4(0, 0), 0);
    EXPECT_EQ(xgcd_i4(0, -5), 5);
    EXPECT_EQ(xgcd_i4(5, 0), 5);
    EXPECT_EQ(xgcd_i4(1, 2147483646), 1);
    EXPECT_EQ(xgcd_i4(2147483646, 0), 2147483646);
    EXPECT_EQ(xgcd_i4(-2147483646, 2147483646), 2147483646);
    EXPECT_EQ(xgcd_i4(1 << 30, 1 << 20), 1 << 20);
    EXPECT_EQ(xgcd_i4(48, 180), 12);
}

TEST(IntegerGcd, ReturnsZeroForTheLargestAndTheTwoSmallestIntegers) {
    EXPECT_EQ(xgcd_i4(2147483647, 5), 0);
    EXPECT_EQ(xgcd_i4(5, 2147483647), 0);
    EXPECT_EQ(xgcd_i4(-2147483647, 5), 0);
    EXPECT_EQ(xgcd_i4(5, -2147483647), 0);
    EXPECT_EQ(xgcd_i4(std::numeric_limits<std::int32_t>::min(), 5), 0);
    EXPECT_EQ(xgcd_i4(5, std::numeric_limits<std::int32_t>::min()), 0);
}

} // namespace
