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
/// The record, its three modes and their invariants are described in vector_type.hpp. For a vector
/// of capacity n, j is an element index and k a list position, both in 1..n.
///
/// Preconditions. A procedure marked "marks mode" needs `elm` and `ind`. A procedure that appends
/// needs room in the list. Every listed index is in 1..n. Ordinary builds check nothing.
///
/// Cost. A procedure on one element takes constant time, except in list mode: there
/// `vector_get_coef` and `vector_add_nz` search the list, in time proportional to nz. A procedure
/// on whole vectors takes time proportional to the number of listed entries of its vectors, except
/// `vectors_combine` with x in list mode: it searches the list of x for each entry of y.
///
/// No procedure allocates, keeps the index list sorted, or clears a coefficient whose entry it
/// removes. List positions beyond nz hold scratch values.

namespace zktarn::vector_mod {

using vector_type::vector;

// Components
// ----------------------------------------------------------------------------------------
//
// Each reads or writes one component. The caller keeps the other components consistent with it.

/// The number of listed entries.
[[nodiscard]] ZKTARN_API_INLINE std::int32_t vector_get_nz(const vector& v) noexcept {
    return v.nz;
}

/// nz := n, where n is at most the capacity, if v has a list.
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

/// The coefficient of j: coef(j) for a member, 0.0 for any other index. In dense mode coef(j).
/// Needs `coef` when j is a member. In list mode searches the list.
[[nodiscard]] ZKTARN_API_INLINE double vector_get_coef(const vector& v,
                                                       const std::int32_t& j) noexcept {
    ZKTARN_CHECK(v.elm.present() || !v.ind.present() || detail::is_element(v, j));
    const bool member = v.elm.present()   ? v.elm(j) >= 1
                        : v.ind.present() ? detail::is_listed(v.ind.data, v.nz, j)
                                          : true;
    return member ? v.coef(j) : 0.0;
}

/// Makes j a listed entry and stores its coefficient. In list mode searches the list.
///
/// @param v      in/out. If j is a member, the list stays as it is. Any other j is appended to the
///               list, which needs room for it, and gets mark 1 in marks mode. In dense mode there
///               is no list, and nz stays.
/// @param j      in.
/// @param value  in, optional. Stored in coef(j), 0.0 included. When absent, coef(j) stays.
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

/// Removes the entry at list position k, 1 <= k <= nz, and sets its mark to 0. The last entry moves
/// to position k. Marks mode.
ZKTARN_API_INLINE void vector_rem_nz(vector& v, const std::int32_t& k) noexcept {
    const std::int32_t position = k;
    ZKTARN_CHECK(position <= v.nz);
    const std::int32_t j = v.ind(position);
    v.ind(position) = v.ind(v.nz);
    v.elm(j) = 0;
    v.nz -= 1;
}

/// Sets the mark of every listed index to 0. List and nz stay. Marks mode. If nz < 1, nothing
/// happens. Takes time proportional to nz.
ZKTARN_API_INLINE void vector_clean_index(vector& v) noexcept {
    for (std::int64_t k = 1, count = v.nz; k <= count; ++k) {
        v.elm(v.ind(k)) = 0;
    }
}

/// `vector_clean_index`, then nz := 0.
ZKTARN_API_INLINE void vector_clear(vector& v) noexcept {
    vector_clean_index(v);
    v.nz = 0;
}

/// Drops every listed entry that has no mark (marks mode) or whose coefficient is 0.0 or -0.0. A
/// NaN is kept.
///
/// Tests position 1, 2, ... in turn. A dropped entry gets mark 0, the last entry moves to its
/// position, and that position is tested again. Needs `coef` and `ind`. If nz < 1, nothing happens.
ZKTARN_API void vector_rem_zeros(vector& v) noexcept;

// Whole vectors
// -------------------------------------------------------------------------------------

/// x := alpha * x + beta * y.
///
/// @param x      in/out. Any mode. Indices of y that are not members of x are appended in y's
///               order.
/// @param y      in. Marks or list mode; a dense y contributes nothing. May be x itself, which then
///               counts as a copy taken before the call.
/// @param alpha  in. Scales x unless |alpha - 1| <= tol or the difference is NaN. A dense x lists
///               nothing and is never scaled.
/// @param beta   in. Nothing of y is added when |beta| <= tol or beta is NaN.
/// @param tol    in. Used in these two tests only: no result is rounded to zero. When it is NaN, x
///               is not scaled and nothing is added.
///
/// A listed entry without a mark counts as 0.0, in x and in y. Each sum is one fused multiply-add.
/// When x has coefficients, entries that are exactly zero are dropped at the end as by
/// `vector_rem_zeros`, including those that were zero before the call. When x or y has no
/// coefficients, y's indices are merged into x and no sums are formed.
ZKTARN_API void vectors_combine(vector& x, const vector& y, const double& alpha, const double& beta,
                                const double& tol) noexcept;

/// Replaces the support of x by the symmetric difference of the supports of x and y.
///
/// @param x  in/out. Marks mode. Coefficients are neither read nor written. Needs room for every
///           index that only y lists, until the indices of both are dropped.
/// @param y  in. Needs `ind` unless nz < 1, and then nothing happens. May be the same record as x,
///           which then becomes empty.
///
/// Appends the indices that only y lists, in y's order. Then drops the common indices as
/// `vector_rem_zeros` drops zeros. After as many drops as there are common indices, the first kept
/// entry ends the pass.
ZKTARN_API void vectors_calc_sym_diff(vector& x, const vector& y) noexcept;

/// Reduces coefficients modulo 2. A listed coefficient for which `is_even_real` holds within tol
/// becomes 0.0, and its entry is dropped as by `vector_rem_zeros`. Any other coefficient, integral
/// or not, becomes 1.0.
///
/// @param v    in/out. Marks or list mode, with `coef`. Nothing happens when nz < 1, nor in dense
///             mode. An entry without a mark counts as 0.0.
/// @param tol  in. Tolerance of `is_even_real`.
ZKTARN_API void vector_mod2(vector& v, const double& tol) noexcept;

/// Compares supports and coefficients.
///
/// @param a    in. Marks or list mode, with `coef`. An entry without a mark counts as 0.0.
/// @param b    in. Marks mode, with `coef`.
/// @param tol  in. Largest difference between coefficients that passes.
///
/// Returns 1 when both have the same nz, every index listed in a has a mark in b, and no two
/// coefficients differ by more than tol. Otherwise returns 0. A difference that is NaN passes. When
/// nz < 1 in both, returns 1 without reading any array.
[[nodiscard]] ZKTARN_API flag vectors_are_identical(const vector& a, const vector& b,
                                                    const double& tol) noexcept;

} // namespace zktarn::vector_mod
