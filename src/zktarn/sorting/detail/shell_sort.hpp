#pragma once

#include <cstdint>

#include "zktarn/types.hpp"

// The sort itself, inlined into its callers. Not part of the interface.

namespace zktarn::sorting_mod {

namespace detail {

/// Shell sort of first..last with the gaps 1, 4, 13, 40, ... below last - first + 1.
///
/// Positions are computed in 64 bits: a range may span all 32-bit positions, and `end` and `a`
/// leave it at the two ends.
template <class Exchange>
[[gnu::always_inline]] inline void shell_sort(std::int64_t first, std::int64_t last,
                                              Exchange& exchange) {
    const std::int64_t distance = last - first;
    std::int64_t next_gap = 4;
    while (distance >= next_gap) {
        next_gap = 3 * next_gap + 1;
    }
    for (std::int64_t gap = next_gap / 3; gap >= 1; gap /= 3) {
        // No position qualifies when the gap exceeds the distance.
        for (std::int64_t end = first + gap; end <= last; ++end) {
            for (std::int64_t a = end - gap; a >= first; a -= gap) {
                const flag exchanged =
                    exchange(static_cast<std::int32_t>(a), static_cast<std::int32_t>(a + gap));
                if (exchanged == 0) {
                    break;
                }
            }
        }
    }
}

} // namespace detail

} // namespace zktarn::sorting_mod
