#include "zktarn/util/rational.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

#include "zktarn/util/detail/rational.hpp"

namespace {

using namespace zktarn::util;
using zktarn::flag;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct result {
    flag found;
    double num;
    double den;
    bool operator==(const result&) const = default;
};

void PrintTo(const result& a, std::ostream* out) {
    *out << "{" << a.found << ", " << a.num << "/" << a.den << "}";
}

result rational(double x, double eps, double max_den) {
    result a{-1, -1.0, -1.0};
    get_rational_rep(x, eps, max_den, a.found, a.num, a.den);
    return a;
}

const result none{0, 0.0, 0.0};

TEST(RationalRep, TriesPowersOfTenBeforeSmallDenominators) {
    EXPECT_EQ(rational(0.25, 1e-9, 100.0), (result{1, 25.0, 100.0}));
    EXPECT_EQ(rational(0.25, 1e-9, 99.0), (result{1, 5.0, 20.0}));
    EXPECT_EQ(rational(0.25, 1e-9, 19.0), (result{1, 1.0, 4.0}));
    EXPECT_EQ(rational(0.5, 1e-9, 100.0), (result{1, 5.0, 10.0}));
    EXPECT_EQ(rational(0.001, 1e-9, 1000.0), (result{1, 1.0, 1000.0}));
}

TEST(RationalRep, FindsAThird) {
    EXPECT_EQ(rational(1.0 / 3.0, 1e-9, 100.0), (result{1, 1.0, 3.0}));
    EXPECT_EQ(rational(-2.0 / 3.0, 1e-9, 100.0), (result{1, -2.0, 3.0}));
}

TEST(RationalRep, TriesEachBaseDenominator) {
    for (const double base :
         {2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, 11.0, 13.0, 15.0, 17.0, 19.0, 23.0}) {
        // With the base as the bound, only the base and its divisors fit.
        const result found = rational(1.0 / base, 1e-12, base);
        EXPECT_EQ(found.found, 1);
        EXPECT_EQ(found.num / found.den, 1.0 / base) << base;
    }
    EXPECT_EQ(rational(1.0 / 21.0, 1e-12, 1000.0), (result{1, 1.0, 21.0}));
    EXPECT_EQ(rational(1.0 / 230.0, 1e-12, 1000.0), (result{1, 1.0, 230.0}));
    EXPECT_EQ(rational(1.0 / 19e5, 1e-15, 1e7), (result{1, 1.0, 19e5}));
    EXPECT_EQ(rational(1.0 / 23e7, 1e-17, 1e9), (result{1, 1.0, 23e7}));
}

TEST(RationalRep, FindsPiByItsContinuedFraction) {
    EXPECT_EQ(rational(std::numbers::pi, 1e-6, 1000.0), (result{1, 355.0, 113.0}));
    EXPECT_EQ(rational(-std::numbers::pi, 1e-6, 1000.0), (result{1, -355.0, 113.0}));
}

TEST(RationalRep, ABoundBelowOneCountsAsOne) {
    EXPECT_EQ(rational(0.5, 1e-9, 0.3), none);
    EXPECT_EQ(rational(7.0, 1e-9, 0.3), (result{1, 7.0, 1.0}));
    EXPECT_EQ(rational(7.25, 0.25, 0.0), (result{1, 7.0, 1.0}));
    EXPECT_EQ(rational(0.5, 1e-9, nan), none);
    EXPECT_EQ(rational(7.0, 1e-9, nan), (result{1, 7.0, 1.0}));
}

TEST(RationalRep, TakesTheMagnitudeOfTheBound) {
    EXPECT_EQ(rational(0.25, 1e-9, -50.0), rational(0.25, 1e-9, 50.0));
    EXPECT_EQ(rational(0.25, 1e-9, -50.0), (result{1, 5.0, 20.0}));
}

TEST(RationalRep, FailsIfNoDenominatorUpToTheBoundFits) {
    EXPECT_EQ(rational(0.1234567, 1e-12, 1000.0), none);
    EXPECT_EQ(rational(std::numbers::sqrt2, 1e-9, 1000.0), none);
    EXPECT_EQ(rational(0.3, -1e-9, 1000.0), none);
}

TEST(RationalRep, RoundsAValueNextToAnInteger) {
    EXPECT_EQ(rational(4.0 + 1e-10, 1e-9, 1000.0), (result{1, 4.0, 1.0}));
    EXPECT_EQ(rational(4.0 - 1e-10, 1e-9, 1000.0), (result{1, 4.0, 1.0}));
    EXPECT_EQ(rational(-4.0 - 1e-10, 1e-9, 1000.0), (result{1, -4.0, 1.0}));
    EXPECT_EQ(rational(0.0, 0.0, 1000.0), (result{1, 0.0, 1.0}));
}

TEST(RationalRep, ReturnsTheLowerNumeratorIfBothFit) {
    EXPECT_EQ(rational(0.4, 0.7, 1000.0), (result{1, 0.0, 1.0}));
    EXPECT_EQ(rational(0.4, 0.6, 1000.0), (result{1, 0.0, 1.0}));
}

TEST(RationalRep, ADenominatorMayBeTheBoundItself) {
    EXPECT_EQ(rational(0.25, 1e-9, 20.0), (result{1, 5.0, 20.0}));
    EXPECT_EQ(rational(0.25, 1e-9, 19.0), (result{1, 1.0, 4.0}));
}

TEST(RationalRep, TestsForAnIntegerBeforeTheConvergents) {
    EXPECT_EQ(rational(1e300, 1e-9, 10.0), (result{1, 1e300, 1.0}));
    EXPECT_EQ(rational(-3e9, 1e-9, 10.0), (result{1, -3e9, 1.0}));
}

TEST(RationalRep, ReturnsForNaNAndInfinity) {
    EXPECT_EQ(rational(nan, 1e-9, 1000.0), none);
    EXPECT_EQ(rational(0.5, nan, 1000.0), none);
    EXPECT_EQ(rational(nan, nan, nan), none);
    EXPECT_EQ(rational(inf, inf, 1000.0), none);
    EXPECT_EQ(rational(inf, 1e-9, 1000.0), (result{1, inf, 1.0}));
    EXPECT_EQ(rational(-inf, 1e-9, 1000.0), (result{1, -inf, 1.0}));
    EXPECT_EQ(rational(-inf, inf, 1000.0), (result{1, 0.0, 1.0}));
    EXPECT_EQ(rational(0.7, inf, 1000.0), (result{1, 0.0, 1.0}));
    EXPECT_EQ(rational(0.7, -inf, 1000.0), none);
}

TEST(RationalRep, AnInfiniteBoundTriesPowersOfTenOnly) {
    EXPECT_EQ(rational(0.5, 1e-9, inf), (result{1, 5.0, 10.0}));
    EXPECT_EQ(rational(0.5, 1e-9, -inf), (result{1, 5.0, 10.0}));
    EXPECT_EQ(rational(1.0 / 3.0, 1e-9, inf), (result{1, 333333333.0, 1e9}));
    EXPECT_EQ(rational(0.3, -1.0, inf), none);
}

TEST(RationalRep, AnInputMayAliasAnOutput) {
    double x = 0.75;
    double eps = 1e-9;
    flag found = 0;
    get_rational_rep(x, eps, 10.0, found, x, eps);
    EXPECT_EQ(found, 1);
    EXPECT_EQ(x, 3.0);
    EXPECT_EQ(eps, 4.0);
}

TEST(RationalRep, TriesTheNeighboursOfAConvergent) {
    // For a denominator near 2^53, adjacent fractions are about one unit in the last place apart,
    // so that a fraction beside the convergent can round to x.
    EXPECT_EQ(rational(0x1.fae7db9ce658p-2, 0.0, 0x1.245210f84aa72p+53),
              (result{1, 4529520470854438.0, 9150082569495704.0}));
    EXPECT_EQ(rational(-0x1.9559646421671p-2, 0.0, 0x1.33e3ac7f0ed13p+53),
              (result{1, -3991414201577360.0, 10083178312511280.0}));
    EXPECT_EQ(rational(-0x1.e0917cac6ed37p-7, 0.0, 1e16),
              (result{1, -130353766537272.0, 8888293600092137.0}));
}

TEST(RationalRep, RoundsEachNumberOfAConvergentOnce) {
    // Numbers above 2^53 are rounded; rounding one twice would give another fraction.
    EXPECT_EQ(rational(0x1.f1540acab4ba4p-18, 0.0, 4e17), none);
    EXPECT_EQ(rational(0x1.ef07561a375cfp-19, 0.0, 5e18),
              (result{1, 9416199715123.0, 2553025795245499904.0}));
}

// The table that selects the denominators to try
// ------------------------------------------------------------------------------------------

using detail::fixed_fraction;
using detail::near_multiples;
using detail::to_fixed_fraction;

constexpr std::array<double, 5> multipliers = {2, 3, 8, 19, 23};
constexpr near_multiples table(multipliers);

TEST(FixedFraction, WrapsAroundAtTheIntegers) {
    EXPECT_EQ(to_fixed_fraction(0.0), 0U);
    EXPECT_EQ(to_fixed_fraction(0.25), std::uint64_t{1} << 62);
    EXPECT_EQ(to_fixed_fraction(0.5), std::uint64_t{1} << 63);
    EXPECT_EQ(to_fixed_fraction(-0.5), std::uint64_t{1} << 63);
    EXPECT_EQ(to_fixed_fraction(-0.25), std::uint64_t{3} << 62);
    EXPECT_EQ(to_fixed_fraction(1.0), 0U);
    EXPECT_EQ(to_fixed_fraction(-1.0), 0U);
}

double distance_to_integer(double value) {
    return std::fabs(value - std::nearbyint(value));
}

TEST(NearMultiples, ListsEveryMultiplierWithinTheMargin) {
    constexpr int steps = 1 << 15;
    for (int step = -steps / 2; step <= steps / 2; ++step) {
        const double fraction = static_cast<double>(step) / steps;
        const std::uint32_t word = table(to_fixed_fraction(fraction));
        for (std::size_t i = 0; i < multipliers.size(); ++i) {
            if (distance_to_integer(multipliers[i] * fraction) <= table.margin) {
                ASSERT_NE(word >> i & 1, 0U) << multipliers[i] << " * " << fraction;
            }
        }
    }
}

TEST(NearMultiples, ListsNoMultiplierFarFromAnInteger) {
    constexpr int steps = 1 << 15;
    constexpr double slice = 1.0 / 1024;
    for (int step = -steps / 2; step <= steps / 2; ++step) {
        const double fraction = static_cast<double>(step) / steps;
        const std::uint32_t word = table(to_fixed_fraction(fraction));
        for (std::size_t i = 0; i < multipliers.size(); ++i) {
            if (distance_to_integer(multipliers[i] * fraction) >
                table.margin + multipliers[i] * slice) {
                ASSERT_EQ(word >> i & 1, 0U) << multipliers[i] << " * " << fraction;
            }
        }
    }
}

TEST(NearMultiples, CoversTheLargestFraction) {
    constexpr fixed_fraction largest = std::numeric_limits<fixed_fraction>::max();
    EXPECT_EQ(table(0), (1U << multipliers.size()) - 1);
    EXPECT_EQ(table(largest), table(0));
}

} // namespace
