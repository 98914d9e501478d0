#pragma once

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <tuple>

#include "ufuncs.hpp"

/// Loops over contiguous arrays of ordinary numbers with one tolerance for all elements.
///
/// A number is ordinary if it and its sum with the tolerance are below 2^31 - 1 in magnitude. For
/// ordinary numbers the guarded floor is the plain floor, so the procedures of integrality.hpp are
/// formulas without a branch for the vector instructions that every processor has. Each formula has
/// the bits of its procedure, and the elements that are not ordinary go to the procedure itself.

namespace zktarn::python::ordinary {

/// Two reals, and the result of a comparison of such: all bits of a lane 1 or 0.
using reals = double __attribute__((vector_size(16)));
using masks = std::int64_t __attribute__((vector_size(16)));
constexpr std::size_t lanes = 2;

[[gnu::always_inline]] inline reals magnitude(reals value) noexcept {
    constexpr std::int64_t all_but_sign = std::numeric_limits<std::int64_t>::max();
    return reinterpret_cast<reals>(reinterpret_cast<masks>(value) & all_but_sign);
}

/// `value` where the mask is set, else 0.0.
[[gnu::always_inline]] inline reals where(masks mask, reals value) noexcept {
    return reinterpret_cast<reals>(mask & reinterpret_cast<masks>(value));
}

/// Between 2^52 and 2^53 the doubles are the integers, so adding 3 * 2^51 rounds to an integer and
/// subtracting it again is exact.
[[gnu::always_inline]] inline reals rounded(reals value) noexcept {
    constexpr double integers_only = 0x1.8p52;
    return (value + integers_only) - integers_only;
}

/// The greatest integer that is at most the sum; +0.0 for a zero.
[[gnu::always_inline]] inline reals floor_of(reals sum) noexcept {
    const reals nearest = rounded(sum);
    return nearest - where(nearest > sum, reals{1.0, 1.0});
}

/// Numbers tested for integrality: floors and ceilings with an offset, and which are within eps.
struct decision {
    reals floor;
    reals ceiling;
    masks accepts_floor;
    masks accepts;

    [[gnu::always_inline]] decision(reals x, double eps, double offset) noexcept
        : floor(floor_of(x + offset)), ceiling(-floor_of(offset - x)),
          accepts_floor(x - floor <= eps), accepts(accepts_floor | (ceiling - x <= eps)) {}

    /// The accepted integer; the ceiling where none is accepted.
    [[gnu::always_inline]] reals integer() const noexcept {
        return accepts_floor ? floor : ceiling;
    }
};

// The formulas: tested numbers and the tolerance in, the results out, reals or masks.

struct distance_formula {
    static reals apply(reals x, double) noexcept { return magnitude(x - rounded(x)); }
};

struct floor_formula {
    static reals apply(reals x, double eps) noexcept { return floor_of(x + eps); }
};

struct ceil_formula {
    static reals apply(reals x, double eps) noexcept { return -floor_of(eps - x); }
};

struct fractionality_formula {
    static reals apply(reals x, double eps) noexcept { return x - floor_of(x + eps); }
};

/// `offsets` is 1 where floor and ceiling are those of x + eps and x - eps, 0 where those of x.
template <int offsets>
struct is_int_formula {
    static masks apply(reals x, double eps) noexcept {
        return decision(x, eps, offsets * eps).accepts;
    }
};

template <int offsets>
struct nearest_formula {
    static reals apply(reals x, double eps) noexcept {
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        const decision decided(x, eps, offsets * eps);
        return decided.accepts ? decided.integer() : reals{nan, nan};
    }
};

struct is_even_formula {
    static masks apply(reals x, double eps) noexcept {
        const decision decided(x, eps, eps);
        const reals half = 0.5 * decided.integer();
        return decided.accepts & (rounded(half) == half);
    }
};

[[gnu::always_inline]] inline void store(reals value, double* destination) noexcept {
    std::memcpy(destination, &value, sizeof value);
}

[[gnu::always_inline]] inline void store(masks value, npy_bool* destination) noexcept {
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        destination[lane] = static_cast<npy_bool>(-value[lane]);
    }
}

