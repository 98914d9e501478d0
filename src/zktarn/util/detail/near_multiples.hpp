#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zktarn::util::detail {

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
