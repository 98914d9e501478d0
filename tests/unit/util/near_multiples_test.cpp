#include "zktarn/util/detail/rational.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

using zktarn::util::detail::fixed_fraction;
using zktarn::util::detail::near_multiples;
using zktarn::util::detail::to_fixed_fraction;

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
