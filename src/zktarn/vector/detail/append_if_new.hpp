#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/vector_type.hpp"

/// Membership and appending without branches on marks, which a processor could not predict.

namespace zktarn::vector_mod::detail {

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

/// For each of the first `count` indices of `source`, in order: calls `is_new(j)`, which returns 1
/// or 0, and appends j to the list of x if the result is 1.
///
/// No branch depends on the result of `is_new`: each index is written after the last entry, unless
/// the list is full, and the entry count advances by the result.
///
/// @param source    may be the list of x itself: entries are appended after those that are read.
/// @param prefetch  void(std::int64_t j): prefetches what `is_new(j)` will read and write.
template <class Prefetch, class IsNew>
[[gnu::always_inline]] inline void append_if_new(vector_type::vector& x, const std::int32_t* source,
                                                 std::int64_t count, Prefetch prefetch,
                                                 IsNew is_new) noexcept {
    std::int32_t* const list = x.ind.data;
    const std::int64_t capacity = x.ind.extent[0];
    std::int64_t nz = x.nz;
    walk(
        source, count, prefetch, [&](std::int64_t j) __attribute__((always_inline)) {
            if (nz < capacity) [[likely]] {
                list[nz] = static_cast<std::int32_t>(j);
            }
            nz += is_new(j);
        });
    x.nz = static_cast<std::int32_t>(nz);
}

} // namespace zktarn::vector_mod::detail
