#pragma once

#include <cstdint>

#include "zktarn/export.hpp"

/// Greatest common divisors.
///
/// Both procedures return the divisor only. Each is a pure function of its inputs and callable from
/// any thread.

namespace zktarn::util {

/// The greatest common divisor of two reals, by Euclid's algorithm on their magnitudes with a
/// tolerance for the remainder.
///
/// @param a    in. Any real.
/// @param b    in. Any real.
/// @param eps  in. A remainder of at most eps counts as zero.
///
/// Returns the last divisor, the one whose remainder is at most eps: 6 for 12 and 18, 0.25 for 0.5
/// and 0.75; the larger magnitude when the smaller one is at most eps, so |a| when b is 0 (with eps
/// >= 0). Returns 0.0 for a negative eps, by which not even a remainder of zero ends the algorithm,
/// and the smaller magnitude for an eps that is not a number, by which the first one does. Returns
/// 0.0 when a or b is not a number, infinite, or of the largest finite magnitude. A caller that
/// divides by the result must expect it.
[[nodiscard]] ZKTARN_API double xgcd_r8(const double& a, const double& b,
                                        const double& eps) noexcept;

/// The greatest common divisor of two integers: never negative, |a| when b is 0, and 0 for two
/// zeros.
///
/// @param a  in. -2147483646 to 2147483646.
/// @param b  in. As a.
///
/// Returns 0 when a or b is one of the three integers outside of that range.
[[nodiscard]] ZKTARN_API std::int32_t xgcd_i4(const std::int32_t& a,
                                              const std::int32_t& b) noexcept;

} // namespace zktarn::util
