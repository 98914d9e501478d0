#pragma once

#include <cstdint>

#include "zktarn/export.hpp"

/// Greatest common divisors.
///
/// Each procedure returns the divisor only, not the factors of Bezout's identity. Each is a pure
/// function of its arguments and may be called from any thread.

namespace zktarn::util {

/// The greatest common divisor of two reals: the last divisor of Euclid's algorithm on |a| and |b|,
/// which ends with the first remainder that is at most eps.
///
/// @param a    in. Any real.
/// @param b    in. Any real.
/// @param eps  in. Largest remainder that counts as zero.
///
/// Returns, by the first line that applies:
///
///     a or b NaN, infinite or +-1.7976931348623157e308     0.0
///     min(|a|, |b|) <= eps                                 max(|a|, |b|)
///     eps < 0                                              0.0
///     eps NaN                                              min(|a|, |b|)
///     any other                                            the last divisor
///
/// For example (12, 18, 1e-9) gives 6, (0.5, 0.75, 1e-9) gives 0.25 and (a, 0, 0) gives |a|. A
/// caller that divides by the result must expect 0.0.
///
/// Source: Euclid's algorithm; Stein's binary gcd where only the remainder 0 is within eps. The
/// number of steps grows with log(min(|a|, |b|) / result).
[[nodiscard]] ZKTARN_API double xgcd_r8(const double& a, const double& b,
                                        const double& eps) noexcept;

/// The greatest common divisor of two integers. Never negative.
///
/// @param a  in. -2147483646 to 2147483646.
/// @param b  in. As a.
///
/// Returns |a| if b is 0, |b| if a is 0, 0 if both are, and 0 if a or b is outside of its range.
///
/// Source: Stein's binary gcd, at most 62 steps.
[[nodiscard]] ZKTARN_API std::int32_t xgcd_i4(const std::int32_t& a,
                                              const std::int32_t& b) noexcept;

} // namespace zktarn::util
