#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "zktarn/vector/detail/compaction.hpp"
#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/vector_type.hpp"

/// Drops entries where zeros are usually rare.

namespace zktarn::vector_mod::detail {

/// Whether a coefficient is a zero of either sign: all bits except the sign are 0. Without a
/// branch, which a processor could not predict.
[[gnu::always_inline]] inline bool is_zero(double value) noexcept {
    return std::bit_cast<std::uint64_t>(value) << 1 == 0;
}

/// The entries of a vector with marks. An entry without a mark counts as zero.
struct marked_entries {
    const double* coef;
    std::int32_t* elm;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept {
        prefetch_write(elm, j);
        prefetch_read(coef, j);
    }
    [[gnu::always_inline]] bool drops(std::int64_t j) const noexcept {
        return (elm[j - 1] < 1) | is_zero(coef[j - 1]);
    }
    // Every dropped entry is removed in the end, so its mark can be cleared at once.
    [[gnu::always_inline]] void tested(const std::int32_t* block,
                                       std::uint64_t word) const noexcept {
        clear_marks(elm, block, word);
    }
    [[gnu::always_inline]] static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

/// The entries of a vector without marks, where an entry is a member because it is listed.
struct listed_entries {
    const double* coef;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept { prefetch_read(coef, j); }
    [[gnu::always_inline]] bool drops(std::int64_t j) const noexcept {
        return is_zero(coef[j - 1]);
    }
    [[gnu::always_inline]] static void tested(const std::int32_t*, std::uint64_t) noexcept {}
    [[gnu::always_inline]] static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

/// Drops entries of `list` and returns how many are left. Entries from position `kept_from` on are
/// known to be kept.
///
/// While drops are rare, one branch for each entry is fastest, because the processor predicts it. A
/// drop costs about as much as testing eight entries in blocks. So when the drops exceed one eighth
/// of the entries tested plus 16, the rest is compacted in blocks.
template <bool prefetches, entry_test Entries>
[[gnu::always_inline]] inline std::int64_t drop(std::int32_t* list, std::int64_t length,
                                                std::int64_t kept_from, Entries entries) noexcept {
    std::int64_t drops = 0;
    std::int64_t end = std::min(length, kept_from);
    for (std::int64_t k = 0; k < end;) {
        if (prefetches && k < end - lookahead) {
            entries.prefetch(list[k + lookahead]);
        }
        if (!entries.drops(list[k])) {
            ++k;
            continue;
        }
        entries.tested(list + k, 1);
        length -= 1;
        list[k] = list[length];
        end = std::min(end, length);
        k += static_cast<std::int64_t>(length >= kept_from);
        drops += 1;
        if (drops > 16 + k / 8) {
            return k + compact(list + k, {length - k, kept_from - k}, entries);
        }
    }
    return length;
}

/// Drops the entries at `count` ascending positions, all of which the test drops: clears their
/// marks, and replaces each by the last entry that is kept. Returns how many entries are left.
template <entry_test Entries>
[[gnu::always_inline]] inline std::int64_t
drop_at_positions(std::int32_t* list, std::int64_t length, const std::int32_t* positions,
                  std::int64_t count, const Entries& entries) noexcept {
    for (std::int64_t i = 0; i < count; ++i) {
        entries.tested(list + positions[i], 1);
    }
    return fill_positions(list, length, positions, count);
}

/// Like `drop`, for a list with room for `kept_from` positions after its entries.
template <entry_test Entries>
[[gnu::always_inline]] inline std::int64_t drop_collected(std::int32_t* list, std::int64_t length,
                                                          std::int64_t kept_from,
                                                          Entries entries) noexcept {
    std::int32_t* const dropped = list + length;
    const std::int64_t count = collect_dropped(list, kept_from, dropped, entries);
    return drop_at_positions(list, length, dropped, count, entries);
}

/// Drops every entry of v that counts as zero, as `vector_rem_zeros`. Entries from list position
/// `kept_from`, counted from 0, on are known to be kept.
void drop_zeros(vector_type::vector& v, std::int64_t kept_from) noexcept;

} // namespace zktarn::vector_mod::detail
