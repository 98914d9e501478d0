#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "zktarn/vector/detail/combine_marked.hpp"

/// x := alpha * x + beta * y, block by block of the index space.
///
/// In list order each entry of a large vector lies on another page, and most of the time goes into
/// page walks. But only the order in which indices are listed is fixed, not the order in which
/// entries are visited. So the entries of both lists are sorted into blocks of the index space,
/// keeping their order within a block, and each block is scaled, added to and tested for zeros
/// while its part of the arrays is in the cache. Then y's new indices are appended in y's order,
/// and the holes of the list are closed. The sorted entries take room behind the list of x.

namespace zktarn::vector_mod::detail {

/// The sizes from which on a combination goes by blocks. Below, the sorting costs more than it
/// saves.
struct block_limits {
    std::int64_t capacity = std::int64_t{1} << 19;
    std::int64_t y_nz = std::int64_t{1} << 12;
};

/// Whether x and y are large enough, and the list of x has room for what is sorted.
[[gnu::always_inline]] inline bool suits_blocks(const vector& x, const vector& y,
                                                const block_limits& least) noexcept {
    const std::int64_t x_nz = x.nz;
    const std::int64_t y_nz = y.nz;
    const std::int64_t sorted = 2 * (x_nz + y_nz);
    const std::int64_t notes = (x_nz + 2 * y_nz + 3) / 4;
    return x.elm.extent[0] >= least.capacity && y_nz >= least.y_nz &&
           x.ind.extent[0] >= x_nz + y_nz + sorted + notes;
}

/// The entries of a list, sorted into at most 1024 blocks of 2^shift indices.
struct sorted_entries {
    struct entry {
        std::int32_t j;
        std::int32_t position; // in the list, counted from 0
    };
    entry* all;
    std::int64_t count;
    std::array<std::int32_t, 1025> ends{}; // of the blocks, after the constructor

    [[gnu::always_inline]] sorted_entries(std::int32_t* room, const vector& v, int shift) noexcept
        : all(reinterpret_cast<entry*>(room)), count(v.nz) {
        const auto block_of = [=](std::int32_t j) {
            return static_cast<std::size_t>(j - 1) >> shift;
        };
        for (std::int64_t k = 0; k < count; ++k) {
            ends[block_of(v.ind.data[k]) + 1] += 1;
        }
        for (std::size_t b = 1; b < ends.size(); ++b) {
            ends[b] += ends[b - 1];
        }
        for (std::int32_t k = 0; k < count; ++k) {
            const std::int32_t j = v.ind.data[k];
            all[ends[block_of(j)]++] = {j, k};
        }
    }
    /// Calls `visit(entry)` for the entries of a block, after `prefetch(j)` for a later one.
    template <class Prefetch, class Visit>
    [[gnu::always_inline]] void walk_block(std::size_t b, Prefetch prefetch, Visit visit) noexcept {
        for (std::int64_t k = b == 0 ? 0 : ends[b - 1]; k < ends[b]; ++k) {
            prefetch(std::int64_t{all[std::min(k + lookahead, count - 1)].j});
            visit(all[k]);
        }
    }
};

/// x := alpha * x + beta * y, where `suits_blocks` holds and y is another record than x.
[[gnu::always_inline]] inline void combine_in_blocks(vector& x, const vector& y,
                                                     const factors& by) noexcept {
    using note = unsigned char;
    constexpr note kept = 0;
    constexpr note dropped = 1;
    constexpr note not_new = 2;
    std::int32_t* const list = x.ind.data;
    std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    const coefficient_reader y_coef(y);
    const auto bits = std::bit_width(static_cast<std::uint64_t>(x.elm.extent[0] - 1));
    const int shift = std::max(0, static_cast<int>(bits) - 10);

    std::int32_t* const room = list + x.nz + y.nz;
    sorted_entries xs(room, x, shift);
    sorted_entries ys(room + 2 * xs.count, y, shift);
    // Notes on the entries of x's list, with room for those that are appended, and on those of y.
    auto* const x_notes = reinterpret_cast<note*>(room + 2 * (xs.count + ys.count));
    note* const y_notes = x_notes + xs.count + ys.count;

    const auto prefetch_x = [=](std::int64_t j) __attribute__((always_inline)) {
        prefetch_write(elm, j);
        prefetch_write(coef, j);
    };
    const auto prefetch_both = [=](std::int64_t j) __attribute__((always_inline)) {
        prefetch_x(j);
        y_coef.prefetch(j);
    };
    const auto no_prefetch = [](std::int64_t) __attribute__((always_inline)){};
    // Members that x does not list keep their mark, so only what is listed can be dropped.
    const auto note_drop = [=](std::int32_t j, bool listed) __attribute__((always_inline)) {
        const bool drops = listed & ((elm[j - 1] < 1) | is_zero(coef[j - 1]));
        elm[j - 1] = drops ? 0 : elm[j - 1];
        return drops ? dropped : kept;
    };
    for (std::size_t b = 0; b < xs.ends.size() - 1; ++b) {
        if (by.scales) {
            xs.walk_block(
                b, prefetch_x, [=](const auto& e) __attribute__((always_inline)) {
                    coef[e.j - 1] = by.alpha * membership(elm[e.j - 1]).coefficient(coef[e.j - 1]);
                });
        }
        ys.walk_block(
            b, prefetch_both, [=](const auto& e) __attribute__((always_inline)) {
                const membership known(elm[e.j - 1]);
                const double old = known.coefficient(coef[e.j - 1]);
                coef[e.j - 1] = std::fma(by.beta, y_coef(e.j), old);
                elm[e.j - 1] = known.after_add();
                y_notes[e.position] = known.is_new != 0 ? kept : not_new;
            });
        xs.walk_block(
            b, prefetch_x, [=](const auto& e) __attribute__((always_inline)) {
                x_notes[e.position] = note_drop(e.j, true);
            });
        ys.walk_block(
            b, no_prefetch, [=](const auto& e) __attribute__((always_inline)) {
                const note before = y_notes[e.position];
                y_notes[e.position] = std::max(before, note_drop(e.j, before != not_new));
            });
    }
    std::int64_t nz = xs.count;
    for (std::int64_t k = 0; k < ys.count; ++k) {
        list[nz] = y.ind.data[k];
        x_notes[nz] = y_notes[k];
        nz += std::int64_t{y_notes[k] != not_new};
    }
    for (std::int64_t k = 0; k < nz;) {
        if (x_notes[k] == kept) {
            ++k;
            continue;
        }
        nz -= 1;
        list[k] = list[nz];
        x_notes[k] = x_notes[nz];
    }
    x.nz = static_cast<std::int32_t>(nz);
}

} // namespace zktarn::vector_mod::detail
