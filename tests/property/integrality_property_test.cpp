// Compares the guarded floor and the procedures that use it with the literal reference, and with
// exact arithmetic where their definition is exact.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

#include "property/reference/util_reference.hpp"
#include "support/scale.hpp"
#include "zktarn/util/integrality.hpp"

namespace {

using boost::multiprecision::cpp_int;
using boost::multiprecision::cpp_rational;
using zktarn::flag;
using zktarn::testing::scaled;
namespace reference = zktarn::reference;
namespace util = zktarn::util;

bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

std::string inputs(double x, double scalar, double eps) {
    char text[128];
    std::snprintf(text, sizeof text, "x = %a, scalar = %a, eps = %a", x, scalar, eps);
    return text;
}

/// Powers of two, halves and the two constants of the guarded floor, their neighbours, and their
/// negatives.
std::vector<double> structured_values() {
    std::vector<double> seeds = {
        0.0,          0.5,          1.5,          2.5,          3.0,          1e9, 2147483646.0,
        2147483646.5, 2147483647.0, 2147483647.5, 2147483648.0, 4294967296.0, 1e17};
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        seeds.push_back(std::ldexp(1.0, exponent));
    }
    for (const double power : {0x1p10, 0x1p31, 0x1p32, 0x1p51, 0x1p52, 0x1p53, 0x1p62, 0x1p63}) {
        for (const double step : {-1.0, -0.5, 0.5, 1.0}) {
            seeds.push_back(power + step);
        }
    }
    std::vector<double> values = {std::numeric_limits<double>::quiet_NaN(),
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity()};
    for (const double seed : seeds) {
        for (const double value :
             {std::nextafter(seed, -1.0), seed, std::nextafter(seed, HUGE_VAL)}) {
            values.push_back(value);
            values.push_back(-value);
        }
    }
    return values;
}

const double tolerances[] = {0.0,
                             5e-324,
                             1e-300,
                             1e-12,
                             1e-9,
                             1e-6,
                             0.001,
                             0.1,
                             0.25,
                             0.5,
                             0.75,
                             1.0,
                             1.5,
                             2147483647.0,
                             0x1p52,
                             0x1p63,
                             1e300,
                             -1e-9,
                             -0.5,
                             -3.0,
                             -1e300,
                             -0.0,
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()};

/// Compares every procedure of integrality.hpp with the reference on one set of inputs.
bool agrees_with_rules(double x, double scalar, double eps) {
    flag is_int = -1;
    flag is_int_scalar = -1;
    double nearest = 77.0;
    double nearest_scalar = 77.0;
    util::epsilon_is_int(x, eps, is_int, nearest);
    util::epsilon_is_int_scalar(x, scalar, eps, is_int_scalar, nearest_scalar);
    const auto rule = reference::epsilon_is_int(x, eps);
    const auto scalar_rule = reference::epsilon_is_int_scalar(x, scalar, eps);
    return same_bits(util::fractional(x), reference::fractional(x)) &&
           same_bits(util::epsilon_floor(x, eps), reference::epsilon_floor(x, eps)) &&
           same_bits(util::epsilon_ceiling(x, eps), reference::epsilon_ceiling(x, eps)) &&
           same_bits(util::epsilon_fractionality(x, eps),
                     reference::epsilon_fractionality(x, eps)) &&
           is_int == (rule ? 1 : 0) && same_bits(nearest, rule.value_or(77.0)) &&
           is_int_scalar == (scalar_rule ? 1 : 0) &&
           same_bits(nearest_scalar, scalar_rule.value_or(77.0)) &&
           util::is_even_real(x, eps) == (reference::is_even_real(x, eps) ? 1 : 0);
}

TEST(IntegralityProperty, AgreesWithTheReferenceOnStructuredValues) {
    const std::vector<double> values = structured_values();
    for (const double x : values) {
        for (const double eps : tolerances) {
            ASSERT_TRUE(agrees_with_rules(x, 1.0, eps)) << inputs(x, 1.0, eps);
        }
    }
    std::mt19937_64 engine(20261121);
    const auto any = [&] { return values[engine() % values.size()]; };
    const std::int64_t cases = scaled(10'000'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const double x = any();
        const double scalar = any();
        const double eps = (i & 1) != 0 ? any() : tolerances[engine() % std::size(tolerances)];
        ASSERT_TRUE(agrees_with_rules(x, scalar, eps)) << inputs(x, scalar, eps);
    }
}

TEST(IntegralityProperty, AgreesWithTheReferenceNearIntegers) {
    std::mt19937_64 engine(20261122);
    const std::int64_t cases = scaled(5'000'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const int bits = static_cast<int>(engine() % 55);
        const auto whole = static_cast<double>(engine() >> (63 - bits));
        const double eps = std::ldexp(1.0, -static_cast<int>(engine() % 40));
        double x = whole + eps * (static_cast<double>(engine() % 9) - 4.0) / 2.0;
        for (std::uint64_t ulps = engine() % 3; ulps > 0; --ulps) {
            x = std::nextafter(x, -HUGE_VAL);
        }
        x = (engine() & 1) != 0 ? -x : x;
        ASSERT_TRUE(agrees_with_rules(x, 3.0, eps)) << inputs(x, 3.0, eps);
        ASSERT_TRUE(agrees_with_rules(x, 0.1, 0.0)) << inputs(x, 0.1, 0.0);
    }
}

cpp_int exact_floor(const cpp_rational& value) {
    const cpp_int numerator = boost::multiprecision::numerator(value);
    const cpp_int denominator = boost::multiprecision::denominator(value);
    cpp_int quotient = numerator / denominator;
    if (numerator < 0 && quotient * denominator != numerator) {
        --quotient;
    }
    return quotient;
}

/// The floor is exact for the rounded sum while the base is below 2^31 - 1 and the sum fits.
TEST(IntegralityProperty, FloorsAndCeilingsAreExactInTheExactRange) {
    const std::vector<double> values = structured_values();
    std::mt19937_64 engine(20261123);
    const std::int64_t cases = scaled(400'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const double x = values[engine() % values.size()];
        const double eps = tolerances[engine() % 17];
        if (!(std::fabs(x) < 2147483647.0) || !(std::fabs(x) + eps < 0x1p62)) {
            continue;
        }
        // Skips tiny values: their denominators are huge, and they all have the same floor.
        if (x != 0.0 && std::fabs(x) < 0x1p-200) {
            continue;
        }
        const cpp_rational sum(x + eps);
        const cpp_rational difference(-x + eps);
        ASSERT_EQ(cpp_rational(util::epsilon_floor(x, eps)), cpp_rational(exact_floor(sum)))
            << inputs(x, 1.0, eps);
        ASSERT_EQ(cpp_rational(-util::epsilon_ceiling(x, eps)),
                  cpp_rational(exact_floor(difference)))
            << inputs(x, 1.0, eps);
    }
}

/// The distance to the nearest integer is representable, so it is exact for every finite real.
TEST(IntegralityProperty, FractionalIsExact) {
    for (const double x : structured_values()) {
        if (!std::isfinite(x) || (x != 0.0 && std::fabs(x) < 0x1p-200)) {
            continue;
        }
        const cpp_rational exact(x);
        const cpp_rational down = exact - cpp_rational(exact_floor(exact));
        const cpp_rational distance = down > cpp_rational(1, 2) ? 1 - down : down;
        ASSERT_EQ(cpp_rational(util::fractional(x)), distance) << inputs(x, 1.0, 0.0);
    }
}

} // namespace
