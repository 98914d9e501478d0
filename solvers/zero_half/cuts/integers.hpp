#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>

#include "zktarn/zktarn_util.hpp"

/// Integers held in doubles: limits of exactness, parity, rounding, and factors that make numbers
/// integers.

namespace zero_half {

/// Sums of integers up to this magnitude are exact.
inline constexpr double largest_exact = 1e15;
/// Larger coefficients are treated as numerical errors.
inline constexpr double largest_coefficient = 1e9;

/// Whether an integer is odd. Doubles from 2^53 on are even.
inline bool is_odd_integer(double value) {
    constexpr double all_even = 9007199254740992.0;
    return std::fabs(value) < all_even && static_cast<std::int64_t>(value) % 2 != 0;
}

/// The greatest integer that is at most `x + tolerance`; exact for every finite `x`. Integers are
/// recognised first, because `epsilon_floor` alone returns n - 1 for an integer n <= -2147483647.
inline double floor_of(double x, double tolerance) {
    zktarn::flag is_integer = 0;
    double nearest = 0.0;
    zktarn::util::epsilon_is_int(x, tolerance, is_integer, nearest);
    return is_integer != 0 ? nearest : zktarn::util::epsilon_floor(x, tolerance);
}

/// The least integer that is at least `x - tolerance`; never -0.0.
inline double ceiling_of(double x, double tolerance) {
    return 0.0 - floor_of(-x, tolerance);
}

inline double nearest_integer(double value) {
    constexpr double one_half = 0.5;
    return zktarn::util::epsilon_floor(value, one_half);
}

/// The greatest common divisor of two integers.
inline double common_divisor(double a, double b) {
    constexpr double less_than_one = 0.5;
    return zktarn::util::xgcd_r8(a, b, less_than_one);
}

/// The quotient of two integers, rounded down; up for the coefficient of a column that is
/// substituted by its upper bound.
inline double rounded_quotient(double a, std::int64_t divisor, bool is_up) {
    const auto dividend = static_cast<std::int64_t>(is_up ? -a : a);
    const std::int64_t down = dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
    return static_cast<double>(is_up ? -down : down);
}

/// The limits of a search for a factor that makes numbers integers.
struct scale_limits {
    double tolerance;
    double denominator; ///< largest denominator
    double scale;       ///< largest factor
};

/// A factor within the limits that makes each value an integer within the tolerance; empty if there
/// is none.
inline std::optional<double> integral_scale(std::span<const double> values,
                                            const scale_limits& limits) {
    zktarn::flag found = 0;
    double scale = 0.0;
    zktarn::util::find_scalar_integral(
        static_cast<std::int32_t>(values.size()),
        [&](const std::int32_t& i, double& value, zktarn::flag& marked, zktarn::flag& selected) {
            value = values[static_cast<std::size_t>(i - 1)];
            marked = 0;
            selected = 1;
        },
        limits.tolerance, limits.denominator, limits.scale, found, scale);
    return found != 0 ? std::optional(scale) : std::nullopt;
}

/// Values within this distance of an integer count as integers.
inline constexpr double integrality_tolerance = 1e-9;

/// A factor of moderate size that makes all values integers; empty if there is none. The factor is
/// 1 for integers, because a smaller one would be an inexact fraction.
inline std::optional<double> integral_scale(std::span<const double> values) {
    if (std::all_of(values.begin(), values.end(),
                    [](double value) { return std::trunc(value) == value; })) {
        return 1.0;
    }
    constexpr scale_limits moderate{
        .tolerance = integrality_tolerance, .denominator = 10'000.0, .scale = 1e7};
    return integral_scale(values, moderate);
}

} // namespace zero_half