/// The largest magnitude of ordinary numbers, by a tolerance; NaN if the tolerance is NaN.
inline double limit(double eps) noexcept {
    constexpr double exact_below = 2147483647.0; // 2^31 - 1
    return exact_below - 1.0 - std::fabs(eps);
}

/// Scalars that `procedure` takes after x. The number tested is x, or x * scalar if there are two.
template <std::size_t count>
struct scalar_operands {
    std::array<double, count> values;

    double eps() const noexcept {
        if constexpr (count == 0) {
            return 0.0;
        } else {
            return values.back();
        }
    }
    template <class Number>
    [[gnu::always_inline]] Number tested(Number x) const noexcept {
        if constexpr (count == 2) {
            return x * values.front();
        } else {
            return x;
        }
    }
    template <auto procedure, class Result>
    void call(const double& x, Result& result) const noexcept {
        std::apply([&](const auto&... scalars) { procedure(x, scalars..., result); }, values);
    }
};

/// The formula for `count` elements, a multiple of the lanes. Returns whether all are ordinary;
/// the results of others mean nothing.
template <class Formula, std::size_t scalars, class Result>
[[gnu::always_inline]] inline bool apply_formula(const double* x, Result* results,
                                                 std::size_t count,
                                                 const scalar_operands<scalars>& given) noexcept {
    const double eps = given.eps();
    const double largest = limit(eps);
    masks ordinary = {-1, -1};
    for (std::size_t i = 0; i < count; i += lanes) {
        reals number;
        std::memcpy(&number, x + i, sizeof number);
        number = given.tested(number);
        ordinary &= magnitude(number) < largest;
        store(Formula::apply(number, eps), results + i);
    }
    return (ordinary[0] & ordinary[1]) != 0;
}

/// A block of elements: the formula, and the procedure where it does not apply.
template <auto procedure, class Formula, std::size_t most, std::size_t scalars, class Result>
[[gnu::always_inline]] inline void run_block(const double* x, Result* results, std::size_t count,
                                             const scalar_operands<scalars>& given) noexcept {
    std::array<double, most> copy;
    if (static_cast<const void*>(x) == results) { // The results take the place of the inputs.
        std::copy_n(x, count, copy.data());
        x = copy.data();
    }
    const std::size_t whole = count - count % lanes;
    if (!apply_formula<Formula>(x, results, whole, given)) {
        const double largest = limit(given.eps());
        for (std::size_t i = 0; i < whole; ++i) {
            if (!(std::fabs(given.tested(x[i])) < largest)) {
                given.template call<procedure>(x[i], results[i]);
            }
        }
    }
    for (std::size_t i = whole; i < count; ++i) {
        given.template call<procedure>(x[i], results[i]);
    }
}

/// The loop of a universal function over `procedure(x, scalars..., result)`.
template <auto procedure, class Formula, class Result, std::size_t scalars>
void loop(char** operands, const npy_intp* count, const npy_intp* steps, void* data) noexcept {
    bool suits = steps[0] == sizeof(double) && steps[scalars + 1] == sizeof(Result);
    for (std::size_t i = 1; i <= scalars; ++i) {
        suits = suits && steps[i] == 0;
    }
    if (!suits) {
        elementwise_reals<procedure, Result, scalars>::loop(operands, count, steps, data);
        return;
    }
    constexpr std::size_t most = 256;
    const auto* const x = reinterpret_cast<const double*>(operands[0]);
    auto* const results = reinterpret_cast<Result*>(operands[scalars + 1]);
    scalar_operands<scalars> given{};
    for (std::size_t i = 0; i < scalars; ++i) {
        given.values[i] = *reinterpret_cast<const double*>(operands[i + 1]);
    }
    const auto total = static_cast<std::size_t>(*count);
    for (std::size_t first = 0; first < total; first += most) {
        run_block<procedure, Formula, most>(x + first, results + first,
                                            std::min(most, total - first), given);
    }
    std::feclearexcept(FE_ALL_EXCEPT);
}

} // namespace zktarn::python::ordinary
