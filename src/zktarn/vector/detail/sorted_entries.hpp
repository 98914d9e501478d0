#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/vector_type.hpp"

namespace zktarn::vector_mod::detail {

/// The binary logarithm of the block size with which `capacity` indices make at most 1024 blocks.
[[gnu::always_inline]] inline int block_shift(std::int64_t capacity) noexcept {
    int shift = 0;
    for (; (capacity - 1) >> shift >= 1024; ++shift) {
    }
    return shift;
}

/// The entries of a list, sorted into blocks of 2^shift indices.
struct sorted_entries {
    struct entry {
        std::int32_t j, position; // the position in the list, counted from 0
    };
    entry* all;
    std::int64_t nz;
    std::array<std::int32_t, 1025> ends{}; // of the blocks, once all entries are sorted

    /// @param room  two numbers for each entry.
    [[gnu::always_inline]] sorted_entries(std::int32_t* room, const vector_type::vector& v,
                                          int shift) noexcept
        : all(reinterpret_cast<entry*>(room)), nz(v.nz) {
        for (std::int64_t k = 0; k < nz; ++k) {
            ends[(static_cast<std::size_t>(v.ind(k + 1) - 1) >> shift) + 1] += 1;
        }
        std::partial_sum(ends.begin(), ends.end(), ends.begin());
        for (std::int32_t k = 0; k < nz; ++k) {
            all[ends[static_cast<std::size_t>(v.ind(k + 1) - 1) >> shift]++] = {v.ind(k + 1), k};
        }
    }
    std::int64_t begin(std::size_t b) const noexcept { return b == 0 ? 0 : ends[b - 1]; }
    std::int64_t ahead(std::int64_t k) const noexcept {
        return all[std::min(k + lookahead, nz - 1)].j;
    }
};

} // namespace zktarn::vector_mod::detail
