#pragma once

#include <cstdint>
#include <cstring>

#include "zktarn/vector/vector_type.hpp"

// The index list: search and append. Not part of the interface.

namespace zktarn::vector_mod {

using vector_type::vector;

namespace detail {

/// Whether j is among `count` entries, a multiple of 8. Compares 8 entries at once, which compilers
/// turn into vector instructions of 16 or 32 bytes.
template <std::int64_t count>
[[gnu::always_inline]] inline bool is_among(const std::int32_t* entries, std::int32_t j) noexcept {
    static_assert(count % 8 == 0);
    using lanes = std::int32_t __attribute__((vector_size(32)));
    lanes hits = {};
    for (std::int64_t i = 0; i < count; i += 8) {
        lanes next;
        std::memcpy(&next, entries + i, sizeof next);
        hits |= next == j;
    }
    std::int64_t words[4];
    std::memcpy(words, &hits, sizeof hits);
    return (words[0] | words[1] | words[2] | words[3]) != 0;
}

/// Whether j is among the n entries of `list`.
[[gnu::always_inline]] inline bool is_listed(const std::int32_t* list, std::int64_t n,
                                             std::int32_t j) noexcept {
    std::int64_t k = 0;
    for (; n - k >= 64; k += 64) {
        if (is_among<64>(list + k, j)) {
            return true;
        }
    }
    for (; n - k >= 8; k += 8) {
        if (is_among<8>(list + k, j)) {
            return true;
        }
    }
    for (; k < n; ++k) {
        if (list[k] == j) {
            return true;
        }
    }
    return false;
}

/// Lists j after the last entry.
inline void append(vector& v, std::int32_t j) noexcept {
    v.ind(std::int64_t{v.nz} + 1) = j;
    v.nz += 1;
}

} // namespace detail

} // namespace zktarn::vector_mod
