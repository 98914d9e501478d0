#pragma once

#include <bit>
#include <cstdint>
#include <cstdlib>

namespace zktarn::util::detail {

/// The greatest common divisor of two odd positive integers: binary gcd.
///
/// Source: Stein, Computational problems associated with Racah algebra, Journal of Computational
/// Physics 1 (1967). In its usual form
///
///     while (u != v) {
///         if (u < v) { swap(u, v); }
///         u -= v;                   // even
///         u >>= countr_zero(u);     // odd again
///     }
///
/// it has a branch that no processor predicts. Here the sign bit of the difference selects the
/// smaller number and the magnitude instead. A difference and its negation have the same number of
/// trailing zeros, so the processor counts them while it finds the magnitude.
[[gnu::always_inline]] inline std::int64_t binary_gcd(std::int64_t u, std::int64_t v) noexcept {
    while (u != v) {
        const std::int64_t difference = u - v;
        const std::int64_t if_less = difference >> 63; // all ones if u < v, else 0
        v += difference & if_less;
        u = std::abs(difference) >> std::countr_zero(static_cast<std::uint64_t>(difference));
    }
    return u;
}

/// `xgcd_r8` with arguments in registers.
double real_gcd(double a, double b, double eps) noexcept;

} // namespace zktarn::util::detail
