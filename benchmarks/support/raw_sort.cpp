#include "support/raw_sort.hpp"

#include <cstddef>
#include <utility>

namespace zktarn::bench {

void raw_sort(std::vector<double>& key_store, std::vector<std::int32_t>& companion_store) {
    double* const keys = key_store.data();
    std::int32_t* const companions = companion_store.data();
    const auto n = static_cast<std::int32_t>(key_store.size());
    std::int32_t gap = 1;
    while (3 * gap + 1 < n) {
        gap = 3 * gap + 1;
    }
    for (; gap >= 1; gap /= 3) {
        for (std::int32_t end = gap; end < n; ++end) {
            for (std::int32_t a = end - gap; a >= 0 && keys[a] > keys[a + gap]; a -= gap) {
                std::swap(keys[a], keys[a + gap]);
                std::swap(companions[a], companions[a + gap]);
            }
        }
    }
}

void raw_sort_by(std::int64_t (*exchange)(void*, std::int32_t, std::int32_t), void* context,
                 std::int32_t first, std::int32_t last) {
    const std::int32_t n = last - first + 1;
    std::int32_t gap = 1;
    while (3 * gap + 1 < n) {
        gap = 3 * gap + 1;
    }
    for (; gap >= 1; gap /= 3) {
        for (std::int32_t end = first + gap; end <= last; ++end) {
            for (std::int32_t a = end - gap; a >= first; a -= gap) {
                if (exchange(context, a, a + gap) == 0) {
                    break;
                }
            }
        }
    }
}

} // namespace zktarn::bench
