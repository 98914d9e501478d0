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

#ifdef __x86_64__
#include <immintrin.h> // GCC knows the instructions of AVX2 by name only after this.
#endif

#include "ufuncs.hpp"

/// Loops over contiguous arrays of ordinary numbers with one tolerance for all elements.
///
/// A number is ordinary if it and its sum with the tolerance are below 2^31 - 1 in magnitude. For
/// ordinary numbers the guarded floor is the plain floor, so the procedures of integrality.hpp are
/// formulas without a branch for vector instructions: those that every processor has, and on x86-64
/// those of AVX2 where the processor has them. Each formula has the bits of its procedure, and the
/// elements that are not ordinary go to the procedure itself.

namespace zktarn::python::ordinary {

/// Vectors of reals, and the results of comparisons of such: all bits of a lane 1 or 0.
template <int bytes>
struct vector_of;
template <>
struct vector_of<16> {
    using reals = double __attribute__((vector_size(16)));
    using masks = std::int64_t __attribute__((vector_size(16)));
};
template <>
struct vector_of<32> {
    using reals = double __attribute__((vector_size(32)));
    using masks = std::int64_t __attribute__((vector_size(32)));
};

template <class Reals>
using masks_of = typename vector_of<sizeof(Reals)>::masks;

template <int bytes>
constexpr std::size_t lanes = bytes / sizeof(double);

template <class Reals>
[[gnu::always_inline]] inline Reals magnitude(Reals value) noexcept {
    constexpr std::int64_t all_but_sign = std::numeric_limits<std::int64_t>::max();
    return reinterpret_cast<Reals>(reinterpret_cast<masks_of<Reals>>(value) & all_but_sign);
}

/// `value` where the mask is set, else 0.0.
template <class Reals>
[[gnu::always_inline]] inline Reals where(masks_of<Reals> mask, Reals value) noexcept {
    return reinterpret_cast<Reals>(mask & reinterpret_cast<masks_of<Reals>>(value));
}

/// Between 2^52 and 2^53 the doubles are the integers, so adding 3 * 2^51 rounds to an integer and
/// subtracting it again is exact.
template <class Reals>
[[gnu::always_inline]] inline Reals rounded(Reals value) noexcept {
    constexpr double integers_only = 0x1.8p52;
    return (value + integers_only) - integers_only;
}

#ifndef __has_builtin
#define __has_builtin(name) 0
#endif

/// The greatest integer that is at most the sum; +0.0 for a zero.
template <class Reals>
[[gnu::always_inline]] inline Reals floor_of(Reals sum) noexcept {
    // The instruction, for the caller that is compiled for AVX2. The intrinsic function could only
    // be called by functions that are compiled for it themselves. Adding +0.0 changes -0.0 alone.
#if __has_builtin(__builtin_elementwise_floor)
    if constexpr (sizeof(Reals) == 32) {
        return __builtin_elementwise_floor(sum) + 0.0;
    }
#elif defined __x86_64__
    if constexpr (sizeof(Reals) == 32) {
        constexpr int down_without_exceptions = 9;
        return __builtin_ia32_roundpd256(sum, down_without_exceptions) + 0.0;
    }
#endif
    const Reals nearest = rounded(sum);
    return nearest - where<Reals>(nearest > sum, Reals{} + 1.0);
}

/// Numbers tested for integrality: floors and ceilings with an offset, and which are within eps.
template <class Reals>
struct decision {
    Reals floor;
    Reals ceiling;
    masks_of<Reals> accepts_floor;
    masks_of<Reals> accepts;

    [[gnu::always_inline]] decision(Reals x, double eps, double offset) noexcept
        : floor(floor_of(x + offset)), ceiling(-floor_of(offset - x)),
          accepts_floor(x - floor <= eps), accepts(accepts_floor | (ceiling - x <= eps)) {}

