#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "zktarn/vector/detail/append_if_new.hpp"
#include "zktarn/vector/detail/drop_zeros.hpp"
#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/detail/zero_suspects.hpp"
#include "zktarn/vector/vector_type.hpp"

/// x := alpha * x + beta * y where x has marks and both vectors have coefficients, inlined into one
/// function for each instruction set.
///
/// The plain method scales every listed entry, adds every entry of y in the order of y's list, and
/// drops zeros. Two methods save visits to entries. Each has the result of the plain method, bit
/// for bit and position for position:
///
/// - `combine_in_list_order`: if no sum is zero, the last pass skips the appended entries. After
///   scaling, the last pass reads the marks and coefficients only of the entries that were written
///   as zero.
/// - `combine_in_blocks` (combine_in_blocks.hpp): large vectors, block by block of the index space.

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

/// The coefficients of a vector without marks.
struct unmarked_reader {
    const double* coef;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept { prefetch_read(coef, j); }
    [[gnu::always_inline]] double operator()(std::int64_t j) const noexcept { return coef[j - 1]; }
};

/// Scales every listed entry of x. Notes those that are now zero or have no mark.
[[gnu::noinline]] inline void scale_marked(vector& x, double alpha,
                                           zero_suspects& suspects) noexcept {
    const std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    zero_suspects found = suspects; // a copy, which stays in registers
    walk(
        x.ind.data, x.nz,
        [=](std::int64_t j) __attribute__((always_inline)) {
            prefetch_read(elm, j);
            prefetch_write(coef, j);
        },
        [&](std::int64_t j) __attribute__((always_inline)) {
            const double scaled = alpha * membership(elm[j - 1]).coefficient(coef[j - 1]);
            coef[j - 1] = scaled;
            // The product is zero without a mark too, unless alpha is infinite or NaN.
            found.test(j, is_zero(scaled) | (elm[j - 1] < 1));
        });
    suspects = found;
}

/// Adds beta times the entries of y to x. Calls `zeros.test` for each sum.
template <class Reader, class Zeros>
[[gnu::always_inline]] inline void add_to_marked(vector& x, const vector& y, const Reader& y_coef,
                                                 double beta, Zeros& zeros) noexcept {
    std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    Zeros found = zeros;
    const auto prefetch = [=](std::int64_t j) __attribute__((always_inline)) {
        prefetch_write(elm, j);
        prefetch_write(coef, j);
        y_coef.prefetch(j);
    };
    prefetch_first(y.ind.data, y.nz, prefetch);
    append_if_new(
        x, y.ind.data, y.nz, prefetch, [&](std::int64_t j) __attribute__((always_inline)) {
            const membership known(elm[j - 1]);
            const double sum = std::fma(beta, y_coef(j), known.coefficient(coef[j - 1]));
            coef[j - 1] = sum;
            elm[j - 1] = known.after_add();
            found.test(j, is_zero(sum));
            return known.is_new;
        });
    zeros = found;
}

template <class Zeros>
[[gnu::always_inline]] inline void add_to_marked(vector& x, const vector& y, double beta,
                                                 Zeros& zeros) noexcept {
    if (y.elm.data != nullptr) {
        add_to_marked(x, y, coefficient_reader(y), beta, zeros);
    } else {
        add_to_marked(x, y, unmarked_reader{y.coef.data}, beta, zeros);
    }
}

/// x := alpha * x + beta * y, where all arrays stay in the cache: the plain method, without
/// prefetches.
[[gnu::always_inline]] inline void combine_in_cache(vector& x, const vector& y,
                                                    const factors& weights) noexcept {
    std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    if (weights.scales) {
        walk(
            x.ind.data, x.nz, no_prefetch{}, [=](std::int64_t j) __attribute__((always_inline)) {
                coef[j - 1] = weights.alpha * membership(elm[j - 1]).coefficient(coef[j - 1]);
            });
    }
    const coefficient_reader y_coef(y);
    append_if_new(
        x, y.ind.data, y.nz, no_prefetch{}, [=](std::int64_t j) __attribute__((always_inline)) {
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
    if (weights.scales) {
        zero_suspects suspects(x, y.nz);
        scale_marked(x, weights.alpha, suspects);
        add_to_marked(x, y, weights.beta, suspects);
        drop_suspects(x, suspects);
    } else {
        const std::int64_t old_nz = x.nz;
        zero_flag zeros;
        add_to_marked(x, y, weights.beta, zeros);
        drop_zeros(x, zeros.any ? x.nz : old_nz);
    }
}

} // namespace zktarn::vector_mod::detail
