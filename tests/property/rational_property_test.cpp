// Fractions, divisors and the scalar search over random and structured inputs, against the literal
// rules and, where they claim something, against exact arithmetic.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

#include "property/reference/rational_reference.hpp"
#include "support/recorded_set.hpp"
#include "support/scale.hpp"
#include "zktarn/util/util.hpp"

namespace {

using boost::multiprecision::cpp_rational;
using zktarn::flag;
using zktarn::testing::element;
using zktarn::testing::recorded_set;
using zktarn::testing::scaled;
namespace reference = zktarn::reference;
namespace util = zktarn::util;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

class inputs {
public:
    explicit inputs(std::uint64_t seed) : engine_(seed) {}

    std::uint64_t below(std::uint64_t n) { return engine_() % n; }
    bool chance(std::uint64_t one_in) { return below(one_in) == 0; }
    double uniform() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    double sign() { return chance(2) ? 1.0 : -1.0; }
    double whole(std::uint64_t n) { return static_cast<double>(below(n)); }

    /// Values such as rows of a constraint matrix have, and some that none has.
    double value() {
        switch (below(9)) {
        case 0:
            return sign() * whole(400) / (1.0 + whole(20));
        case 1:
            return sign() * whole(100'000) / 100.0;
        case 2:
            return sign() * whole(1'000'000) / 1000.0;
        case 3:
            return sign() * whole(5000) / (500.0 + whole(501));
        case 4:
            return sign() * uniform() * std::ldexp(1.0, static_cast<int>(below(12)));
        case 5:
            return sign() * std::ldexp(1.0 + uniform(), static_cast<int>(below(120)) - 60);
        case 6:
            return std::nextafter(whole(1000) / (1.0 + whole(100)), chance(2) ? inf : -inf);
        case 7:
            return sign() * whole(1000);
        default:
            return odd();
        }
    }

    double odd() {
        static constexpr double values[] = {0.0,
                                            -0.0,
                                            nan,
                                            inf,
                                            -inf,
                                            5e-324,
                                            1e-310,
                                            2147483646.5,
                                            2147483647.0,
                                            2147483647.5,
                                            -2147483647.0,
                                            -3e9,
                                            0x1p52,
                                            -0x1p53,
                                            0x1p53 + 2.0,
                                            -0x1p53 - 2.0,
                                            1e17,
                                            1e300,
                                            -1.7e308,
                                            1.7976931348623157e308,
                                            -1.7976931348623157e308};
        return values[below(std::size(values))];
    }

    double tolerance() {
        static constexpr double usual[] = {1e-9, 1e-9, 1e-6, 1e-12, 1e-4, 0.0, 0.01};
        static constexpr double strange[] = {0.1,   0.3,  0.5,  1.0, 2.0, 1e9,  1e300,
                                             -1e-9, -0.5, -3.0, nan, inf, -inf, 5e-324};
        return chance(8) ? strange[below(std::size(strange))] : usual[below(std::size(usual))];
    }

    double bound() {
        static constexpr double usual[] = {1000.0, 100.0, 1e6, 50.0, 1e4, 1e5};
        static constexpr double strange[] = {0.0,  0.3,  1.0,   -50.0,
                                             1.5,  19.0, 1e7,   1e7 + 1.0,
                                             1e12, 1e18, 1e300, 1.7976931348623157e308,
                                             inf,  nan,  -inf};
        return chance(6) ? strange[below(std::size(strange))] : usual[below(std::size(usual))];
    }

    std::uint64_t word() { return engine_(); }

private:
    std::mt19937_64 engine_;
};

struct represented {
    flag found = -1;
    double num = -1.0;
    double den = -1.0;
};

represented rational(double x, double eps, double bound) {
    represented result;
    util::get_rational_rep(x, eps, bound, result.found, result.num, result.den);
    return result;
}

std::string shown(double a, double b, double c) {
    char text[128];
    std::snprintf(text, sizeof text, "%a, %a, %a", a, b, c);
    return text;
}

void expect_agreement(double x, double eps, double bound) {
    const represented ours = rational(x, eps, bound);
    const reference::fraction theirs = reference::get_rational_rep(x, eps, bound);
    ASSERT_TRUE(ours.found == (theirs.found ? 1 : 0) && same_bits(ours.num, theirs.num) &&
                same_bits(ours.den, theirs.den))
        << shown(x, eps, bound) << ": " << shown(ours.num, ours.den, 0.0) << " for "
        << shown(theirs.num, theirs.den, 0.0);
}

TEST(RationalProperty, AgreesWithTheRules) {
    inputs draw(20261124);
    const std::int64_t cases = scaled(4'000'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const double x = draw.value();
        const double eps = draw.tolerance();
        const double bound = draw.bound();
        // An infinite bound takes the literal search a while to give up.
        if (std::isinf(bound) && !draw.chance(200)) {
            continue;
        }
        ASSERT_NO_FATAL_FAILURE(expect_agreement(x, eps, bound));
    }
}

struct question {
    double x;
    double eps;
    double bound;
};

template <class Draw>
void expect_agreement_on_many(std::uint64_t seed, Draw question_of) {
    inputs draw(seed);
    const std::int64_t cases = scaled(500'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const question each = question_of(draw);
        ASSERT_NO_FATAL_FAILURE(expect_agreement(each.x, each.eps, each.bound));
    }
}

TEST(RationalProperty, AgreesWithTheRulesOnAnyBits) {
    expect_agreement_on_many(20261125, [](inputs& draw) -> question {
        const auto x = std::bit_cast<double>(draw.word());
        const double eps = draw.chance(2) ? std::bit_cast<double>(draw.word()) : draw.tolerance();
        return {x, eps, 1.0 + draw.whole(100'000)};
    });
}

TEST(RationalProperty, AgreesWithTheRulesWhereRoundingDecides) {
    expect_agreement_on_many(20261202, [](inputs& draw) -> question {
        const double x =
            draw.sign() * draw.uniform() * std::ldexp(1.0, static_cast<int>(draw.below(9)));
        const double eps = draw.chance(2) ? 0.0 : std::ldexp(draw.uniform(), -52);
        return {x, eps, std::ldexp(1.0 + draw.uniform(), 45 + static_cast<int>(draw.below(9)))};
    });
}

// Values within a few places of a fraction, and tolerances of a few places: what the screens let
// pass is decided by rounding alone.
TEST(RationalProperty, AgreesWithTheRulesBesideFractions) {
    expect_agreement_on_many(20261203, [](inputs& draw) -> question {
        const double den = 1.0 + draw.whole(100);
        const double num = draw.chance(2) ? 1.0 : 1.0 + draw.whole(100);
        const double place = std::ldexp(num / den, -53);
        const double x = draw.sign() * (num / den + (draw.whole(9) - 4.0) * place);
        const double eps = draw.whole(9) * place * 0.5;
        // Beyond 2^53 the recurrence of the convergents is rounded, too.
        const double bound = draw.chance(2)
                                 ? den + draw.whole(20)
                                 : std::ldexp(1.0, 50 + static_cast<int>(draw.below(12)));
        return {x, eps, bound};
    });
}

// Small values without a tolerance, and bounds that let the recurrence of the convergents go on
// when it is rounded: which fraction fits then is a matter of a single last place.
TEST(RationalProperty, AgreesWithTheRulesBehindTheLastExactConvergent) {
    expect_agreement_on_many(20261205, [](inputs& draw) -> question {
        const double x =
            draw.sign() * std::ldexp(1.0 + draw.uniform(), -static_cast<int>(draw.below(22)));
        return {x, 0.0,
                std::ldexp(1e15 * (1.0 + draw.uniform()), static_cast<int>(draw.below(13)))};
    });
}

// Reals so large that they have few digits or none for a fraction.
TEST(RationalProperty, AgreesWithTheRulesOnLargeValues) {
    expect_agreement_on_many(20261204, [](inputs& draw) -> question {
        const double x =
            draw.sign() * std::ldexp(1.0 + draw.uniform(), 44 + static_cast<int>(draw.below(10)));
        const double eps = draw.chance(2) ? 0.0 : std::ldexp(draw.uniform(), -8);
        return {x, eps, 1.0 + draw.whole(draw.chance(2) ? 40 : 4000)};
    });
}

TEST(RationalProperty, EverySuccessIsWithinTheToleranceAndTheBound) {
    inputs draw(20261126);
    const std::int64_t cases = scaled(200'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const double x = draw.value();
        const double eps = std::ldexp(1.0, -static_cast<int>(draw.below(45)) - 2);
        const double bound = 1.0 + draw.whole(100'000);
        const represented ours = rational(x, eps, bound);
        if (ours.found == 0 || !std::isfinite(x) || std::fabs(x) > 1e15 || std::fabs(x) < 1e-300) {
            continue;
        }
        ASSERT_GT(ours.den, 0.0);
        ASSERT_LE(ours.den, bound);
        ASSERT_EQ(ours.num, std::trunc(ours.num));
        const cpp_rational error =
            abs(cpp_rational(x) - cpp_rational(ours.num) / cpp_rational(ours.den));
        // Rounding of the quotient and of the sum with the tolerance.
        const cpp_rational allowed =
            cpp_rational(eps) + cpp_rational(std::fabs(x) + eps) * cpp_rational(0x1p-51);
        ASSERT_TRUE(error <= allowed) << shown(x, eps, bound);
    }
}

TEST(RealGcdProperty, AgreesWithTheRules) {
    inputs draw(20261127);
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

TEST(RealGcdProperty, AgreesWithTheRulesOnAnyBits) {
    inputs draw(20261128);
    const std::int64_t cases = scaled(300'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const auto a = std::bit_cast<double>(draw.word());
        // Magnitudes near each other half of the time, so that quotients are small.
        const double b =
            draw.chance(2) ? std::bit_cast<double>(draw.word()) : a * (draw.uniform() * 100.0);
        const double eps = draw.chance(2) ? 0.0 : draw.tolerance();
        ASSERT_TRUE(same_bits(util::xgcd_r8(a, b, eps), reference::xgcd_r8(a, b, eps)))
            << shown(a, b, eps);
    }
}

TEST(IntegerGcdProperty, AgreesWithTheRulesAndTheStandardLibrary) {
    inputs draw(20261129);
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

TEST(ScalarSearchProperty, AgreesWithTheRulesCallByCall) {
    inputs draw(20261130);
    const std::int64_t cases = scaled(300'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        std::vector<element> elements(draw.below(8));
        const std::uint64_t kind = draw.below(4);
        for (element& each : elements) {
            const double plain = kind == 0   ? draw.sign() * (1.0 + draw.whole(40)) / 6.0
                                 : kind == 1 ? draw.sign() * draw.whole(1000) / 100.0
                                             : draw.value();
            each = {plain, static_cast<flag>(draw.below(3)) - 1,
                    static_cast<flag>(draw.below(3)) - 1};
        }
        const double eps = draw.tolerance();
        const double max_den = draw.chance(4) ? 5.0 : 1.0 + draw.whole(10'000);
        static constexpr double bounds[] = {1000.0, 1e6,   0.9, 0.0, 1.0,
                                            30.0,   1e300, inf, nan, -1.0};
        const double max_scalar = bounds[draw.below(std::size(bounds))];
        const bool skip_marked = draw.chance(2);
        const bool selected_only = draw.chance(2);

        recorded_set ours{elements};
        flag found = -1;
        double scalar = -1.0;
        util::find_scalar_integral(ours.size(), ours, eps, max_den, max_scalar, found, scalar,
                                   flag{skip_marked}, flag{selected_only});
        recorded_set theirs{elements};
        const reference::search_result rule =
            reference::find_scalar_integral({theirs.size(), std::ref(theirs), eps, max_den,
                                             max_scalar, skip_marked, selected_only});
        ASSERT_TRUE(found == (rule.found ? 1 : 0) && same_bits(scalar, rule.scalar))
            << "case " << i << ": " << scalar << " for " << rule.scalar;
        ASSERT_EQ(ours.calls, theirs.calls) << "case " << i;
    }
}

TEST(ScalarSearchProperty, WhatItFindsMakesDecimalsIntegral) {
    inputs draw(20261201);
    const std::int64_t cases = scaled(100'000);
    const double eps = 1e-9;
    for (std::int64_t i = 0; i < cases; ++i) {
        std::vector<double> values(1 + draw.below(6));
        for (double& value : values) {
            value = draw.sign() * (1.0 + draw.whole(999)) / (draw.chance(2) ? 100.0 : 8.0);
        }
        const auto supply = [&](const std::int32_t& index, double& value, flag& marked,
                                flag& selected) {
            value = values[static_cast<std::size_t>(index - 1)];
            marked = 0;
            selected = 1;
        };
        flag found = 0;
        double scalar = 0.0;
        util::find_scalar_integral(static_cast<std::int32_t>(values.size()), supply, eps, 1000.0,
                                   1e6, found, scalar);
        ASSERT_EQ(found, 1);
        for (const double value : values) {
            // The tolerance, grown by what the scalar may have grown after the element was
            // accepted.
            const double product = value * scalar;
            ASSERT_NEAR(product, std::round(product), 1e-9 * scalar * 1000.0) << value;
            ASSERT_GE(std::fabs(product), 0.5);
        }
    }
}

} // namespace
