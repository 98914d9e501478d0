#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

/// Tests and selections of coefficients without branches, which a processor could not predict.

namespace zktarn::vector_mod::detail {

/// Whether a coefficient is a zero of either sign: all bits except the sign are 0.
[[gnu::always_inline]] inline bool is_zero(double value) noexcept {
    return std::bit_cast<std::uint64_t>(value) << 1 == 0;
}

/// The mark of an index, and the membership that it states.
struct membership {
    std::int64_t mark;
    /// 1 when the index is not a member, else 0.
    std::int64_t is_new;

    [[gnu::always_inline]] explicit membership(std::int32_t index_mark) noexcept
        : mark(index_mark), is_new(index_mark < 1) {}

    /// The coefficient of a member; 0.0 for any other index, whose stale value may be infinite or
    /// NaN.
    [[gnu::always_inline]] double coefficient(double value) const noexcept {
        return std::bit_cast<double>(std::bit_cast<std::int64_t>(value) & (is_new - 1));
    }
    /// The mark after the index was added: 1 for a new member; a member keeps its mark.
    [[gnu::always_inline]] std::int32_t after_add() const noexcept {
        return static_cast<std::int32_t>(std::max(mark, std::int64_t{1}));
    }
};

} // namespace zktarn::vector_mod::detail
