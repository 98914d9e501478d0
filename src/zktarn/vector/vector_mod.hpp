#pragma once

#include <cstdint>

#include "zktarn/check.hpp"
#include "zktarn/export.hpp"
#include "zktarn/types.hpp"
#include "zktarn/vector/detail/checks.hpp"
#include "zktarn/vector/detail/list.hpp"
#include "zktarn/vector/vector_type.hpp"

/// Operations on sparse vectors.
///
/// The record, its three modes and what they keep are described in vector_type.hpp. Throughout, j
/// is an element index and k a list position, both in 1..n for a vector of capacity n. A procedure
/// that says "marks mode" needs `elm` and `ind`; one that lists needs room in the list. Nothing
/// allocates.
///
/// No operation keeps the index list sorted, and none clears a coefficient whose entry it removes.

namespace zktarn::vector_mod {

using vector_type::vector;

// Components
// ----------------------------------------------------------------------------------------
//
// Each reads or writes one component and keeps nothing else consistent with it.

/// The number of listed entries.
[[nodiscard]] ZKTARN_API_INLINE std::int32_t vector_get_nz(const vector& v) noexcept {
    return v.nz;
}

/// nz := n.
ZKTARN_API_INLINE void vector_set_nz(vector& v, const std::int32_t& n) noexcept {
    ZKTARN_CHECK(!v.ind.present() || n <= v.ind.extent[0]);
    v.nz = n;
}

/// The element index at list position k. Needs `ind`.
[[nodiscard]] ZKTARN_API_INLINE std::int32_t vector_get_ind(const vector& v,
                                                            const std::int32_t& k) noexcept {
    return v.ind(k);
}

/// ind(k) := j. Needs `ind`.
ZKTARN_API_INLINE void vector_set_ind(vector& v, const std::int32_t& k,
                                      const std::int32_t& j) noexcept {
    v.ind(k) = j;
}

/// coef(j) := value. Needs `coef`.
ZKTARN_API_INLINE void vector_set_coef(vector& v, const std::int32_t& j,
                                       const double& value) noexcept {
    v.coef(j) = value;
}

/// 1 when j is marked, otherwise 0. Needs `elm`.
[[nodiscard]] ZKTARN_API_INLINE flag vector_is_elm(const vector& v,
                                                   const std::int32_t& j) noexcept {
    return v.elm(j) > 0 ? 1 : 0;
}

/// elm(j) := 1. Needs `elm`.
ZKTARN_API_INLINE void vector_set_elm(vector& v, const std::int32_t& j) noexcept {
    v.elm(j) = 1;
}

/// elm(j) := 0. Needs `elm`.
ZKTARN_API_INLINE void vector_rem_elm(vector& v, const std::int32_t& j) noexcept {
    v.elm(j) = 0;
}

// Entries
// -------------------------------------------------------------------------------------------

/// The coefficient of j: coef(j) for a member, 0.0 for any other index, whatever stale value it
/// has. In dense mode coef(j). Needs `coef` for a member.
[[nodiscard]] ZKTARN_API_INLINE double vector_get_coef(const vector& v,
                                                       const std::int32_t& j) noexcept {
    ZKTARN_CHECK(v.elm.present() || !v.ind.present() || detail::is_element(v, j));
    const bool member = v.elm.present()   ? v.elm(j) >= 1
                        : v.ind.present() ? detail::is_listed(v.ind.data, v.nz, j)
                                          : true;
    return member ? v.coef(j) : 0.0;
}

/// Makes j a listed entry and stores its coefficient.
///
/// @param v      in/out. A member stays where it is listed; any other index is listed last (and
///               marked in marks mode). In dense mode nothing is listed and nz stays.
/// @param j      in.
/// @param value  in, optional. Stored in coef(j), 0.0 included. Absent, coef(j) stays as it was.
ZKTARN_API_INLINE void vector_add_nz(vector& v, const std::int32_t& j,
                                     optional_ref<const double> value = {}) noexcept {
    const std::int32_t index = j;
    ZKTARN_CHECK(value || v.elm.present() || !v.ind.present() || detail::is_element(v, index));
    if (value) {
        v.coef(index) = *value;
    }
    if (v.elm.present()) {
        if (v.elm(index) < 1) {
            detail::append(v, index);
            v.elm(index) = 1;
        }
    } else if (v.ind.present() && !detail::is_listed(v.ind.data, v.nz, index)) {
        detail::append(v, index);
    }
}

/// Removes the entry at list position k and its mark; the last entry takes its position. Marks
/// mode.
ZKTARN_API_INLINE void vector_rem_nz(vector& v, const std::int32_t& k) noexcept {
    const std::int32_t position = k;
    ZKTARN_CHECK(position <= v.nz);
    const std::int32_t j = v.ind(position);
    v.ind(position) = v.ind(v.nz);
    v.elm(j) = 0;
    v.nz -= 1;
}

/// Unmarks every listed index; list and nz stay. Marks mode, or nothing listed.
ZKTARN_API_INLINE void vector_clean_index(vector& v) noexcept {
    const std::int32_t n = v.nz;
    for (std::int32_t k = 1; k <= n; ++k) {
        v.elm(v.ind(k)) = 0;
    }
}

/// Unmarks every listed index and empties the list. Marks mode, or nothing listed.
ZKTARN_API_INLINE void vector_clear(vector& v) noexcept {
    vector_clean_index(v);
    v.nz = 0;
}

/// Drops every listed entry that is not a member or whose coefficient is exactly zero; a
/// not-a-number is kept. Each removal moves the last entry into the hole, and its index is
/// unmarked. Needs `coef` and, unless nz < 1, `ind`.
ZKTARN_API void vector_rem_zeros(vector& v) noexcept;

// Whole vectors
// -------------------------------------------------------------------------------------

/// x := alpha * x + beta * y.
///
/// @param x      in/out. Any mode. Indices of y that are no members are listed last, in y's order.
/// @param y      in. Marks or list mode; a dense y contributes nothing. May be x itself, and then
///               counts as a copy taken before the call.
/// @param alpha  in. Scales x unless |alpha - 1| <= tol, or it is not a number. A dense x lists
///               nothing and is never scaled.
/// @param beta   in. Nothing of y is added when |beta| <= tol, or it is not a number.
/// @param tol    in. Decides those two questions only; no result is snapped to zero by it.
///
/// Each sum is one fused multiply-add. When x has coefficients, entries that are exactly zero are
/// dropped at the end as by `vector_rem_zeros`, those that were zero before the call included.
/// Where x or y has no coefficients, only y's indices are merged into x.
ZKTARN_API void vectors_combine(vector& x, const vector& y, const double& alpha, const double& beta,
                                const double& tol) noexcept;

/// Makes the support of x the symmetric difference of the supports of x and y.
///
/// @param x  in/out. Marks mode. Coefficients are neither read nor written.
/// @param y  in. Needs `ind` unless nz < 1. May be the same record as x, which then becomes empty.
ZKTARN_API void vectors_calc_sym_diff(vector& x, const vector& y) noexcept;

/// Reduces coefficients modulo 2: a listed coefficient within `tol` of an even integer becomes 0.0
/// and its entry is dropped, as by `vector_rem_zeros`; any other, integral or not, becomes 1.0.
///
/// @param v    in/out. Marks or list mode; a dense vector stays as it is.
/// @param tol  in. Tolerance of `is_even_real`.
ZKTARN_API void vector_mod2(vector& v, const double& tol) noexcept;

/// 1 when a and b have the same count, every index listed in a is marked in b, and no two
/// coefficients differ by more than `tol`; otherwise 0. A difference that is not a number does not
/// count as one. Two vectors with nothing listed are identical, whatever their coefficients.
///
/// @param a    in. Marks or list mode.
/// @param b    in. Marks mode.
/// @param tol  in. Largest difference that passes.
[[nodiscard]] ZKTARN_API flag vectors_are_identical(const vector& a, const vector& b,
                                                    const double& tol) noexcept;

} // namespace zktarn::vector_mod
