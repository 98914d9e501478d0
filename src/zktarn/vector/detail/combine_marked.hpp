#pragma once

#include <algorithm>
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
/// drops zeros. Two methods save visits to entries. Each has the result of the plain method, bit
/// for bit and position for position:
///
/// - `combine_in_list_order`: if no sum is zero, the last pass skips the appended entries. If
///   scaling found no zero either, there is no last pass.
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

/// The coefficients of a vector without marks.
struct unmarked_reader {
    const double* coef;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept { prefetch_read(coef, j); }
    [[gnu::always_inline]] double operator()(std::int64_t j) const noexcept { return coef[j - 1]; }
};

/// Scales every listed entry of x. Returns true when one of them is now zero or has no mark.
[[gnu::noinline]] inline bool scale_marked(vector& x, double alpha) noexcept {
    const std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    bool zeros = false;
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
            zeros |= is_zero(scaled) | (elm[j - 1] < 1);
        });
    return zeros;
}

/// Adds beta times the entries of y to x. Returns true when one of the sums is zero.
template <class Reader>
[[gnu::always_inline]] inline bool add_to_marked(vector& x, const vector& y, const Reader& y_coef,
                                                 double beta) noexcept {
    std::int32_t* const elm = x.elm.data;
    double* const coef = x.coef.data;
    bool zeros = false;
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
            zeros |= is_zero(sum);
            return known.is_new;
        });
    return zeros;
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
    const std::int64_t old_nz = x.nz;
    const bool old_zeros = !weights.scales || scale_marked(x, weights.alpha);
    const bool new_zeros = y.elm.data != nullptr
                               ? add_to_marked(x, y, coefficient_reader(y), weights.beta)
                               : add_to_marked(x, y, unmarked_reader{y.coef.data}, weights.beta);
    if (new_zeros) {
        drop_zeros(x, x.nz);
    } else if (old_zeros) {
        drop_zeros(x, old_nz);
    }
}

} // namespace zktarn::vector_mod::detail
