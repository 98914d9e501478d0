#pragma once

namespace zero_half {

/// Sums of integers up to this magnitude are exact.
inline constexpr double largest_exact = 1e15;
/// Larger coefficients are treated as numerical errors.
inline constexpr double largest_coefficient = 1e9;

} // namespace zero_half
