#include "zktarn/util/rational.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "zktarn/util/detail/guarded_floor.hpp"
#include "zktarn/util/detail/nearest.hpp"
#include "zktarn/util/detail/rational.hpp"

namespace zktarn::util {

namespace detail {

namespace {

// A denominator fits when it passes a test with two divisions; most of those that are tried are far
// from fitting. The screen tells them apart by a product.
//
// Say d fits by the numerator f: then x <= eps + f / d as the machine computes it, each operation
// with a relative error of at most u = 2^-53. So x * d - f <= |eps| d (1 + u) + 2.1 u |f|, and the
// rounded product p has p - f <= |eps| d (1 + u) + 3.1 u |p| + 3 u, since f is within 1 of p; the
// same holds for f + 1 - p when f + 1 fits. Either way p is as close as that to an integer. The
// limit of the screen, (|eps| (1 + 8 u) + 8 u |x|) d + 8 u, is larger by more than the rounding of
// the screen itself. Beyond 2^51, where p is integral or nearly so and `nearest` fails, it exceeds
// any distance.
constexpr double slack = 0x1p-50;

/// What the screen needs to know of x and eps.
struct screen {
    double x;
    double per_denominator;

    screen(double value, double eps) noexcept
        : x(value), per_denominator(std::fabs(eps) * (1.0 + slack) + std::fabs(value) * slack) {}

