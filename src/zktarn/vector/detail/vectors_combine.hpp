#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "zktarn/vector/detail/append.hpp"
#include "zktarn/vector/vector_mod.hpp"

/// The body of `vectors_combine`, inlined into one function for each instruction set.

namespace zktarn::vector_mod::detail {

/// What is left of the arguments of `vectors_combine` once the tolerance has had its say.
struct combination {
    double alpha;
    double beta;
    bool scales;
    bool adds;
};

/// `value` when `keep` holds, else 0.0: without a branch, since it cannot be predicted, and without
/// a product, since the value may be anything.
[[gnu::always_inline]] inline double kept_if(bool keep, double value) noexcept {
    const std::uint64_t mask = std::uint64_t{0} - std::uint64_t{keep};
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(value) & mask);
}

/// Scales every listed entry of x. Returns true when one of them is now zero or is no member.
[[gnu::always_inline]] inline bool scale_entries(vector& x, double alpha) noexcept {
    const std::int32_t* const list = x.ind.data;
    const std::int32_t* const marks = x.elm.data;
    double* const coef = x.coef.data;
    const std::int32_t count = x.nz;
    bool droppable = false;
    for (std::int32_t k = 0; k < count; ++k) {
        const std::int64_t i = std::int64_t{list[k]} - 1;
        const bool member = marks == nullptr || marks[i] >= 1;
        const double scaled = alpha * (member ? coef[i] : 0.0);
        coef[i] = scaled;
        droppable |= !member | (scaled == 0.0);
    }
    return droppable;
}

/// Adds beta times the entries of y to x; both have coefficients. Returns true when a sum is zero.
///
/// @param scale  takes x's coefficient to the one that beta * y is added to. It is the identity,
///               unless x and y are the same record: then y counts as a copy from before the
///               scaling, and each entry is scaled just when it is added to.
template <class Scale>
[[gnu::always_inline]] inline bool add_entries(vector& x, const vector& y, double beta,
                                               Scale scale) noexcept {
    double* const coef = x.coef.data;
    const double* const y_coef = y.coef.data;
    const std::int32_t* const y_marks = y.elm.data;
    bool zero = false;
    const auto y_value = [=](std::int64_t i) {
        return y_marks == nullptr || y_marks[i] >= 1 ? y_coef[i] : 0.0;
    };
    const auto add = [&](std::int64_t i, bool member) {
        const double sum = std::fma(beta, y_value(i), kept_if(member, scale(coef[i])));
        coef[i] = sum;
        zero |= sum == 0.0;
    };
    if (x.elm.present()) {
        std::int32_t* const marks = x.elm.data;
        append_where(
            x, y.ind.data, y.nz,
            [&](std::int64_t j) {
                const std::int32_t mark = marks[j - 1];
                const bool member = mark >= 1;
                add(j - 1, member);
                marks[j - 1] = std::max(mark, 1);
                return std::int32_t{mark < 1};
            },
            [=](std::int64_t j) {
                __builtin_prefetch(marks + j - 1, 1);
                __builtin_prefetch(coef + j - 1, 1);
                __builtin_prefetch(y_coef + j - 1);
                if (y_marks != nullptr) {
                    __builtin_prefetch(y_marks + j - 1);
                }
            });
    } else if (x.ind.present()) {
        for (std::int32_t k = 0, count = y.nz; k < count; ++k) {
            const std::int32_t j = y.ind.data[k];
            const bool member = is_listed(x.ind.data, x.nz, j);
            add(std::int64_t{j} - 1, member);
            if (!member) {
                append(x, j);
            }
        }
    } else {
        for (std::int32_t k = 0, count = y.nz; k < count; ++k) {
            add(std::int64_t{y.ind.data[k]} - 1, true);
        }
    }
    return zero;
}

/// x := alpha * x + beta * y for vectors with coefficients. Returns true when x may have entries to
/// drop.
[[gnu::always_inline]] inline bool combine_coefficients(vector& x, const vector& y,
                                                        const combination& by) noexcept {
    if (&x == &y && by.adds) {
        const double alpha = by.scales ? by.alpha : 1.0;
        return add_entries(x, y, by.beta, [=](double c) { return alpha * c; });
    }
    // Entries that the scaling pass did not look at may have been zero all along.
    const bool droppable = by.scales ? scale_entries(x, by.alpha) : true;
    const bool zero = by.adds && add_entries(x, y, by.beta, [](double c) { return c; });
    return droppable || zero;
}

} // namespace zktarn::vector_mod::detail
