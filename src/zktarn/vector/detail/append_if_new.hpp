#pragma once

#include <cstdint>

#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/vector_type.hpp"

namespace zktarn::vector_mod::detail {

/// For each of the first `count` indices of `source`, in order: calls `is_new(j)`, which returns 1
/// or 0, and appends j to the list of x if the result is 1.
///
/// No branch depends on `is_new`, because its results cannot be predicted: each index is written
/// after the last entry, unless the list is full, and the entry count advances by the result.
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
