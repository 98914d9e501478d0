#pragma once

#include <cstdint>

#include "zktarn/util/detail/to_integer.hpp"
#include "zktarn/vector/detail/compaction.hpp"
#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/detail/sorted_entries.hpp"
#include "zktarn/vector/vector_type.hpp"

/// Reduces coefficients modulo 2 and drops those that become zero, for tol < 0.5: entry by entry,
/// or block by block of the index space. In list order each entry of a large vector lies on another
/// page, and page walks take most of the time.

namespace zktarn::vector_mod::detail {

/// The coefficient of a listed index modulo 2, 0 or 1. A coefficient without a mark counts as 0.0.
[[gnu::always_inline]] inline std::int64_t remainder(const vector_type::vector& v, std::int64_t j,
                                                     double tol) noexcept {
    const bool member = !v.elm.present() || v.elm.data[j - 1] >= 1;
    return util::detail::modulo_2(member ? v.coef.data[j - 1] : 0.0, tol);
}

/// Reduces each entry when it is tested, and drops it when the remainder is zero. A second test of
/// an entry gives the same result, because 0 and 1 are their own remainders for tol < 0.5.
struct reducing_entries {
    vector_type::vector& v;
    double tol;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept {
        prefetch_write(v.coef.data, j);
        if (v.elm.present()) {
            prefetch_write(v.elm.data, j);
        }
    }
    [[gnu::always_inline]] bool drops(std::int64_t j) const noexcept {
        const std::int64_t reduced = remainder(v, j, tol);
        v.coef.data[j - 1] = static_cast<double>(reduced);
        return reduced == 0;
    }
    [[gnu::always_inline]] void tested(const std::int32_t* block,
                                       std::uint64_t word) const noexcept {
        if (v.elm.present()) {
            clear_marks(v.elm.data, block, word);
        }
    }
    [[gnu::always_inline]] static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

/// The sizes from which on blocks save more time than the sorting costs.
struct reduction_limits {
    std::int64_t capacity = std::int64_t{1} << 22;
    /// At least one index in `spacing` is listed; otherwise few entries of a block share a page.
    std::int64_t spacing = 16;
};

/// Whether the list has room, after its entries, for the sorted ones and the notes.
inline bool has_room_for_blocks(const vector_type::vector& v) noexcept {
    const std::int64_t nz = v.nz;
    return v.ind.extent[0] >= nz + 2 * nz + (nz + 3) / 4;
}

/// Whether the ends, the quarters and the middle of the list ascend, as in a list that is nearly
/// sorted.
inline bool seems_sorted(const std::int32_t* list, std::int64_t nz) noexcept {
    return (list[0] <= list[nz / 4]) & (list[nz / 4] <= list[nz / 2]) &
           (list[nz / 2] <= list[nz - 1 - nz / 4]) & (list[nz - 1 - nz / 4] <= list[nz - 1]);
}

/// Whether v is large enough, has room for blocks, and is not nearly sorted already.
inline bool suits_reduction_in_blocks(const vector_type::vector& v) noexcept {
    constexpr reduction_limits least;
    return v.coef.extent[0] >= least.capacity && v.nz * least.spacing >= v.coef.extent[0] &&
           has_room_for_blocks(v) && !seems_sorted(v.ind.data, v.nz);
}

/// Reduces every entry of v and drops those that become zero, where `has_room_for_blocks` holds.
inline void reduce_in_blocks(vector_type::vector& v, double tol) noexcept {
    std::int32_t* const list = v.ind.data;
    const std::int64_t nz = v.nz;
    std::int32_t* const room = list + nz;
    const sorted_entries entries(room, v, block_shift(v.coef.extent[0]));
    auto* const dropped = reinterpret_cast<unsigned char*>(room + 2 * nz);
    const reducing_entries reducing{v, tol};
    for (std::int64_t k = 0; k < nz; ++k) {
        reducing.prefetch(entries.ahead(k));
        const auto [j, position] = entries.all[k];
        const bool drops = reducing.drops(j);
        if (v.elm.present()) {
            v.elm.data[j - 1] = drops ? 0 : v.elm.data[j - 1];
        }
        dropped[position] = static_cast<unsigned char>(drops);
    }
    // The sorted entries are no longer needed.
    std::int32_t* const positions = room;
    std::int64_t count = 0;
    for (std::int32_t k = 0; k < nz; ++k) {
        positions[count] = k;
        count += dropped[k];
    }
    v.nz = static_cast<std::int32_t>(fill_positions(list, nz, positions, count));
}

} // namespace zktarn::vector_mod::detail
