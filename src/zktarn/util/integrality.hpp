#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Whether a real is an integer within a tolerance, which one, and how far it is from it.
///
/// The tolerance eps is an absolute distance and inclusive. Floors and ceilings follow one rule,
/// the guarded floor of a base b plus an offset e:
///
///     |b| < 2147483647     floor(b + e), exactly; a sum beyond 64 bits ends at +-2^63
///     b >= 2147483647      b + e where |b + e| > 2^52, else b + e truncated toward zero
///     b <= -2147483647     the same of (b - 1) + e: right for fractional sums, 1 too low for
///                          integral ones
///
/// and a ceiling is the negated guarded floor of the negated base. A sum that is not a number gives
/// 0. A not-a-number value is integral within no tolerance, and no value is integral within a
/// tolerance that is negative or not a number.
///
/// Every procedure is a pure function of its inputs and callable from any thread.

namespace zktarn::util {

/// The distance of x to its nearest integer: in [0, 0.5], 0 for every |x| > 2^52; not a number for
/// an infinity or a not-a-number.
[[nodiscard]] ZKTARN_API double fractional(const double& x) noexcept;

/// Whether x is integral within eps.
///
/// @param x        in. Any real.
/// @param eps      in. Tolerance.
/// @param is_int   out. 1 when x is within eps of the guarded floor of x + eps, or else of the
///                 ceiling of x - eps; otherwise 0. The floor is tried first, so it wins where both
///                 are near enough, which takes an eps of at least 0.5.
/// @param nearest  out, optional. That floor or ceiling; left as it is when is_int is 0. With an
///                 eps of 1 or more an integral x reports x + floor(eps).
ZKTARN_API void epsilon_is_int(const double& x, const double& eps, flag& is_int,
                               optional_ref<double> nearest = {}) noexcept;

/// Whether x * scalar is integral within eps: as `epsilon_is_int`, but of the product, and with its
/// floor and ceiling taken of the product itself, not of the product moved by eps.
ZKTARN_API void epsilon_is_int_scalar(const double& x, const double& scalar, const double& eps,
                                      flag& is_int, optional_ref<double> nearest = {}) noexcept;

/// x less its guarded floor with offset eps: in [-eps, 1 - eps) while |x| < 2147483647, so a value
/// slightly below an integer has a small negative fractionality, not one close to 1.
[[nodiscard]] ZKTARN_API double epsilon_fractionality(const double& x, const double& eps) noexcept;

/// The guarded floor of x + eps: a value within eps below an integer floors to that integer.
[[nodiscard]] ZKTARN_API double epsilon_floor(const double& x, const double& eps) noexcept;

/// The ceiling of x - eps by the guarded rule: a value within eps above an integer ceils to that
/// integer. A result of zero may be a negative zero.
[[nodiscard]] ZKTARN_API double epsilon_ceiling(const double& x, const double& eps) noexcept;

/// 1 when x is within eps of an even integer, as `epsilon_is_int` finds it; otherwise 0. An integer
/// of magnitude 2147483647 or more counts as odd.
[[nodiscard]] ZKTARN_API flag is_even_real(const double& x, const double& eps) noexcept;

/// 1 when n is even, 0 when it is odd.
[[nodiscard]] ZKTARN_API_INLINE flag is_even_int(const std::int32_t& n) noexcept {
    return (n & 1) == 0 ? 1 : 0;
}

} // namespace zktarn::util
