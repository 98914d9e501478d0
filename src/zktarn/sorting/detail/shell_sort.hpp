#pragma once

#include <cstdint>
#include <utility>

#include "zktarn/types.hpp"

// The sort itself, inlined into its callers. No part of the interface.

namespace zktarn::sorting_mod {

namespace detail {

/// Source: Shell, A high-speed sorting procedure (1959), with the gaps of Knuth: 1, 4, 13, 40, ...
///
/// Positions are 64 bits wide, so that a range may span all of 32.
template <class Exchange>
[[gnu::always_inline]] inline void shell_sort(std::int64_t first, std::int64_t last,
                                              Exchange& exchange) {
    const std::int64_t distance = last - first;
    std::int64_t beyond = 4;
    while (distance >= beyond) {
        beyond = 3 * beyond + 1;
    }
    for (std::int64_t gap = beyond / 3; gap >= 1; gap /= 3) {
        // Empty where the gap is larger than the distance.
        for (std::int64_t end = first + gap; end <= last; ++end) {
            for (std::int64_t a = end - gap; a >= first; a -= gap) {
                // Made anew for each call; whoever writes to them writes to nothing else.
                auto lower = static_cast<std::int32_t>(a);
                auto upper = static_cast<std::int32_t>(a + gap);
                const flag exchanged = exchange(std::as_const(lower), std::as_const(upper));
                if (exchanged == 0) {
                    break;
                }
            }
        }
    }
}

} // namespace detail

} // namespace zktarn::sorting_mod
