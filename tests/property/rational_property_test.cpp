// Compares fractions of random and structured inputs with the literal reference, bit for bit, and
// checks them with exact arithmetic.
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>

#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

#include "property/number_draws.hpp"
#include "property/reference/rational_reference.hpp"
#include "support/scale.hpp"
#include "zktarn/util/rational.hpp"

namespace {

using boost::multiprecision::cpp_rational;
using zktarn::flag;
using zktarn::testing::inf;
using zktarn::testing::number_draws;
using zktarn::testing::same_bits;
using zktarn::testing::scaled;
using zktarn::testing::shown;
namespace reference = zktarn::reference;
namespace util = zktarn::util;

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

void expect_agreement(double x, double eps, double bound) {
    const represented ours = rational(x, eps, bound);
    const reference::fraction theirs = reference::get_rational_rep(x, eps, bound);
    ASSERT_TRUE(ours.found == (theirs.found ? 1 : 0) && same_bits(ours.num, theirs.num) &&
                same_bits(ours.den, theirs.den))
        << shown(x, eps, bound) << ": " << shown(ours.num, ours.den, 0.0) << " for "
        << shown(theirs.num, theirs.den, 0.0);
}

TEST(RationalProperty, AgreesWithTheReference) {
    number_draws draw(20261124);
    const std::int64_t cases = scaled(4'000'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const double x = draw.value();
        const double eps = draw.tolerance();
        const double bound = draw.bound();
        // The reference is slow with an infinite bound, which it leaves after thousands of steps.
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
    number_draws draw(seed);
    const std::int64_t cases = scaled(500'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        const question each = question_of(draw);
        ASSERT_NO_FATAL_FAILURE(expect_agreement(each.x, each.eps, each.bound));
    }
}

TEST(RationalProperty, AgreesWithTheReferenceOnRandomBits) {
    expect_agreement_on_many(20261125, [](number_draws& draw) -> question {
        const auto x = std::bit_cast<double>(draw.word());
        const double eps = draw.chance(2) ? std::bit_cast<double>(draw.word()) : draw.tolerance();
        return {x, eps, 1.0 + draw.whole(100'000)};
    });
}

TEST(RationalProperty, AgreesWithTheReferenceWhereRoundingDecides) {
    expect_agreement_on_many(20261202, [](number_draws& draw) -> question {
        const double x =
            draw.sign() * draw.uniform() * std::ldexp(1.0, static_cast<int>(draw.below(9)));
        const double eps = draw.chance(2) ? 0.0 : std::ldexp(draw.uniform(), -52);
        return {x, eps, std::ldexp(1.0 + draw.uniform(), 45 + static_cast<int>(draw.below(9)))};
    });
}

// Bounds near the table's limit, at a denominator and next to one. Tolerances near the largest that
// the table's margin covers.
TEST(RationalProperty, AgreesWithTheReferenceAtTheLimitsOfTheTable) {
    expect_agreement_on_many(20261208, [](number_draws& draw) -> question {
        static constexpr double bases[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 13, 15, 17, 19, 23};
        const double base = bases[draw.below(std::size(bases))];
        const double den = base * std::pow(10.0, static_cast<double>(draw.below(8)));
        const double bound = draw.chance(3)   ? std::nextafter(den, draw.chance(2) ? inf : 0.0)
                             : draw.chance(2) ? den
                                              : 1e7 + draw.whole(3) - 1.0;
        const double widest = 0x1.8p-10 / bound;
        const double eps = draw.chance(2) ? widest * (1.0 + (draw.whole(9) - 4.0) * 0x1p-40)
                                          : widest * draw.uniform();
        const double x = draw.sign() * draw.whole(1 + draw.below(1'000'000)) / den;
        return {draw.chance(2) ? x : x + (draw.uniform() - 0.5) * 2.5 * eps, eps, bound};
    });
}

// Values a few units in the last place from a fraction, with tolerances of that size: only rounding
// decides whether a candidate is accepted.
TEST(RationalProperty, AgreesWithTheReferenceNearFractions) {
    expect_agreement_on_many(20261203, [](number_draws& draw) -> question {
        const double den = 1.0 + draw.whole(100);
        const double num = draw.chance(2) ? 1.0 : 1.0 + draw.whole(100);
        const double place = std::ldexp(num / den, -53);
        const double x = draw.sign() * (num / den + (draw.whole(9) - 4.0) * place);
        const double eps = draw.whole(9) * place * 0.5;
        // Above 2^53 the recurrence of the convergents is inexact.
        const double bound = draw.chance(2)
                                 ? den + draw.whole(20)
                                 : std::ldexp(1.0, 50 + static_cast<int>(draw.below(12)));
        return {x, eps, bound};
    });
}

// Small values with tolerance 0, and bounds that let the recurrence of the convergents go on where
// it is inexact: one unit in the last place decides which fraction fits.
TEST(RationalProperty, AgreesWithTheReferenceBeyondTheLastExactConvergent) {
    expect_agreement_on_many(20261205, [](number_draws& draw) -> question {
        const double x =
            draw.sign() * std::ldexp(1.0 + draw.uniform(), -static_cast<int>(draw.below(22)));
        return {x, 0.0,
                std::ldexp(1e15 * (1.0 + draw.uniform()), static_cast<int>(draw.below(13)))};
    });
}

// Reals so large that few or no bits remain for a fractional part.
TEST(RationalProperty, AgreesWithTheReferenceOnLargeValues) {
    expect_agreement_on_many(20261204, [](number_draws& draw) -> question {
        const double x =
            draw.sign() * std::ldexp(1.0 + draw.uniform(), 44 + static_cast<int>(draw.below(10)));
        const double eps = draw.chance(2) ? 0.0 : std::ldexp(draw.uniform(), -8);
        return {x, eps, 1.0 + draw.whole(draw.chance(2) ? 40 : 4000)};
    });
}

TEST(RationalProperty, EverySuccessIsWithinTheToleranceAndTheBound) {
    number_draws draw(20261126);
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
        // Allows for the rounding of the quotient and of its sum with the tolerance.
        const cpp_rational allowed =
            cpp_rational(eps) + cpp_rational(std::fabs(x) + eps) * cpp_rational(0x1p-51);
        ASSERT_TRUE(error <= allowed) << shown(x, eps, bound);
    }
}

} // namespace
