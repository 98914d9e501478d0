#include "zktarn/util/rational.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "zktarn/util/detail/rational.hpp"
#include "zktarn/util/detail/to_integer.hpp"

// A denominator fits if a fraction with it is within eps of x. docs/numerics.md proves that the
// screen and the table reject no denominator that fits, and that every search ends.

namespace zktarn::util {

namespace detail {

namespace {

/// A cheap necessary condition for a denominator d: if num / d is within eps of x for an integer
/// num, then x * d is within `limit(d)` of an integer.
struct screen {
    static constexpr double slack = 0x1p-50;

    double x;
    double per_denominator;

    screen(double value, double eps) noexcept
        : x(value), per_denominator(std::fabs(eps) * (1.0 + slack) + std::fabs(value) * slack) {}

    [[gnu::always_inline]] double limit(double d) const noexcept {
        return per_denominator * d + slack;
    }

    /// Whether d might fit. True for NaN.
    [[gnu::always_inline]] bool passes(double d) const noexcept {
        return !(std::fabs(offset_from_nearest(x * d)) > limit(d));
    }
};

/// The numerator that fits d, the lower one where two do.
fraction try_denominator(double x, double eps, double d) noexcept {
    const double floor = guarded_floor(x * d, 0.0);
    const double low = floor / d;
    const double high = (floor + 1.0) / d;
    if (!(x >= low - eps) || !(x <= eps + high)) {
        return {};
    }
    if (x <= eps + low) {
        return {floor, d};
    }
    if (x >= high - eps) {
        return {floor + 1.0, d};
    }
    return {};
}

// The base denominators after 1: steps of one up to 9, of two up to 19, then of four.
constexpr std::array<double, 14> bases = {2, 3, 4, 5, 6, 7, 8, 9, 11, 13, 15, 17, 19, 23};

/// base, 10 base, 100 base, ..., up to `bound`.
fraction try_powers_of_ten(const screen& screened, double eps, double base, double bound) noexcept {
    for (double d = base; d <= bound && std::isfinite(d); d *= 10.0) {
        if (screened.passes(d)) {
            if (const fraction hit = try_denominator(screened.x, eps, d); hit.found()) {
                return hit;
            }
        }
    }
    return {};
}

/// All bases with all their powers of ten, one denominator after the other.
fraction try_each_base(const screen& screened, double eps, double bound) noexcept {
    const fraction hit = try_powers_of_ten(screened, eps, 1.0, bound);
    // The powers of the first base never exceed an infinite bound, so no other base is tried.
    if (hit.found() || std::isinf(bound)) {
        return hit;
    }
    for (const double base : bases) {
        if (const fraction other = try_powers_of_ten(screened, eps, base, bound); other.found()) {
            return other;
        }
    }
    return {};
}

constexpr near_multiples multiples_by_bases(bases);

// The powers of ten that a table of candidates has room for: 1 to 10^7.
constexpr double largest_tabled_bound = 1e7;
constexpr std::size_t most_powers = 8;

/// Which of the denominators base * 10^power may fit: one word a power, in it one bit a base.
struct candidates {
    std::array<std::uint32_t, most_powers> words;
    std::size_t powers = 0;
    std::uint32_t any = 0;

