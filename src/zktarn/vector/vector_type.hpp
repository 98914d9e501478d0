#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// The sparse vector record, its creation and its release.
///
/// The three arrays of a vector have the same length, its capacity n. Element indices j and list
/// positions k both run from 1 to n. The arrays that exist decide the mode, tested in this order:
///
///     marks mode   `elm` exists                      j is a member when elm(j) >= 1
///     list mode    `elm` absent, `ind` exists        j is a member when it is among ind(1..nz)
///     dense mode   neither                           every j is a member, nz is not maintained
///
/// Invariants, which every procedure keeps and expects:
///
/// - In marks and list mode the indices ind(1..nz) are distinct, in no particular order.
/// - In marks mode elm(j) is 1 for these indices and 0 for every other j.
/// - coef(j) is the coefficient of a member. For any other j it is stale: its value means nothing.

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

/// Creates an empty vector of capacity n. Its arrays are allocated by the host.
///
/// @param vec     out. The new record; null on failure. A record that it referred to before is not
///                released.
/// @param n       in. Capacity; any value. When n < 1, no array is allocated.
/// @param no_coef in, optional. True leaves `coef` absent: a support-only vector, an index set.
/// @param no_ind  in, optional. True leaves `ind` absent.
/// @param no_elm  in, optional. True leaves `elm` absent: list mode, or dense mode with `no_ind`.
///
/// Allocates `coef`, `ind`, `elm` in this order and sets the marks to 0. Coefficients and list are
/// not initialised. Takes time proportional to n for the marks.
///
/// Returns 1 with nz = 0. When the record or an array cannot be allocated, releases what has been
/// allocated and returns 0.
[[nodiscard]] ZKTARN_API flag vector_alloc(vector*& vec, const std::int32_t& n,
                                           optional_ref<const flag> no_coef = {},
                                           optional_ref<const flag> no_ind = {},
                                           optional_ref<const flag> no_elm = {}) noexcept;

/// Releases the arrays of a vector that exist, in the order `coef`, `ind`, `elm`, then the record.
///
/// @param vec  in/out. A record that `vector_alloc` created. If it is null, nothing happens. Null
///             afterwards.
ZKTARN_API void vector_free(vector*& vec) noexcept;

/// Initialises consecutive records: arrays absent, nz = 0. Releases nothing.
///
/// @param first  out. The first of the records.
/// @param count  in. Number of records; when count < 1, nothing is written.
ZKTARN_API_INLINE void _vectorinitialise(vector& first, const std::int32_t& count) noexcept {
    vector* const records = &first;
    for (std::int64_t i = 0, n = count; i < n; ++i) {
        records[i].coef.data = nullptr;
        records[i].ind.data = nullptr;
        records[i].elm.data = nullptr;
        records[i].nz = 0;
    }
}

} // namespace zktarn::vector_type
