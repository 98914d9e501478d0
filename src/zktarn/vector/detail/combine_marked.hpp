#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "zktarn/vector/detail/append_if_new.hpp"
#include "zktarn/vector/detail/coefficients.hpp"
#include "zktarn/vector/detail/drop_zeros.hpp"
#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/vector_type.hpp"

/// x := alpha * x + beta * y where x has marks and both vectors have coefficients, inlined into one
/// function for each instruction set.
///
/// The plain method scales every listed entry, adds every entry of y in the order of y's list, and
/// drops zeros. Three methods save visits to entries. Each has the result of the plain method, bit
/// for bit and position for position:
///
/// - `find_kept_tail`: the last pass skips the appended entries, which have marks, if none of their
///   coefficients is zero.
/// - `add_to_nonzeros`: after a scaling pass that found nothing to drop, a sum that is zero is
///   flagged in its mark, so that the last pass reads marks only.
/// - `combine_in_blocks`, in a header of its own: large vectors, block by block of the index space.

namespace zktarn::vector_mod::detail {

using vector_type::vector;

/// Factors of a combination; x is scaled only when `scales` holds.
struct factors {
    double alpha;
    double beta;
    bool scales;
};

/// A vector's coefficients for its listed entries.
struct coefficient_reader {
    const double* coef;
    const std::int32_t* elm;

