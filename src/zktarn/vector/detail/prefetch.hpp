#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

/// Prefetching for loops over an index list, whose elements lie anywhere in memory.
///
/// Everything here is always_inline. GCC treats a function whose only effect is a prefetch as one
/// without effects, and deletes its calls before they are inlined.

namespace zktarn::vector_mod::detail {

/// How many list positions ahead of its use an element is prefetched: far enough for memory to
/// deliver it in time, near enough for the line to be still in the first cache.
inline constexpr std::int64_t lookahead = 64;

/// Prefetches element j, counted from 1, for reading.
template <class T>
[[gnu::always_inline]] inline void prefetch_read(const T* array, std::int64_t j) noexcept {
    __builtin_prefetch(array + (j - 1), 0);
}

/// Prefetches element j, counted from 1, for writing.
template <class T>
[[gnu::always_inline]] inline void prefetch_write(const T* array, std::int64_t j) noexcept {
    __builtin_prefetch(array + (j - 1), 1);
}

/// Capacities from which a walk prefetches: the first for short lists, the second for lists that
/// touch most cache lines. Below them a prefetch costs an instruction and gains nothing.
inline constexpr std::int64_t prefetch_sparse_from = std::int64_t{1} << 12;
inline constexpr std::int64_t prefetch_from = std::int64_t{1} << 14;

/// Whether a walk over a list of `nz` entries finds the elements of its arrays in the cache.
[[gnu::always_inline]] inline bool is_in_cache(std::int64_t capacity, std::int64_t nz) noexcept {
    return capacity < prefetch_sparse_from || (capacity < prefetch_from && nz > capacity / 16);
}

/// Stands for the prefetch of a walk over arrays that stay in the cache.
struct no_prefetch {};

/// Calls `visit(j)` for each entry of a list, in order, and before it `prefetch(j)` for the entry
/// `lookahead` positions on.
template <class Prefetch, class Visit>
[[gnu::always_inline]] inline void walk(const std::int32_t* list, std::int64_t count,
                                        Prefetch prefetch, Visit visit) noexcept {
    const std::int32_t* const end = list + count;
    if constexpr (!std::is_same_v<Prefetch, no_prefetch>) {
        if (count > lookahead) {
            do {
                prefetch(std::int64_t{list[lookahead]});
                visit(std::int64_t{*list});
                ++list;
            } while (list != end - lookahead);
        }
    }
    for (; list != end; ++list) {
        visit(std::int64_t{*list});
    }
}

/// Calls `prefetch(j)` for the first entries of a list: `walk` prefetches only entries `lookahead`
/// positions on, and so none of these.
template <class Prefetch>
[[gnu::always_inline]] inline void prefetch_first(const std::int32_t* list, std::int64_t count,
                                                  Prefetch prefetch) noexcept {
    const std::int32_t* const end = list + std::min(count, lookahead);
    for (; list != end; ++list) {
        prefetch(std::int64_t{*list});
    }
}

} // namespace zktarn::vector_mod::detail
