#pragma once

#include <cstdint>
#include <functional>

/// Literal reference of `sort`.

namespace zktarn::reference {

inline void sort(std::int64_t first, std::int64_t last,
                 const std::function<bool(std::int64_t, std::int64_t)>& exchange) {
    if (last <= first) {
        return;
    }
    const std::int64_t n = last - first + 1;
    std::int64_t h = 1;
    do {
        h = 3 * h + 1;
    } while (n >= h);
    for (;;) {
        const std::int64_t gap = h / 3;
        if (gap < n) {
            for (std::int64_t j = first + gap; j <= last; ++j) {
                std::int64_t b = j;
                std::int64_t a = j - gap;
                while (exchange(a, b)) {
                    if (a - gap < first) {
                        break;
                    }
                    b = a;
                    a = a - gap;
                }
            }
        }
        if (h < 9) {
            return;
        }
        h = gap;
    }
}

} // namespace zktarn::reference