    void add_power(std::uint32_t word) noexcept {
        words[powers++] = word;
        any |= word;
    }
};

/// The candidates of one base, in the order of their powers.
fraction try_candidates(const screen& screened, double eps, double bound,
                        const candidates& possible, int base) noexcept {
    double d = bases[static_cast<std::size_t>(base)];
    for (std::size_t power = 0; power < possible.powers && d <= bound; ++power, d *= 10.0) {
        if ((possible.words[power] >> base & 1) != 0 && screened.passes(d)) {
            if (const fraction hit = try_denominator(screened.x, eps, d); hit.found()) {
                return hit;
            }
        }
    }
    return {};
}

/// The same denominators in the same order as `try_each_base`, most of them rejected by table: one
/// product x * 10^power decides about base * 10^power for all bases at once.
fraction try_by_table(const screen& screened, double eps, double bound) noexcept {
    candidates possible;
    for (double power = 1.0; power <= bound; power *= 10.0) {
        const double offset = offset_from_nearest(screened.x * power);
        if (!(std::fabs(offset) > screened.limit(power))) {
            if (const fraction hit = try_denominator(screened.x, eps, power); hit.found()) {
                return hit;
            }
        }
        possible.add_power(multiples_by_bases(to_fixed_fraction(offset)));
    }
    for (std::uint32_t untried = possible.any; untried != 0; untried &= untried - 1) {
        const int base = std::countr_zero(untried);
        if (const fraction hit = try_candidates(screened, eps, bound, possible, base);
            hit.found()) {
            return hit;
        }
    }
    return {};
}

fraction search_denominators(double x, double eps, double bound) noexcept {
    const screen screened(x, eps);
    // A quarter of the margin covers the rounding of x * 10^power.
    const bool by_table =
        bound <= largest_tabled_bound && screened.limit(bound) <= multiples_by_bases.margin * 0.75;
    return by_table ? try_by_table(screened, eps, bound) : try_each_base(screened, eps, bound);
}

/// p/q or, next to it, (p + 1)/q or (p - 1)/q: the first of them within eps of x.
fraction try_convergent(double x, double eps, double p, double q) noexcept {
    const auto within = [eps](double error) { return -eps <= error && error <= eps; };
    const double error = x - p / q;
    if (within(error)) {
        return {p, q};
    }
    const double neighbour = p + (error >= 0.0 ? 1.0 : -1.0);
    return within(x - neighbour / q) ? fraction{neighbour, q} : fraction{};
}

/// a * b + c with one rounding, for integers.
double multiply_add(double a, double b, double c) noexcept {
    // Up to this bound the plain product and sum are exact, and faster where no fused instruction
    // exists.
    constexpr double exact = 0x1p52;
    const double product = a * b;
    if (std::fabs(product) <= exact && std::fabs(c) <= exact) {
        return product + c;
    }
    return std::fma(a, b, c);
}

/// The last two convergents of a continued fraction, p/q and the one before it.
struct convergents {
    double p;
    double q = 1.0;
    double p_before = 1.0;
    double q_before = 0.0;

    explicit convergents(double first_quotient) noexcept : p(first_quotient) {}

    void advance(double quotient) noexcept {
        const double p_next = multiply_add(quotient, p, p_before);
        const double q_next = multiply_add(quotient, q, q_before);
        p_before = p;
        q_before = q;
        p = p_next;
        q = q_next;
    }
};

/// The convergents of x in turn, as long as their denominators are at most `bound`.
///
/// Each comparison is written so that it ends the search if an operand is NaN.
fraction expand(double x, double eps, double bound) noexcept {
    const double half = eps * 0.5;
    double quotient = guarded_floor(x, half);
    if (const fraction hit = try_convergent(x, eps, quotient, 1.0); hit.found()) {
        return hit;
    }
    const screen screened(x, eps);
    convergents last(quotient);
    double rest = x;
    for (;;) {
        if (!(rest >= quotient - eps)) {
            return {};
        }
        rest = 1.0 / (rest - quotient);
        quotient = guarded_floor(rest, half);
        if (quotient < -eps) {
            return {};
        }
        last.advance(quotient);
        if (!(last.q <= bound)) {
            return {};
        }
        // As above: p/q fits only if x * q is near p, a neighbour only if it is near p +- 1.
        const double off = std::fabs(x * last.q - last.p);
        const double limit = screened.limit(last.q);
        if (!(off > limit) || !(std::fabs(off - 1.0) > limit)) {
            if (const fraction hit = try_convergent(x, eps, last.p, last.q); hit.found()) {
                return hit;
            }
        }
    }
}

} // namespace

fraction rational_rep(double x, double eps, double max_den) noexcept {
    // No distance is within a tolerance if one of them is NaN.
    if (std::isnan(x) || std::isnan(eps)) {
        return {};
    }
    const double magnitude = std::fabs(max_den);
    const double bound = magnitude > 1.0 ? magnitude : 1.0;
    const fraction hit = search_denominators(x, eps, bound);
    if (hit.found() || std::isinf(bound)) {
        return hit;
    }
    return expand(x, eps, bound);
}

} // namespace detail

void get_rational_rep(const double& x, const double& eps, const double& max_den, flag& found,
                      double& num, double& den) noexcept {
    const detail::fraction result = detail::rational_rep(x, eps, max_den);
    found = result.found() ? 1 : 0;
    num = result.num;
    den = result.den;
}

} // namespace zktarn::util
