#pragma once

/// Shared by the search for a fraction and the search for a scalar.

namespace zktarn::util::detail {

/// A fraction, or none. Two reals, so that it is returned in registers.
struct fraction {
    double num = 0.0;
    /// Positive; 0.0 in place of a fraction.
    double den = 0.0;

    [[nodiscard]] bool found() const noexcept { return den != 0.0; }
};

/// `get_rational_rep` with arguments in registers.
fraction rational_rep(double x, double eps, double max_den) noexcept;

/// The integer nearest to a real below 2^51 in magnitude; the even one if two are nearest.
///
/// Between 2^52 and 2^53 the doubles are the integers, so adding 3 * 2^51 rounds to an integer and
/// subtracting it again is exact.
[[gnu::always_inline]] inline double nearest(double value) noexcept {
    constexpr double integers_only = 0x1.8p52;
    return (value + integers_only) - integers_only;
}

/// A real below 2^51 in magnitude, minus its nearest integer. The difference is exact.
[[gnu::always_inline]] inline double offset_from_nearest(double value) noexcept {
    return value - nearest(value);
}

} // namespace zktarn::util::detail
