#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "zktarn/vector/detail/append_if_new.hpp"
#include "zktarn/vector/detail/combine_marked.hpp"
#include "zktarn/vector/detail/list.hpp"

/// x := alpha * x + beta * y in list and dense mode, and where x and y are the same record; both
/// vectors have coefficients. Inlined into one function for each instruction set.

namespace zktarn::vector_mod::detail {

/// Scales every listed entry of x. Returns true when one of them is now zero or has no mark.
inline bool scale_entries(vector& x, double alpha) noexcept {
    const coefficient_reader old(x);
    double* const coef = x.coef.data;
    bool found = false;
    walk(
        x.ind.data, x.nz, [=](std::int64_t j) __attribute__((always_inline)) { old.prefetch(j); },
        [&](std::int64_t j) __attribute__((always_inline)) {
            coef[j - 1] = alpha * old(j);
            found |= is_zero(coef[j - 1]) || (old.elm != nullptr && old.elm[j - 1] < 1);
        });
    return found;
}

/// Computes a sum for each entry of y. `scale` is applied to the coefficient of x first; it is the
/// identity unless x and y are the same record.
template <class Scale>
struct summation {
    double* coef;
    coefficient_reader y_coef;
    double beta;
    Scale scale;
    bool zero = false;

    [[gnu::always_inline]] void add(std::int64_t j, bool member) noexcept {
        const double sum = std::fma(beta, y_coef(j), member ? scale(coef[j - 1]) : 0.0);
        coef[j - 1] = sum;
        zero |= is_zero(sum);
    }
};

template <class Scale>
[[gnu::always_inline]] inline void add_to_listed(vector& x, const vector& y,
                                                 summation<Scale>& sums) noexcept {
    for (std::int64_t k = 0, count = y.nz; k < count; ++k) {
        const std::int32_t j = y.ind.data[k];
        const bool member = is_listed(x.ind.data, x.nz, j);
        sums.add(j, member);
        if (!member) {
            append(x, j);
        }
    }
}

template <class Scale>
[[gnu::always_inline]] inline void add_to_dense(const vector& y, summation<Scale>& sums) noexcept {
    for (std::int64_t k = 0, count = y.nz; k < count; ++k) {
        sums.add(y.ind.data[k], true);
    }
}

/// x := alpha * x + beta * x. An entry is scaled in the step that adds to it, so that y counts as a
/// copy taken before the call.
[[gnu::always_inline]] inline void combine_with_itself(vector& x, const factors& weights) noexcept {
    const double alpha = weights.scales ? weights.alpha : 1.0;
    const auto scale = [=](double c) __attribute__((always_inline)) {
        return alpha * c;
    };
    summation<decltype(scale)> sums{x.coef.data, coefficient_reader(x), weights.beta, scale};
    std::int32_t* const elm = x.elm.data;
    if (elm != nullptr) {
        append_if_new(
            x, x.ind.data,
            x.nz, [&](std::int64_t j) __attribute__((always_inline)) { sums.y_coef.prefetch(j); },
            [&](std::int64_t j) __attribute__((always_inline)) {
                const membership known(elm[j - 1]);
                sums.add(j, known.is_new == 0);
                elm[j - 1] = known.after_add();
                return known.is_new;
            });
    } else if (x.ind.present()) {
        add_to_listed(x, x, sums);
    }
    if (sums.zero) {
        drop_zeros(x, x.nz);
    }
}

/// x := alpha * x + beta * y, where x has no marks and y is another record.
[[gnu::always_inline]] inline void combine_unmarked(vector& x, const vector& y,
                                                    const factors& weights) noexcept {
    const auto same = [](double c) __attribute__((always_inline)) {
        return c;
    };
    summation<decltype(same)> sums{x.coef.data, coefficient_reader(y), weights.beta, same};
    if (!x.ind.present()) {
        add_to_dense(y, sums);
        return;
    }
    // Entries may have been zero before the call; only a scaling pass would have found them.
    const bool drop = !weights.scales || scale_entries(x, weights.alpha);
    add_to_listed(x, y, sums);
    if (drop || sums.zero) {
        drop_zeros(x, x.nz);
    }
}

} // namespace zktarn::vector_mod::detail
