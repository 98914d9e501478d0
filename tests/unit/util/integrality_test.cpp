#include "zktarn/util/integrality.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#ifdef ZKTARN_TEST_EXPORTED
#include "support/exported.hpp"
#endif

namespace {

using namespace zktarn::util;
using zktarn::flag;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();
constexpr double untouched = 123.25;

/// The outputs of an integrality test.
struct result {
    flag is_int;
    double nearest;
    bool operator==(const result&) const = default;
};

void PrintTo(const result& a, std::ostream* out) {
    *out << "{" << a.is_int << ", " << a.nearest << "}";
}

result is_int(double x, double eps) {
    result a{-1, untouched};
    epsilon_is_int(x, eps, a.is_int, a.nearest);
    return a;
}

result is_int_scalar(double x, double scalar, double eps) {
    result a{-1, untouched};
    epsilon_is_int_scalar(x, scalar, eps, a.is_int, a.nearest);
    return a;
}

const result no{0, untouched};

bool is_positive_zero(double value) {
    return std::bit_cast<std::uint64_t>(value) == 0;
}

TEST(EpsilonIsInt, FindsTheIntegerWithinTheTolerance) {
    EXPECT_EQ(is_int(2.9999, 0.001), (result{1, 3.0}));
    EXPECT_EQ(is_int(3.0011, 0.001), no);
    EXPECT_EQ(is_int(3.001, 0.001), (result{1, 3.0}));
    EXPECT_EQ(is_int(-2.9999, 0.001), (result{1, -3.0}));
    EXPECT_EQ(is_int(-3.0011, 0.001), no);
}

TEST(EpsilonIsInt, TheToleranceIsInclusive) {
    EXPECT_EQ(is_int(3.25, 0.25), (result{1, 3.0}));
    EXPECT_EQ(is_int(3.25, 0.2499), no);
    EXPECT_EQ(is_int(2.75, 0.25), (result{1, 3.0}));
    EXPECT_EQ(is_int(2.75, 0.2499), no);
}

TEST(EpsilonIsInt, PrefersTheFloorOfXPlusEpsToTheCeilingOfXMinusEps) {
    EXPECT_EQ(is_int(2.5, 0.5), (result{1, 3.0}));
    EXPECT_EQ(is_int(2.25, 0.75), (result{1, 3.0}));
}

TEST(EpsilonIsInt, NearestIsAboveAnIntegralXIfEpsIsAtLeastOne) {
    EXPECT_EQ(is_int(2.0, 1.5), (result{1, 3.0}));
    EXPECT_EQ(is_int(2.0, 3.0), (result{1, 5.0}));
}

TEST(EpsilonIsInt, NearestIsOptionalAndNotWrittenIfXIsNotIntegral) {
    flag found = -1;
    epsilon_is_int(2.0, 0.0, found);
    EXPECT_EQ(found, 1);
    epsilon_is_int(2.5, 0.1, found);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(is_int(2.5, 0.1), no);
}

TEST(EpsilonIsInt, NearestMayAliasTheInput) {
    double x = 2.9999;
    flag found = -1;
    epsilon_is_int(x, 0.001, found, x);
    EXPECT_EQ(found, 1);
    EXPECT_EQ(x, 3.0);
}

TEST(EpsilonIsInt, NothingIsIntegralWithAnInvalidToleranceNorIsNaNOrInfinity) {
    EXPECT_EQ(is_int(2.0, -0.5), no);
    EXPECT_EQ(is_int(2.0, -5e-324), no);
    EXPECT_EQ(is_int(2.0, nan), no);
    EXPECT_EQ(is_int(nan, 0.5), no);
    EXPECT_EQ(is_int(nan, inf), no);
    EXPECT_EQ(is_int(inf, 0.5), no);
    EXPECT_EQ(is_int(-inf, 0.5), no);
}

TEST(EpsilonIsInt, TheFloorSaturatesForAnInfiniteTolerance) {
    EXPECT_EQ(is_int(5.0, inf), (result{1, 0x1p63}));
    EXPECT_EQ(is_int(5.0, 1e300), (result{1, 0x1p63}));
}

TEST(EpsilonIsIntScalar, TakesTheFloorOfTheProductWithoutAddingTheTolerance) {
    EXPECT_EQ(is_int_scalar(0.25, 12.0, 1e-9), (result{1, 3.0}));
    EXPECT_EQ(is_int_scalar(0.25, 10.0, 1e-9), no);
    EXPECT_EQ(is_int_scalar(2.0, 1.0, 1.5), (result{1, 2.0}));
    EXPECT_EQ(is_int_scalar(2.5, 1.0, 0.5), (result{1, 2.0}));
    EXPECT_EQ(is_int_scalar(2.75, 1.0, 0.25), (result{1, 3.0}));
    EXPECT_EQ(is_int_scalar(2.75, 1.0, 0.125), no);
    EXPECT_EQ(is_int_scalar(2.25, 1.0, 0.25), (result{1, 2.0}));
    EXPECT_EQ(is_int_scalar(nan, 1.0, 0.5), no);
    EXPECT_EQ(is_int_scalar(0.0, inf, 0.5), no);
    flag found = -1;
    epsilon_is_int_scalar(0.5, 4.0, 0.0, found);
    EXPECT_EQ(found, 1);
}

TEST(EpsilonFractionality, IsSmallAndNegativeJustBelowAnInteger) {
    EXPECT_NEAR(epsilon_fractionality(2.9999, 0.001), -0.0001, 1e-12);
    EXPECT_EQ(epsilon_fractionality(2.9999, 0.001), 2.9999 - 3.0);
    EXPECT_EQ(epsilon_fractionality(2.5, 0.001), 0.5);
    EXPECT_EQ(epsilon_fractionality(-2.5, 0.001), 0.5);
    EXPECT_EQ(epsilon_fractionality(3.0, 0.0), 0.0);
    EXPECT_TRUE(std::isnan(epsilon_fractionality(nan, 0.1)));
    EXPECT_EQ(epsilon_fractionality(2.5, nan), 2.5);
}

TEST(EpsilonFloor, RoundsUpAValueJustBelowAnInteger) {
    EXPECT_EQ(epsilon_floor(-2.0000001, 0.001), -2.0);
    EXPECT_EQ(epsilon_floor(2.9999, 0.001), 3.0);
    EXPECT_EQ(epsilon_floor(2.9, 0.001), 2.0);
    EXPECT_EQ(epsilon_floor(-2.5, 0.0), -3.0);
    EXPECT_TRUE(is_positive_zero(epsilon_floor(-0.0, 0.0)));
}

TEST(EpsilonCeiling, RoundsDownAValueJustAboveAnInteger) {
    EXPECT_EQ(epsilon_ceiling(2.0000001, 0.001), 2.0);
    EXPECT_EQ(epsilon_ceiling(-1.5, 0.001), -1.0);
    EXPECT_EQ(epsilon_ceiling(1.5, 0.001), 2.0);
    EXPECT_TRUE(std::signbit(epsilon_ceiling(-0.5, 0.0)));
    EXPECT_TRUE(std::signbit(epsilon_ceiling(0.0, 0.0)));
    EXPECT_EQ(epsilon_ceiling(-0.5, 0.0), 0.0);
}

TEST(GuardedFloor, IsOneTooLowForLargeNegativeIntegersAndExactBetweenThem) {
    EXPECT_EQ(epsilon_floor(-3.0e9, 0.0), -3.0e9 - 1.0);
    EXPECT_EQ(epsilon_floor(-3.0e9 - 0.5, 0.0), -3.0e9 - 1.0);
    EXPECT_EQ(epsilon_floor(3.0e9, 0.0), 3.0e9);
    EXPECT_EQ(epsilon_floor(3.0e9 + 0.5, 0.0), 3.0e9);
    EXPECT_EQ(epsilon_ceiling(3.0e9, 0.0), 3.0e9 + 1.0);
    EXPECT_EQ(epsilon_ceiling(-3.0e9, 0.0), -3.0e9);
}

TEST(GuardedFloor, ChangesItsRuleAtABaseOf2147483647) {
    EXPECT_EQ(epsilon_floor(2147483646.0, 0.0), 2147483646.0);
    EXPECT_EQ(epsilon_floor(2147483647.0, 0.0), 2147483647.0);
    EXPECT_EQ(epsilon_floor(-2147483646.0, 0.0), -2147483646.0);
    EXPECT_EQ(epsilon_floor(-2147483646.5, 0.0), -2147483647.0);
    EXPECT_EQ(epsilon_floor(-2147483647.0, 0.0), -2147483648.0);
    EXPECT_EQ(epsilon_floor(2147483647.0, -2147483647.5), 0.0);
    EXPECT_FALSE(std::signbit(epsilon_floor(2147483647.0, -2147483647.5)));
    EXPECT_EQ(epsilon_floor(2.0, -2.5), -1.0);
}

TEST(GuardedFloor, ReturnsBasesAbove2To52Unchanged) {
    constexpr double above = 0x1p52 + 1.0;
    EXPECT_EQ(epsilon_floor(above, 0.0), above);
    EXPECT_EQ(epsilon_floor(0x1p52, 0.0), 0x1p52);
    EXPECT_EQ(epsilon_floor(0x1p52 - 0.5, 0.0), 0x1p52 - 1.0);
    EXPECT_EQ(epsilon_floor(1e300, 0.0), 1e300);
    EXPECT_EQ(epsilon_floor(-1e300, 0.0), -1e300);
    EXPECT_EQ(epsilon_floor(inf, 0.0), inf);
    EXPECT_EQ(epsilon_floor(-inf, 0.0), -inf);
}

TEST(GuardedFloor, SaturatesAndIsZeroForANaNSum) {
    EXPECT_EQ(epsilon_floor(1.0, 1e300), 0x1p63);
    EXPECT_EQ(epsilon_floor(1.0, -1e300), -0x1p63);
    EXPECT_EQ(epsilon_floor(1.0, inf), 0x1p63);
    EXPECT_EQ(epsilon_floor(1.0, -inf), -0x1p63);
    EXPECT_EQ(epsilon_floor(1.0, 0x1p63), 0x1p63);
    EXPECT_EQ(epsilon_floor(0.0, -0x1p63), -0x1p63);
    EXPECT_TRUE(is_positive_zero(epsilon_floor(nan, 0.0)));
    EXPECT_TRUE(is_positive_zero(epsilon_floor(1.0, nan)));
    EXPECT_TRUE(is_positive_zero(epsilon_floor(inf, -inf)));
    EXPECT_TRUE(is_positive_zero(epsilon_floor(-inf, inf)));
}

TEST(Fractional, IsTheDistanceToTheNearestInteger) {
    EXPECT_EQ(fractional(0.5), 0.5);
    EXPECT_EQ(fractional(-2.75), 0.25);
    EXPECT_EQ(fractional(1.0e17), 0.0);
    EXPECT_EQ(fractional(2.5), 0.5);
    EXPECT_EQ(fractional(-2.5), 0.5);
    EXPECT_EQ(fractional(-0.25), 0.25);
    EXPECT_TRUE(is_positive_zero(fractional(-0.0)));
    EXPECT_EQ(fractional(std::nextafter(0.5, 0.0)), std::nextafter(0.5, 0.0));
    EXPECT_EQ(fractional(0x1p52 - 0.5), 0.5);
    EXPECT_EQ(fractional(0x1p52), 0.0);
    EXPECT_EQ(fractional(0x1p52 + 1.0), 0.0);
    EXPECT_EQ(fractional(-largest), 0.0);
}

TEST(Fractional, IsNaNForInfinityAndNaN) {
    EXPECT_TRUE(std::isnan(fractional(inf)));
    EXPECT_TRUE(std::isnan(fractional(-inf)));
    EXPECT_FALSE(std::signbit(fractional(inf)));
    EXPECT_TRUE(std::isnan(fractional(nan)));
}

TEST(IsEvenReal, TestsTheParityOfTheNearestInteger) {
    EXPECT_EQ(is_even_real(4.0000001, 1.0e-6), 1);
    EXPECT_EQ(is_even_real(3.9999999, 1.0e-6), 1);
    EXPECT_EQ(is_even_real(-2.0, 0.0), 1);
    EXPECT_EQ(is_even_real(0.0, 0.0), 1);
    EXPECT_EQ(is_even_real(3.0, 0.0), 0);
    EXPECT_EQ(is_even_real(-3.0, 0.0), 0);
    EXPECT_EQ(is_even_real(2.5, 0.1), 0);
    EXPECT_EQ(is_even_real(nan, 0.1), 0);
    EXPECT_EQ(is_even_real(2.0, nan), 0);
    EXPECT_EQ(is_even_real(2.0, -0.1), 0);
}

TEST(IsEvenReal, IntegersBeyond32BitsCountAsOdd) {
    EXPECT_EQ(is_even_real(0x1p32, 0.0), 0);
    EXPECT_EQ(is_even_real(-0x1p32, 0.0), 0);
    EXPECT_EQ(is_even_real(2147483646.0, 0.0), 1);
    EXPECT_EQ(is_even_real(-2147483646.0, 0.0), 1);
    EXPECT_EQ(is_even_real(2147483647.0, 0.0), 0);
    EXPECT_EQ(is_even_real(2147483648.0, 0.0), 0);
    EXPECT_EQ(is_even_real(2147483646.5, 1.5), 0);
    EXPECT_EQ(is_even_real(5.0, 1e300), 0);
}

flag is_even(std::int32_t n) {
#ifdef ZKTARN_TEST_EXPORTED
    using procedure = flag (*)(const std::int32_t&);
    static const auto exported =
        zktarn::testing::exported<procedure>("_ZN6zktarn4util11is_even_intERKi");
    return exported(n);
#else
    return is_even_int(n);
#endif
}

TEST(IsEvenInt, TestsTheLowestBit) {
    EXPECT_EQ(is_even(-4), 1);
    EXPECT_EQ(is_even(-3), 0);
    EXPECT_EQ(is_even(0), 1);
    EXPECT_EQ(is_even(7), 0);
    EXPECT_EQ(is_even(std::numeric_limits<std::int32_t>::min()), 1);
    EXPECT_EQ(is_even(std::numeric_limits<std::int32_t>::max()), 0);
}

} // namespace
