#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "zktarn/vector/detail/compaction.hpp"
#include "zktarn/vector/detail/drop_zeros.hpp"
#include "zktarn/vector/vector_type.hpp"

/// Finds the zeros of a combination without reading every entry again.
///
/// The passes that write coefficients note each index that may have to be dropped. At the end a
/// filter, a small bit set addressed by the low bits of an index, contains the noted indices. Only
/// entries that pass the filter are tested. The notes and the filter are stored behind the list, in
/// its scratch positions.

namespace zktarn::vector_mod::detail {

/// Notes of a combination: the indices of all entries that may have to be dropped at the end, which
/// are those that were written as zero or have no mark. An index may be noted more than once, and
/// stays noted if a later value is not zero.
struct zero_suspects {
    std::int32_t* indices = nullptr;
    /// How many indices can be stored. Any others are only counted.
    std::int64_t room = 0;
    std::int64_t count = 0;

    /// Prepares for adding `y_nz` entries to x: with room for all notes and for the filter, or for
    /// none.
    [[gnu::always_inline]] zero_suspects(const vector_type::vector& x, std::int64_t y_nz) noexcept {
        const std::int64_t most = x.nz + y_nz;
        if (3 * most <= x.ind.extent[0]) {
            indices = x.ind.data + most;
            room = most;
        }
    }
    /// Notes j if it is suspect. After scaling, few entries are.
    [[gnu::always_inline]] void test(std::int64_t j, bool suspect) noexcept {
        if (suspect) [[unlikely]] {
            if (count < room) {
                indices[count] = static_cast<std::int32_t>(j);
            }
            count += 1;
        }
    }
};

/// Whether any entry may have to be dropped at the end.
struct zero_flag {
    bool any = false;

    [[gnu::always_inline]] void test(std::int64_t, bool suspect) noexcept { any |= suspect; }
};

/// A set of indices that has every index inserted, and few others.
class index_filter {
public:
    /// @param words  room for the bits: at least `count` words, 16 to 32 bits for each index.
    index_filter(std::int32_t* words, std::int64_t count) noexcept
        : words_(words),
          mask_(static_cast<std::int64_t>(std::bit_floor(static_cast<std::uint64_t>(count))) - 1) {
        std::fill_n(words_, mask_ + 1, 0);
    }
    [[gnu::always_inline]] void insert(std::uint32_t j) noexcept {
        words_[(j >> 5) & mask_] |= static_cast<std::int32_t>(std::uint32_t{1} << (j & 31));
    }
    /// 1 when j may have been inserted, else 0.
    [[gnu::always_inline]] std::int64_t has(std::uint32_t j) const noexcept {
        return (static_cast<std::uint32_t>(words_[(j >> 5) & mask_]) >> (j & 31)) & 1;
    }

private:
    std::int32_t* words_;
    std::int64_t mask_;
};

/// Drops every entry of x that counts as zero, as `vector_rem_zeros`. All of them are noted, and
/// there is room for the notes.
[[gnu::noinline]] inline void drop_noted(vector_type::vector& x,
                                         const zero_suspects& suspects) noexcept {
    std::int32_t* const list = x.ind.data;
    const std::int32_t nz = x.nz;
    index_filter filter(suspects.indices + suspects.room, suspects.count);
    for (std::int64_t i = 0; i < suspects.count; ++i) {
        filter.insert(static_cast<std::uint32_t>(suspects.indices[i]));
    }
    // The filter holds the notes, so list positions can overwrite them.
    std::int32_t* const positions = suspects.indices;
    std::int64_t passed = 0;
    for (std::int32_t k = 0; k < nz; ++k) {
        positions[passed] = k;
        passed += filter.has(static_cast<std::uint32_t>(list[k]));
    }
    const marked_entries entries{x.coef.data, x.elm.data};
    std::int64_t dropped = 0;
    for (std::int64_t i = 0; i < passed; ++i) {
        positions[dropped] = positions[i];
        dropped += static_cast<std::int64_t>(entries.drops(list[positions[i]]));
    }
    x.nz = static_cast<std::int32_t>(drop_at_positions(list, nz, positions, dropped, entries));
}

/// Drops every entry of x that counts as zero, by the notes if there was room for them.
[[gnu::always_inline]] inline void drop_suspects(vector_type::vector& x,
                                                 const zero_suspects& suspects) noexcept {
    if (suspects.count > suspects.room) {
        drop_zeros(x, x.nz);
    } else if (suspects.count > 0) {
        drop_noted(x, suspects);
    }
}

} // namespace zktarn::vector_mod::detail
