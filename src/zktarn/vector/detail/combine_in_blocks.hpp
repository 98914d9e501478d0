#pragma once

#include <cmath>
#include <cstdint>

#include "zktarn/vector/detail/combine_marked.hpp"
#include "zktarn/vector/detail/sorted_entries.hpp"

/// x := alpha * x + beta * y, block by block of the index space.
///
/// In list order each entry of a large vector lies on another page, and page walks take most of the
/// time. But only the order in which indices are listed is fixed, not the order of visits. So both
/// lists are sorted into blocks of the index space, and a block is scaled, added to and tested for
/// zeros while its part of the arrays is in the cache. Then y's new indices are appended in y's
/// order, and dropped entries are replaced by the last ones. The sorted entries are stored behind
/// the list of x, in its scratch positions.

namespace zktarn::vector_mod::detail {

/// The sizes from which on blocks save more time than the sorting costs.
struct block_limits {
    std::int64_t capacity = std::int64_t{1} << 20;
    std::int64_t y_nz = std::int64_t{1} << 12;
};

/// Whether the list of x has room for the entries of both vectors, the sorted ones and the notes.
[[gnu::always_inline]] inline bool has_room_for_blocks(const vector& x, const vector& y) noexcept {
    const std::int64_t nz = std::int64_t{x.nz} + y.nz;
    const std::int64_t room = nz + 2 * nz + (nz + y.nz + 3) / 4;
    return x.ind.extent[0] >= room;
}

/// Whether x and y are large enough, and the list of x has room for blocks.
[[gnu::always_inline]] inline bool suits_blocks(const vector& x, const vector& y) noexcept {
    constexpr block_limits least;
    return x.elm.extent[0] >= least.capacity && y.nz >= least.y_nz && has_room_for_blocks(x, y);
}

/// What a pass has found of a listed entry. A `not_new` entry of y is listed in x already.
enum class note : unsigned char { kept, dropped, not_new };

/// Appends y's new indices to the list of x, in y's order, then replaces each dropped entry by the
/// last one. The notes of x have room for those of the appended entries.
[[gnu::always_inline]] inline void update_list(vector& x, const vector& y, note* x_notes,
                                               const note* y_notes) noexcept {
    std::int32_t* const list = x.ind.data;
    std::int64_t length = x.nz;
    for (std::int64_t k = 0, count = y.nz; k < count; ++k) {
        list[length] = y.ind.data[k];
        x_notes[length] = y_notes[k];
        length += std::int64_t{y_notes[k] != note::not_new};
    }
    for (std::int64_t k = 0; k < length; ++k) {
        for (; k < length && x_notes[k] == note::dropped; x_notes[k] = x_notes[length]) {
            list[k] = list[--length];
        }
    }
    x.nz = static_cast<std::int32_t>(length);
}

/// x := alpha * x + beta * y, where `has_room_for_blocks` holds and y is another record than x.
[[gnu::always_inline]] inline void combine_in_blocks(vector& x, const vector& y,
                                                     const factors& weights) noexcept {
    std::int32_t* const list = x.ind.data;
    const marked_entries in_x{x.coef.data, x.elm.data};
    double* const coef = x.coef.data - 1; // addressed by index
    std::int32_t* const elm = x.elm.data - 1;
    const coefficient_reader y_coef(y);
    const int shift = block_shift(x.elm.extent[0]);
    std::int32_t* const room = list + x.nz + y.nz;
    const sorted_entries xs(room, x, shift);
    const sorted_entries ys(room + 2 * xs.nz, y, shift);
    // Notes on the entries of x's list, with room for those that are appended, and on those of y.
    auto* const x_notes = reinterpret_cast<note*>(room + 2 * (xs.nz + ys.nz));
    note* const y_notes = x_notes + xs.nz + ys.nz;
    for (std::size_t b = 0; b < xs.ends.size() - 1; ++b) {
        for (std::int64_t k = xs.begin(b); weights.scales && k < xs.ends[b]; ++k) {
            in_x.prefetch(xs.ahead(k));
            const std::int64_t j = xs.all[k].j;
            coef[j] = weights.alpha * membership(elm[j]).coefficient(coef[j]);
        }
        for (std::int64_t k = ys.begin(b); k < ys.ends[b]; ++k) {
            in_x.prefetch(ys.ahead(k));
            y_coef.prefetch(ys.ahead(k));
            const auto [j, position] = ys.all[k];
            const membership known(elm[j]);
            coef[j] = std::fma(weights.beta, y_coef(j), known.coefficient(coef[j]));
            elm[j] = known.after_add();
            y_notes[position] = known.is_new != 0 ? note::kept : note::not_new;
        }
        for (std::int64_t k = xs.begin(b); k < xs.ends[b]; ++k) {
            in_x.prefetch(xs.ahead(k));
            const auto [j, position] = xs.all[k];
            const bool drops = (elm[j] < 1) | is_zero(coef[j]);
            elm[j] = drops ? 0 : elm[j];
            x_notes[position] = drops ? note::dropped : note::kept;
        }
        for (std::int64_t k = ys.begin(b); k < ys.ends[b]; ++k) {
            const auto [j, position] = ys.all[k];
            const bool drops = (y_notes[position] == note::kept) & is_zero(coef[j]);
            elm[j] = drops ? 0 : elm[j];
            y_notes[position] = drops ? note::dropped : y_notes[position];
        }
    }
    update_list(x, y, x_notes, y_notes);
}

} // namespace zktarn::vector_mod::detail
