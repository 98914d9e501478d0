#pragma once

#include <bit>
#include <concepts>

namespace zktarn::util::detail {

/// The greatest common divisor of two positive integers, by halving and subtracting.
///
/// Source: Stein, Computational problems associated with Racah algebra (1967). The number of zeros
/// behind a difference does not depend on its sign, so it is counted while the sign is found out.
template <std::unsigned_integral T>
[[gnu::always_inline]] inline T binary_gcd(T u, T v) noexcept {
    const int common = std::countr_zero(static_cast<T>(u | v));
    u >>= std::countr_zero(u);
    v >>= std::countr_zero(v);
    while (u != v) {
        // Which of the two is smaller is as good as random. Compilers make a branch of a choice,
        // but not of masks.
        const T difference = u - v;
        const T less = T{0} - static_cast<T>(u < v);
        v += difference & less;
        u = ((difference ^ less) - less) >> std::countr_zero(difference);
    }
    return u << common;
}

/// `xgcd_r8` for arguments that are passed on in registers.
double real_gcd(double a, double b, double eps) noexcept;

} // namespace zktarn::util::detail
