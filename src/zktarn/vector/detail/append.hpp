#pragma once

#include <algorithm>
#include <cstdint>

#include "zktarn/vector/vector_type.hpp"

namespace zktarn::vector_mod::detail {

/// How many entries ahead of their use marks and coefficients are asked for: far enough for memory
/// to answer in time, near enough for the answers to be still there.
inline constexpr std::int64_t prefetch_distance = 8;

/// For each of the `count` indices of `source`, in order: calls `fresh(j)` and, where it answers
/// 1 and not 0, appends j to the list of x.
///
/// Whether an index is fresh cannot be predicted, so each is written behind the last entry, and the
/// entry count moves on or does not. That takes room behind the list even for an index that is not
/// appended; where there might be none, the index is written only when it is appended.
///
/// @param source  may be x's own list; entries appended meanwhile are behind those read.
/// @param expect  void(std::int32_t j): called ahead of fresh(j), to prefetch what that will touch.
template <class Fresh, class Expect>
[[gnu::always_inline]] inline void append_where(vector_type::vector& x, const std::int32_t* source,
                                                std::int64_t count, Fresh fresh,
                                                Expect expect) noexcept {
    std::int32_t* const list = x.ind.data;
    std::int64_t nz = x.nz;
    std::int64_t k = 0;
    const auto append_unguarded = [&] {
        const std::int32_t j = source[k];
        list[nz] = j;
        nz += fresh(j);
    };
    const std::int64_t unguarded = std::min(count, x.ind.extent[0] - nz);
    for (; k < unguarded - prefetch_distance; ++k) {
        expect(source[k + prefetch_distance]);
        append_unguarded();
    }
    for (; k < unguarded; ++k) {
        append_unguarded();
    }
    for (; k < count; ++k) {
        const std::int32_t j = source[k];
        if (fresh(j) != 0) {
            list[nz] = j;
            nz += 1;
        }
    }
    x.nz = static_cast<std::int32_t>(nz);
}

} // namespace zktarn::vector_mod::detail