    explicit coefficient_reader(const vector& v) noexcept : coef(v.coef.data), elm(v.elm.data) {}

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept {
        prefetch_read(coef, j);
        if (elm != nullptr) {
            prefetch_read(elm, j);
        }
    }
    /// The coefficient of a listed index: 0.0 when it has no mark.
    [[gnu::always_inline]] double operator()(std::int64_t j) const noexcept {
        return elm == nullptr || elm[j - 1] >= 1 ? coef[j - 1] : 0.0;
    }
};

/// The bit that flags a mark whose coefficient has become zero. Valid marks are below it. Where a
/// larger mark is found, flags are not used.
inline constexpr std::int32_t zero_flag = std::int32_t{1} << 30;

/// Scales every listed entry of x. Returns true when one of them is now zero, has no mark, or has a
/// mark of `zero_flag` or more.
[[gnu::always_inline]] inline bool scale_marked(vector& x, double alpha) noexcept {
    const std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    bool unusual = false;
    walk<true>(
        x.ind.data, x.nz,
        [=](std::int64_t j) __attribute__((always_inline)) {
            prefetch_read(elm, j);
            prefetch_write(coef, j);
        },
        [&](std::int64_t j) __attribute__((always_inline)) {
            const membership known(elm[j - 1]);
            const double scaled = alpha * known.coefficient(coef[j - 1]);
            coef[j - 1] = scaled;
            unusual |= is_zero(scaled) | (known.is_new != 0) | (known.mark >= zero_flag);
        });
    return unusual;
}

/// Which sums are zero: of members, of new indices.
enum zero_sums : std::int64_t { no_zero = 0, zero_of_member = 1, zero_of_new = 2 };

/// Adds beta times the entries of y from list position `first` on, counted from 0, to x.
[[gnu::always_inline]] inline std::int64_t add_to_marked(vector& x, const vector& y, double beta,
                                                         std::int64_t first) noexcept {
    std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    const coefficient_reader y_coef(y);
    std::int64_t zeros = no_zero;
    append_if_new<true>(
        x, y.ind.data + first, y.nz - first,
        [=](std::int64_t j) __attribute__((always_inline)) {
            prefetch_write(elm, j);
            prefetch_write(coef, j);
            y_coef.prefetch(j);
        },
        [&](std::int64_t j) __attribute__((always_inline)) {
            const membership known(elm[j - 1]);
            const double sum = std::fma(beta, y_coef(j), known.coefficient(coef[j - 1]));
            const std::int64_t zero = is_zero(sum);
            coef[j - 1] = sum;
            elm[j - 1] = known.after_add();
            zeros |= zero + (zero & known.is_new);
            return known.is_new;
        });
    return zeros;
}

/// The position from which on all entries of x are kept. Entries from position `old_nz` on were
/// appended and have marks. But if y lists an index twice, its second sum may be zero.
[[gnu::always_inline]] inline std::int64_t find_kept_tail(const vector& x, std::int64_t old_nz,
                                                          std::int64_t zeros) noexcept {
    if ((zeros & zero_of_new) != 0) {
        return x.nz;
    }
    bool found = false;
    if (zeros != no_zero) {
        const double* const coef = x.coef.data;
        walk<true>(
            x.ind.data + old_nz, x.nz - old_nz,
            [=](std::int64_t j) __attribute__((always_inline)) { prefetch_read(coef, j); },
            [&](std::int64_t j) __attribute__((always_inline)) { found |= is_zero(coef[j - 1]); });
    }
    return found ? x.nz : old_nz;
}

/// x := x + beta * y.
[[gnu::always_inline]] inline void add_and_drop(vector& x, const vector& y, double beta) noexcept {
    const std::int64_t old_nz = x.nz;
    const std::int64_t zeros = add_to_marked(x, y, beta, 0);
    drop_zeros(x, find_kept_tail(x, old_nz, zeros));
}

/// The entries of x after `add_and_flag_zeros`.
struct flagged_entries {
    std::int32_t* elm;
    std::int64_t& cleared;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept { prefetch_write(elm, j); }
    [[gnu::always_inline]] bool drops(std::int64_t j) const noexcept {
        return elm[j - 1] < 1 || elm[j - 1] >= zero_flag;
    }
    // Counts flags, not entries, because x may list an index twice.
    [[gnu::always_inline]] void tested(const std::int32_t* block,
                                       std::uint64_t word) const noexcept {
        for (; word != 0; word &= word - 1) {
            std::int32_t& mark = elm[block[std::countr_zero(word)] - 1];
            cleared += static_cast<std::int64_t>(mark != 0);
            mark = 0;
        }
    }
    [[gnu::always_inline]] static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

/// Clears the flags of the first `count` indices of a list.
inline void clear_flags(std::int32_t* elm, const std::int32_t* list, std::int64_t count) noexcept {
    for (std::int64_t k = 0; k < count; ++k) {
        elm[list[k] - 1] &= ~zero_flag;
    }
}

/// What `add_and_flag_zeros` did.
struct flagged_sums {
    /// The number of entries of y added; it ends before an entry whose mark is flagged already.
    std::int64_t added = 0;
    std::int64_t flags = 0;
    std::int64_t zeros_appended = 0;
};

/// Adds beta times the entries of y to x. Where the sum for a member is zero, flags its mark.
[[gnu::always_inline]] inline flagged_sums add_and_flag_zeros(vector& x, const vector& y,
                                                              double beta) noexcept {
    std::int32_t* const list = x.ind.data;
    std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    const std::int32_t* const y_list = y.ind.data;
    const coefficient_reader y_coef(y);
    const std::int64_t capacity = x.ind.extent[0];
    const std::int64_t count = y.nz;
    std::int64_t nz = x.nz;
    flagged_sums sums;
    for (; sums.added < count; ++sums.added) {
        if (sums.added < count - lookahead) {
            const std::int64_t ahead = y_list[sums.added + lookahead];
            prefetch_write(elm, ahead);
            prefetch_write(coef, ahead);
            y_coef.prefetch(ahead);
        }
        const std::int64_t j = y_list[sums.added];
        const membership known(elm[j - 1]);
        if (known.mark >= zero_flag) [[unlikely]] {
            break;
        }
        const double sum = std::fma(beta, y_coef(j), known.coefficient(coef[j - 1]));
        const std::int64_t zero = is_zero(sum);
        const std::int64_t flag = zero & ~known.is_new;
        coef[j - 1] = sum;
        elm[j - 1] = known.after_add() | static_cast<std::int32_t>(flag << 30);
        sums.flags += flag;
        sums.zeros_appended |= zero & known.is_new;
        if (nz < capacity) [[likely]] {
            list[nz] = static_cast<std::int32_t>(j);
        }
        nz += known.is_new;
    }
    x.nz = static_cast<std::int32_t>(nz);
    return sums;
}

/// Whether an entry of x from list position `first` on, counted from 0, is flagged.
[[gnu::always_inline]] inline bool any_flagged(const vector& x, std::int64_t first) noexcept {
    const std::int32_t* const elm = x.elm.data;
    std::int32_t marks = 0;
    walk<true>(
        x.ind.data + first,
        x.nz - first, [=](std::int64_t j) __attribute__((always_inline)) { prefetch_read(elm, j); },
        [&](std::int64_t j) __attribute__((always_inline)) { marks |= elm[j - 1]; });
    return (marks & zero_flag) != 0;
}

/// x := x + beta * y, where every listed entry of x is a member whose coefficient is not zero and
/// whose mark is not flagged.
[[gnu::always_inline]] inline void add_to_nonzeros(vector& x, const vector& y,
                                                   double beta) noexcept {
    std::int32_t* const elm = x.elm.data;
    const std::int64_t old_nz = x.nz;
    const flagged_sums sums = add_and_flag_zeros(x, y, beta);
    const bool plain = sums.added < y.nz || sums.zeros_appended != 0 ||
                       (sums.flags != 0 && any_flagged(x, old_nz));
    if (plain) {
        clear_flags(elm, y.ind.data, sums.added);
        add_to_marked(x, y, beta, sums.added);
        drop_zeros(x, x.nz);
        return;
    }
    if (sums.flags == 0) {
        return;
    }
    std::int64_t cleared = 0;
    x.nz = static_cast<std::int32_t>(
        drop<true>(x.ind.data, x.nz, old_nz, flagged_entries{elm, cleared}));
    if (cleared != sums.flags) {
        // Members that x does not list have been flagged as well.
        clear_flags(elm, y.ind.data, y.nz);
    }
}

/// x := alpha * x + beta * y, where all arrays stay in the cache: the plain method, without
/// prefetches.
[[gnu::always_inline]] inline void combine_in_cache(vector& x, const vector& y,
                                                    const factors& weights) noexcept {
    std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    const auto no_prefetch = [](std::int64_t) {};
    if (weights.scales) {
        walk<false>(
            x.ind.data, x.nz, no_prefetch, [=](std::int64_t j) __attribute__((always_inline)) {
                coef[j - 1] = weights.alpha * membership(elm[j - 1]).coefficient(coef[j - 1]);
            });
    }
    const coefficient_reader y_coef(y);
    append_if_new<false>(
        x, y.ind.data, y.nz, no_prefetch, [=](std::int64_t j) __attribute__((always_inline)) {
            const membership known(elm[j - 1]);
            const double old = known.coefficient(coef[j - 1]);
            coef[j - 1] = std::fma(weights.beta, y_coef(j), old);
            elm[j - 1] = known.after_add();
            return known.is_new;
        });
    x.nz =
        static_cast<std::int32_t>(drop<false>(x.ind.data, x.nz, x.nz, marked_entries{coef, elm}));
}

/// x := alpha * x + beta * y, in list order.
[[gnu::always_inline]] inline void combine_in_list_order(vector& x, const vector& y,
                                                         const factors& weights) noexcept {
    if (weights.scales && !scale_marked(x, weights.alpha)) {
        add_to_nonzeros(x, y, weights.beta);
    } else {
        add_and_drop(x, y, weights.beta);
    }
}

} // namespace zktarn::vector_mod::detail
