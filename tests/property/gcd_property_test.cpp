// Divisors of random and structured inputs, compared bit for bit with the literal reference.
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

#include <gtest/gtest.h>

#include "property/number_draws.hpp"
#include "property/reference/rational_reference.hpp"
#include "support/scale.hpp"
#include "zktarn/util/gcd.hpp"

namespace {

using zktarn::testing::number_draws;
using zktarn::testing::same_bits;
using zktarn::testing::scaled;
using zktarn::testing::shown;
namespace reference = zktarn::reference;
namespace util = zktarn::util;

TEST(RealGcdProperty, AgreesWithTheReference) {
    number_draws draw(20261127);
    const std::int64_t cases = scaled(3'000'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const bool integers = draw.chance(2);
        const double a = integers ? draw.whole(std::uint64_t{1} << draw.below(60)) : draw.value();
        const double b = integers ? draw.whole(std::uint64_t{1} << draw.below(60)) : draw.value();
        const double eps = draw.tolerance();
        ASSERT_TRUE(same_bits(util::xgcd_r8(a, b, eps), reference::xgcd_r8(a, b, eps)))
            << shown(a, b, eps);
    }
}

TEST(RealGcdProperty, AgreesWithTheReferenceOnRandomBits) {
    number_draws draw(20261128);
    const std::int64_t cases = scaled(300'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const auto a = std::bit_cast<double>(draw.word());
        // Half of the pairs have similar magnitudes, so that quotients are small.
        const double b =
            draw.chance(2) ? std::bit_cast<double>(draw.word()) : a * (draw.uniform() * 100.0);
        const double eps = draw.chance(2) ? 0.0 : draw.tolerance();
        ASSERT_TRUE(same_bits(util::xgcd_r8(a, b, eps), reference::xgcd_r8(a, b, eps)))
            << shown(a, b, eps);
    }
}

// Multiples of a power of two, with tolerances just below, at and above it: there the exact divisor
// replaces Euclid's algorithm.
TEST(RealGcdProperty, AgreesWithTheReferenceOnMultiplesOfAPowerOfTwo) {
    number_draws draw(20261206);
    const std::int64_t cases = scaled(1'000'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const int exponent =
            static_cast<int>(draw.below(draw.chance(4) ? 2000 : 40)) - (draw.chance(2) ? 1074 : 20);
        const auto multiple = [&] {
            const double odd = 1.0 + 2.0 * draw.whole(std::uint64_t{1} << draw.below(52));
            return draw.sign() * std::ldexp(odd, exponent + static_cast<int>(draw.below(9)));
        };
        const double power = std::ldexp(1.0, exponent);
        const double tolerances[] = {0.0,
                                     -0.0,
                                     power,
                                     std::nextafter(power, 0.0),
                                     std::nextafter(power, 1.0),
                                     power * 4.0,
                                     power * draw.whole(1000)};
        const double a = multiple();
        const double b = multiple();
        const double eps = tolerances[draw.below(std::size(tolerances))];
        ASSERT_TRUE(same_bits(util::xgcd_r8(a, b, eps), reference::xgcd_r8(a, b, eps)))
            << shown(a, b, eps);
    }
}

TEST(IntegerGcdProperty, AgreesWithTheReferenceAndTheStandardLibrary) {
    number_draws draw(20261129);
    const std::int64_t cases = scaled(3'000'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const auto any = [&] {
            const auto bits = static_cast<std::int32_t>(draw.word());
            return draw.chance(50) ? std::numeric_limits<std::int32_t>::min() +
                                         static_cast<std::int32_t>(draw.below(3))
                                   : bits >> draw.below(31);
        };
        const std::int32_t a = any();
        const std::int32_t b = any();
        const std::int32_t ours = util::xgcd_i4(a, b);
        ASSERT_EQ(ours, reference::xgcd_i4(a, b)) << a << ", " << b;
        if (ours != 0) {
            ASSERT_EQ(ours, std::gcd(a, b)) << a << ", " << b;
        }
    }
}

} // namespace