    /// Whether d might fit. True for everything that is not a number.
    [[gnu::always_inline]] bool passes(double d) const noexcept {
        const double p = x * d;
        return !(std::fabs(p - nearest(p)) > per_denominator * d + slack);
    }
};

/// The test itself.
fraction try_denominator(double x, double eps, double d) noexcept {
    const double floor = guarded_floor(x * d, 0.0);
    const double low = floor / d;
    const double high = (floor + 1.0) / d;
    if (!(x >= low - eps) || !(x <= eps + high)) {
        return {};
    }
    if (x <= eps + low) {
        return {true, floor, d};
    }
    if (x >= high - eps) {
        return {true, floor + 1.0, d};
    }
    return {};
}

/// k, 10 k, 100 k, ..., as long as they are at most `bound` and finite.
fraction try_decimal_multiples(const screen& screened, double eps, double k,
                               double bound) noexcept {
    for (double d = k; d <= bound && std::isfinite(d); d *= 10.0) {
        if (screened.passes(d)) {
            if (const fraction hit = try_denominator(screened.x, eps, d); hit.found) {
                return hit;
            }
        }
    }
    return {};
}

// The base denominators but for 1: steps of one up to 9, of two up to 19, then of four.
constexpr std::array<double, 14> bases = {2, 3, 4, 5, 6, 7, 8, 9, 11, 13, 15, 17, 19, 23};

/// Up to this bound the screen goes over all bases at once, one power of ten after the other.
constexpr double widest = 1e7;
constexpr std::size_t most_powers = 7;

// Two bases at a time, which every 64-bit machine can do.
using pair = double __attribute__((vector_size(16)));
using pair_of_masks = std::int64_t __attribute__((vector_size(16)));

/// A word with a bit for each base b, in order, for which b * power is at most `bound` and passes.
[[gnu::always_inline]] inline std::uint32_t screen_power(const screen& screened, double power,
                                                         double bound) noexcept {
    const pair x = {screened.x, screened.x};
    pair_of_masks found = {};
    pair_of_masks bits = {1, 2};
    for (std::size_t i = 0; i < bases.size(); i += 2) {
        const pair d = pair{bases[i], bases[i + 1]} * power;
        const pair p = x * d;
        const pair above = p - nearest(p);
        const pair limit = d * screened.per_denominator + slack;
        // Written so that what is not a number passes.
        const pair_of_masks fails = (above > limit) | (-above > limit) | (d > bound);
        found |= ~fails & bits;
        bits <<= 2;
    }
    return static_cast<std::uint32_t>(found[0] | found[1]);
}

/// The multiples of all bases, for a bound of at most `widest`. Bases come first in the order of
/// the search, powers second.
fraction try_bases(const screen& screened, double eps, double bound) noexcept {
    std::array<std::uint32_t, most_powers> passed{};
    std::uint32_t any = 0;
    std::size_t powers = 0;
    for (double power = 1.0; bases.front() * power <= bound; power *= 10.0) {
        passed[powers] = screen_power(screened, power, bound);
        any |= passed[powers];
        ++powers;
    }
    for (; any != 0; any &= any - 1) {
        const int base = std::countr_zero(any);
        double d = bases[static_cast<std::size_t>(base)];
        for (std::size_t i = 0; i < powers; ++i, d *= 10.0) {
            if ((passed[i] >> base & 1) != 0) {
                if (const fraction hit = try_denominator(screened.x, eps, d); hit.found) {
                    return hit;
                }
            }
        }
    }
    return {};
}

/// First the decimal-friendly denominators.
fraction decimal_search(double x, double eps, double bound) noexcept {
    const screen screened(x, eps);
    const fraction hit = try_decimal_multiples(screened, eps, 1.0, bound);
    // Of an infinite bound only the powers of ten are ever tried, and they have no end.
    if (hit.found || std::isinf(bound)) {
        return hit;
    }
    if (bound <= widest) {
        return try_bases(screened, eps, bound);
    }
    for (const double k : bases) {
        if (const fraction found = try_decimal_multiples(screened, eps, k, bound); found.found) {
            return found;
        }
    }
    return {};
}

/// p/q or, beside it, (p + 1)/q or (p - 1)/q, whichever is within eps of x first.
fraction try_convergent(double x, double eps, double p, double q) noexcept {
    const auto within = [eps](double error) { return -eps <= error && error <= eps; };
    const double error = x - p / q;
    if (within(error)) {
        return {true, p, q};
    }
    const double beside = p + (error >= 0.0 ? 1.0 : -1.0);
    return within(x - beside / q) ? fraction{true, beside, q} : fraction{};
}

/// a * b + c with one rounding, for integers. While the product and c stay within 2^52 nothing is
/// rounded at all, and the plain operations, which every machine has, do the same.
double multiply_add(double a, double b, double c) noexcept {
    constexpr double exact = 0x1p52;
    const double product = a * b;
    if (std::fabs(product) <= exact && std::fabs(c) <= exact) {
        return product + c;
    }
    return std::fma(a, b, c);
}

/// Then the continued fraction.
///
/// It ends: a partial quotient below -eps fails, and one of at least 1 lets the denominator grow
/// like the Fibonacci numbers, past any finite bound within 1500 steps. A quotient of 0 takes a
/// remainder r - a of at least 1, which only the first, for a large negative x, can leave behind;
/// the denominator is then 0 once, and 1 the next time. Every comparison with the bound or with
/// what is left of x is written so that it fails where one side is not a number.
fraction continued_fraction(double x, double eps, double bound) noexcept {
    const double half = eps * 0.5;
    double a = guarded_floor(x, half);
    if (const fraction hit = try_convergent(x, eps, a, 1.0); hit.found) {
        return hit;
    }
    const double per_denominator = screen(x, eps).per_denominator;
    double r = x;
    double p = a;
    double q = 1.0;
    double p_before = 1.0;
    double q_before = 0.0;
    for (;;) {
        if (!(r >= a - eps)) {
            return {};
        }
        r = 1.0 / (r - a);
        a = guarded_floor(r, half);
        if (a < -eps) {
            return {};
        }
        const double q_next = multiply_add(a, q, q_before);
        if (!(q_next <= bound)) {
            return {};
        }
        const double p_next = multiply_add(a, p, p_before);
        // As in the screen of denominators: p/q fits only if x * q is close to p, and its neighbour
        // only if it is close to one more or one less.
        const double off = std::fabs(x * q_next - p_next);
        const double limit = per_denominator * q_next + slack;
        if (!(off > limit) || !(std::fabs(off - 1.0) > limit)) {
            if (const fraction hit = try_convergent(x, eps, p_next, q_next); hit.found) {
                return hit;
            }
        }
        p_before = p;
        q_before = q;
        p = p_next;
        q = q_next;
    }
}

} // namespace

fraction rational_rep(double x, double eps, double max_den) noexcept {
    // Nothing is within such a tolerance of anything, nor is such a value within any.
    if (std::isnan(x) || std::isnan(eps)) {
        return {};
    }
    const double magnitude = std::fabs(max_den);
    const double bound = magnitude > 1.0 ? magnitude : 1.0;
    const fraction hit = decimal_search(x, eps, bound);
    if (hit.found || std::isinf(bound)) {
        return hit;
    }
    return continued_fraction(x, eps, bound);
}

} // namespace detail

void get_rational_rep(const double& x, const double& eps, const double& max_den, flag& found,
                      double& num, double& den) noexcept {
    const detail::fraction result = detail::rational_rep(x, eps, max_den);
    found = result.found ? 1 : 0;
    num = result.num;
    den = result.den;
}

} // namespace zktarn::util