    /// The accepted integer; the ceiling where none is accepted.
    [[gnu::always_inline]] Reals integer() const noexcept {
        return accepts_floor ? floor : ceiling;
    }
};

// The formulas: tested numbers and the tolerance in, the results out, reals or masks.

struct distance_formula {
    template <class Reals>
    [[gnu::always_inline]] static Reals apply(Reals x, double) noexcept {
        return magnitude(x - rounded(x));
    }
};

struct floor_formula {
    template <class Reals>
    [[gnu::always_inline]] static Reals apply(Reals x, double eps) noexcept {
        return floor_of(x + eps);
    }
};

struct ceil_formula {
    template <class Reals>
    [[gnu::always_inline]] static Reals apply(Reals x, double eps) noexcept {
        return -floor_of(eps - x);
    }
};

struct fractionality_formula {
    template <class Reals>
    [[gnu::always_inline]] static Reals apply(Reals x, double eps) noexcept {
        return x - floor_of(x + eps);
    }
};

/// `offsets` is 1 where floor and ceiling are those of x + eps and x - eps, 0 where those of x.
template <int offsets>
struct is_int_formula {
    template <class Reals>
    [[gnu::always_inline]] static masks_of<Reals> apply(Reals x, double eps) noexcept {
        return decision<Reals>(x, eps, offsets * eps).accepts;
    }
};

template <int offsets>
struct nearest_formula {
    template <class Reals>
    [[gnu::always_inline]] static Reals apply(Reals x, double eps) noexcept {
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        const decision<Reals> decided(x, eps, offsets * eps);
        return decided.accepts ? decided.integer() : Reals{} + nan;
    }
};

struct is_even_formula {
    template <class Reals>
    [[gnu::always_inline]] static masks_of<Reals> apply(Reals x, double eps) noexcept {
        const decision<Reals> decided(x, eps, eps);
        const Reals half = 0.5 * decided.integer();
        return decided.accepts & (rounded(half) == half);
    }
};

template <class Reals>
[[gnu::always_inline]] inline void store(Reals value, double* destination) noexcept {
    std::memcpy(destination, &value, sizeof value);
}

template <class Masks>
[[gnu::always_inline]] inline void store(Masks value, npy_bool* destination) noexcept {
    for (std::size_t lane = 0; lane < sizeof value / sizeof value[0]; ++lane) {
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
template <int bytes, class Formula, std::size_t scalars, class Result>
[[gnu::always_inline]] inline bool apply_formula(const double* x, Result* results,
                                                 std::size_t count,
                                                 const scalar_operands<scalars>& given) noexcept {
    using reals = typename vector_of<bytes>::reals;
    using masks = typename vector_of<bytes>::masks;
    const double eps = given.eps();
    const double largest = limit(eps);
    masks ordinary = masks{} - 1;
    for (std::size_t i = 0; i < count; i += lanes<bytes>) {
        reals number;
        std::memcpy(&number, x + i, sizeof number);
        number = given.tested(number);
        ordinary &= magnitude(number) < largest;
        store(Formula::apply(number, eps), results + i);
    }
    std::int64_t all = -1;
    for (std::size_t lane = 0; lane < lanes<bytes>; ++lane) {
        all &= ordinary[lane];
    }
    return all != 0;
}

/// A block of elements: the formula, and the procedure where it does not apply.
template <int bytes, auto procedure, class Formula, std::size_t most, std::size_t scalars,
          class Result>
[[gnu::always_inline]] inline void run_block(const double* x, Result* results, std::size_t count,
                                             const scalar_operands<scalars>& given) noexcept {
    std::array<double, most> copy;
    if (static_cast<const void*>(x) == results) { // The results take the place of the inputs.
        std::copy_n(x, count, copy.data());
        x = copy.data();
    }
    const std::size_t whole = count - count % lanes<bytes>;
    if (!apply_formula<bytes, Formula>(x, results, whole, given)) {
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

/// The elements of contiguous arrays, block by block.
template <int bytes, auto procedure, class Formula, std::size_t scalars, class Result>
[[gnu::always_inline]] inline void run(const double* x, Result* results, std::size_t count,
                                       const scalar_operands<scalars>& given) noexcept {
    constexpr std::size_t most = 256;
    for (std::size_t first = 0; first < count; first += most) {
        run_block<bytes, procedure, Formula, most>(x + first, results + first,
                                                   std::min(most, count - first), given);
    }
}

#ifdef __x86_64__
template <auto procedure, class Formula, std::size_t scalars, class Result>
[[gnu::target("avx2")]] void run_with_avx2(const double* x, Result* results, std::size_t count,
                                           const scalar_operands<scalars>& given) noexcept {
    run<32, procedure, Formula>(x, results, count, given);
}
#endif

/// The same by the widest vectors that the processor has.
template <auto procedure, class Formula, std::size_t scalars, class Result>
void run_on_this_processor(const double* x, Result* results, std::size_t count,
                           const scalar_operands<scalars>& given) noexcept {
#ifdef __x86_64__
    static const bool has_avx2 = __builtin_cpu_supports("avx2") != 0;
    if (has_avx2) {
        run_with_avx2<procedure, Formula>(x, results, count, given);
        return;
    }
#endif
    run<16, procedure, Formula>(x, results, count, given);
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
    scalar_operands<scalars> given{};
    for (std::size_t i = 0; i < scalars; ++i) {
        given.values[i] = *reinterpret_cast<const double*>(operands[i + 1]);
    }
    run_on_this_processor<procedure, Formula>(reinterpret_cast<const double*>(operands[0]),
                                              reinterpret_cast<Result*>(operands[scalars + 1]),
                                              static_cast<std::size_t>(*count), given);
    std::feclearexcept(FE_ALL_EXCEPT);
}

} // namespace zktarn::python::ordinary
