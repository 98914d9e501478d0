#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Shared by the search for a fraction and the search for a scalar.

namespace zktarn::util::detail {

// Fractions
// -------------------------------------------------------------------------------------------

/// A fraction, or none. Two reals, so that it is returned in registers.
struct fraction {
    double num = 0.0;
    /// Positive; 0.0 in place of a fraction.
    double den = 0.0;

    [[nodiscard]] bool found() const noexcept { return den != 0.0; }
};

/// `get_rational_rep` with arguments in registers.
fraction rational_rep(double x, double eps, double max_den) noexcept;

// Nearest integers
// -------------------------------------------------------------------------------------------

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

// Multiples near integers
// -------------------------------------------------------------------------------------------

/// A fraction of 1 in units of 2^-64. Arithmetic wraps around at the integers, so -1/4 is 3/4.
using fixed_fraction = std::uint64_t;

/// The fixed fraction of a real in [-1, 1].
[[gnu::always_inline]] inline fixed_fraction to_fixed_fraction(double offset) noexcept {
    return static_cast<fixed_fraction>(static_cast<std::int64_t>(offset * 0x1p62)) << 2;
}

/// A table that shows which multiples of a real can be near an integer.
///
/// The multiple m * p of a real p is as far from an integer as m times the fractional part of p. So
/// the fractional part shows which of a few fixed multiples can be near an integer. The table cuts
/// [0, 1) into slices of equal width and has one word a slice: bit i is set if multipliers[i] * f
/// is within `margin` of an integer for some f in the slice.
template <std::size_t Count>
class near_multiples {
public:
    /// Distance from an integer up to which a multiple counts as near it.
    static constexpr double margin = 0x1p-9;

    explicit consteval near_multiples(const std::array<double, Count>& multipliers) noexcept {
        for (std::size_t slice = 0; slice < words_.size(); ++slice) {
            const double low = static_cast<double>(slice) * width;
            for (std::size_t i = 0; i < Count; ++i) {
                const double least = multipliers[i] * low - margin;
                const double most = multipliers[i] * (low + width) + margin;
                const double integer = static_cast<double>(static_cast<std::int64_t>(most));
                if (least <= integer) {
                    words_[slice] |= static_cast<std::uint16_t>(1U << i);
                }
            }
        }
    }

    [[nodiscard]] std::uint32_t operator()(fixed_fraction fraction) const noexcept {
        return words_[fraction >> (64 - slice_bits)];
    }

private:
    static_assert(Count <= 16, "a word has 16 bits");
    static constexpr int slice_bits = 10;
    static constexpr double width = 1.0 / (1 << slice_bits);

    std::array<std::uint16_t, std::size_t{1} << slice_bits> words_{};
};

} // namespace zktarn::util::detail
