#pragma once

namespace zktarn::util::detail {

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
