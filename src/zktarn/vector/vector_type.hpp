#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// The sparse vector record, its creation and its release.
///
/// The three arrays of a vector have the same length, its capacity n. Element indices j and list
/// positions k both run from 1 to n. Which arrays exist decides how membership is known, tested in
/// this order:
///
///     marks mode   `elm` exists                      j is a member when elm(j) >= 1
///     list mode    `elm` absent, `ind` exists        j is a member when it is among ind(1..nz)
///     dense mode   neither                           every j is present, coef(j) is used directly
///
/// Kept, and relied on, in marks mode: the indices ind(1..nz) are distinct and in no particular
/// order; elm(j) is 1 for those and 0 for every other j; coef(j) means something for those only and
/// is stale for every other j. In list mode the indices ind(1..nz) are distinct. In dense mode nz
/// is not maintained.

namespace zktarn::vector_type {

/// A sparse vector. Always handled through a reference to a record that `vector_alloc` made; a
/// bitwise copy shares the arrays and must not be released.
struct vector {
    /// Coefficients, addressed by element index, not by list position; may be absent.
    array_1d<double> coef;
    /// Index list: positions 1..nz hold the listed element indices, the rest is scratch; may be
    /// absent.
    array_1d<std::int32_t> ind;
    /// Marks, addressed by element index: 1 for a member, 0 otherwise; may be absent.
    array_1d<std::int32_t> elm;
    /// Number of listed entries.
    std::int32_t nz = 0;
};

static_assert(std::is_trivially_copyable_v<vector>);
static_assert(std::is_standard_layout_v<vector>);
static_assert(sizeof(vector) == 80);
static_assert(offsetof(vector, coef) == 0);
static_assert(offsetof(vector, ind) == 24);
static_assert(offsetof(vector, elm) == 48);
static_assert(offsetof(vector, nz) == 72);

/// Creates an empty vector of capacity n, its arrays in the host's memory.
///
/// @param vec     out. The new record; null on failure. What it referred to before is not released.
/// @param n       in. Capacity; any value. Below 1 no array is allocated.
/// @param no_coef in, optional. True leaves `coef` absent: a support-only vector, an index set.
/// @param no_ind  in, optional. True leaves `ind` absent.
/// @param no_elm  in, optional. True leaves `elm` absent: list mode, or dense mode with `no_ind`.
///
/// Arrays are allocated in the order `coef`, `ind`, `elm`. The marks are set to 0; coefficients and
/// list are uninitialised.
///
/// Returns 1 with nz = 0. Returns 0 with vec null when the record or an array cannot be allocated;
/// what had been allocated by then is released.
ZKTARN_API flag vector_alloc(vector*& vec, const std::int32_t& n,
                             optional_ref<const flag> no_coef = {},
                             optional_ref<const flag> no_ind = {},
                             optional_ref<const flag> no_elm = {}) noexcept;

/// Releases a vector: `coef`, `ind`, `elm`, in this order and where present, then the record.
///
/// @param vec  in/out. Made by `vector_alloc`, or null, and then nothing happens. Null afterwards.
ZKTARN_API void vector_free(vector*& vec) noexcept;

/// Gives consecutive records their defaults: arrays absent, nz = 0. Releases nothing.
///
/// @param first  out. The first of the records.
/// @param count  in. Number of records; below 1 nothing is touched.
ZKTARN_API_INLINE void _vectorinitialise(vector& first, const std::int32_t& count) noexcept {
    vector* const records = &first;
    const std::int32_t n = count;
    for (std::int32_t i = 0; i < n; ++i) {
        records[i].coef.data = nullptr;
        records[i].ind.data = nullptr;
        records[i].elm.data = nullptr;
        records[i].nz = 0;
    }
}

} // namespace zktarn::vector_type
