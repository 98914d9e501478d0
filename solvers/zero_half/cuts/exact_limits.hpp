#pragma once

#include <cmath>
#include <cstdint>

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

} // namespace zero_half
