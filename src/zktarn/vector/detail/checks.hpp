#pragma once

/// The checks of whole vectors in a checked build (ZKTARN_CHECKED). Any other build has none of
/// them.

#ifdef ZKTARN_CHECKED

#include <cstdint>

#include "zktarn/vector/vector_type.hpp"

namespace zktarn::vector_mod::detail {

using vector_type::vector;

/// The capacity: the length of the first array that exists; 0 when none exists.
inline std::int64_t capacity(const vector& v) noexcept {
    return v.coef.present()  ? v.coef.extent[0]
           : v.ind.present() ? v.ind.extent[0]
           : v.elm.present() ? v.elm.extent[0]
                             : 0;
}

inline bool is_element(const vector& v, std::int64_t j) noexcept {
    return j >= 1 && j <= capacity(v);
}

/// Whether the arrays that exist are of one length.
inline bool has_one_capacity(const vector& v) noexcept {
    const std::int64_t n = capacity(v);
    return (!v.ind.present() || v.ind.extent[0] == n) && (!v.elm.present() || v.elm.extent[0] == n);
}

/// Whether there is a list of nz indices, all of them elements of `owner`.
inline bool lists_elements(const vector& v, const vector& owner) noexcept {
    if (v.nz < 1) {
        return true;
    }
    if (!v.ind.present() || v.nz > v.ind.extent[0]) {
        return false;
    }
    for (std::int64_t k = 0; k < v.nz; ++k) {
        if (!is_element(owner, v.ind.data[k])) {
            return false;
        }
    }
    return true;
}

/// A hash of an index. Sums of hashes identify sets of indices: they agree by chance once in 2^64
/// cases.
inline std::uint64_t index_hash(std::int64_t j) noexcept {
    auto bits = static_cast<std::uint64_t>(j) * 0x9E3779B97F4A7C15U;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31);
}

/// Whether all marks are 0 or 1, and each index with mark 1 is listed exactly once.
inline bool lists_every_mark(const vector& v) noexcept {
    std::uint64_t difference = 0;
    for (std::int64_t j = 1; j <= v.elm.extent[0]; ++j) {
        const std::int32_t mark = v.elm.data[j - 1];
        if (mark != 0 && mark != 1) {
            return false;
        }
        difference += mark == 1 ? index_hash(j) : 0;
    }
    for (std::int64_t k = 0; k < v.nz; ++k) {
        const std::int32_t j = v.ind.data[k];
        difference -= v.elm.data[j - 1] == 1 ? index_hash(j) : 0;
    }
    return difference == 0;
}

/// Whether every listed index has mark 1.
inline bool marks_every_entry(const vector& v) noexcept {
    for (std::int64_t k = 0; k < v.nz; ++k) {
        if (v.elm.data[v.ind.data[k] - 1] != 1) {
            return false;
        }
    }
    return true;
}

/// Arrays of one length, a list of elements, and in marks mode no member that is not listed. An
/// entry without a mark is allowed: it counts as 0.0.
inline bool is_readable(const vector& v) noexcept {
    return has_one_capacity(v) && lists_elements(v, v) &&
           (!v.elm.present() || !v.ind.present() || lists_every_mark(v));
}

/// `is_readable`, and every entry has a mark.
inline bool is_sound(const vector& v) noexcept {
    return is_readable(v) && (!v.elm.present() || !v.ind.present() || marks_every_entry(v));
}

/// Whether j is a member.
inline bool has_member(const vector& v, std::int32_t j) noexcept {
    if (v.elm.present()) {
        return v.elm.data[j - 1] >= 1;
    }
    for (std::int64_t k = 0; k < v.nz; ++k) {
        if (v.ind.data[k] == j) {
            return true;
        }
    }
    return false;
}

/// Whether the list of x has room for the indices that only y lists. A vector with marks and
/// without a list has no room. A dense vector needs none.
inline bool has_room_for(const vector& x, const vector& y) noexcept {
    if (!x.ind.present()) {
        return !x.elm.present() || y.nz < 1;
    }
    std::int64_t room = x.ind.extent[0] - x.nz;
    for (std::int64_t k = 0; k < y.nz; ++k) {
        room -= has_member(x, y.ind.data[k]) ? 0 : 1;
    }
    return room >= 0;
}

} // namespace zktarn::vector_mod::detail

#endif
