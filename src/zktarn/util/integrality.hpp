#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Tests whether a real is integral within a tolerance, and floors and ceilings with a tolerance.
///
/// The tolerance eps is an absolute distance and inclusive. All floors and ceilings follow one
/// rule, the guarded floor of a base b plus an offset e:
///
///     |b| < 2147483647     floor(b + e); -2^63 or 2^63 if that is outside of 64 bits
///     b >= 2147483647      with t = b + e: t if |t| > 2^52, else t truncated toward zero
///     b <= -2147483647     with t = (b - 1) + e: t if |t| > 2^52, else t truncated toward zero
///
/// The last line gives the floor of a fractional b + e, but 1 less than an integral one. A guarded
/// ceiling is the negated guarded floor of -b plus e. A sum that is NaN gives 0.
///
/// NaN is not integral. Nothing is integral within a tolerance that is negative or NaN.
///
/// Every procedure is a pure function of its arguments and may be called from any thread.

namespace zktarn::util {

/// The distance of x to its nearest integer, in [0, 0.5]. For |x| > 2^52: 0. For infinities and
/// NaN: NaN.
[[nodiscard]] ZKTARN_API double fractional(const double& x) noexcept;

/// Tests whether x is integral within eps.
///
/// @param x        in. Any real.
/// @param eps      in. Tolerance.
/// @param is_int   out. 1 if x - f <= eps for the guarded floor f of x + eps, or else c - x <= eps
///                 for the guarded ceiling c of x - eps; otherwise 0.
/// @param nearest  out, optional. f or c, the one that passed; not written if is_int is 0.
///
/// f is tested first. Both pass only if eps >= 0.5. If eps >= 1, an integral x has nearest = x +
/// floor(eps).
ZKTARN_API void epsilon_is_int(const double& x, const double& eps, flag& is_int,
                               optional_ref<double> nearest = {}) noexcept;

/// Like `epsilon_is_int` for p = x * scalar, but tests floor(p) and ceil(p), not floor(p + eps) and
/// ceil(p - eps).
ZKTARN_API void epsilon_is_int_scalar(const double& x, const double& scalar, const double& eps,
                                      flag& is_int, optional_ref<double> nearest = {}) noexcept;

/// x less the guarded floor of x + eps. In [-eps, 1 - eps) for |x| < 2147483647: slightly below an
/// integer the result is small and negative, not close to 1.
[[nodiscard]] ZKTARN_API double epsilon_fractionality(const double& x, const double& eps) noexcept;

/// The guarded floor of x + eps. An x within eps below an integer gives that integer.
[[nodiscard]] ZKTARN_API double epsilon_floor(const double& x, const double& eps) noexcept;

/// The guarded ceiling of x - eps. An x within eps above an integer gives that integer. A zero may
/// be a negative zero.
[[nodiscard]] ZKTARN_API double epsilon_ceiling(const double& x, const double& eps) noexcept;

/// 1 if x is within eps of an even integer by `epsilon_is_int`, else 0. An integer of magnitude
/// 2147483647 or more counts as odd.
[[nodiscard]] ZKTARN_API flag is_even_real(const double& x, const double& eps) noexcept;

/// 1 if n is even, else 0.
[[nodiscard]] ZKTARN_API_INLINE flag is_even_int(const std::int32_t& n) noexcept {
    return (n & 1) == 0 ? 1 : 0;
}

} // namespace zktarn::util
