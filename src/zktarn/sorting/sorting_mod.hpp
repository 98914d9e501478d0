#pragma once

#include <cstdint>
#include <type_traits>

#include "zktarn/export.hpp"
#include "zktarn/function_ref.hpp"
#include "zktarn/sorting/detail/shell_sort.hpp"
#include "zktarn/types.hpp"

/// Sorting of the caller's data, which the library never reads.
///
/// `sort` chooses pairs of positions. A procedure of the caller compares the elements at the two
/// positions, exchanges them if they are out of order, and reports whether it did. That procedure
/// decides the order (ascending or descending), the key, and which parallel arrays move together.
///
/// `sort` has no state and allocates nothing. It calls the procedure on the caller's thread.

namespace zktarn::sorting_mod {

/// `exchange(a, b)`, called for positions a < b of the range:
///
///     the elements at a and b    it                    returns
///     are out of order           exchanges them        true (nonzero)
///     are in order or equal      leaves them           false
///
/// The positions are copies; changing them has no effect on the sort.
using exchange_procedure = function_ref<flag(std::int32_t a, std::int32_t b)>;

/// Sorts the positions first..last, both inclusive.
///
/// @param first     in. Any position, in the caller's numbering.
/// @param last      in. If last <= first, `exchange` is not called.
/// @param exchange  in. Called for positions first <= a < b <= last.
///
/// Let n = last - first + 1. One pass for each gap 1, 4, 13, 40, ... (3 gap + 1) below n, the
/// largest first. A pass takes the positions from first + gap to last in increasing order. From
/// each it moves down in steps of the gap, exchanging, until `exchange` returns false or the range
/// ends.
///
/// Ends for every `exchange`. If its order is consistent, the range is sorted afterwards. Not
/// stable: equal elements may change places.
///
/// Source: Shell, A high-speed sorting procedure, CACM 2 (1959), with the gaps of Knuth, The Art of
/// Computer Programming 3, section 5.2.1. Cost: O(n^1.5) calls of a consistent `exchange`.
ZKTARN_API void sort(const std::int32_t& first, const std::int32_t& last,
                     exchange_procedure exchange) noexcept;

/// The same, with `exchange` inlined into the caller. Takes every callable except an
/// `exchange_procedure`, which selects the procedure above. An exception that `exchange` throws
/// leaves the sort, and the range keeps its order of that moment.
template <class Exchange>
    requires(std::is_invocable_r_v<flag, Exchange&, std::int32_t, std::int32_t> &&
             !std::is_same_v<std::remove_cvref_t<Exchange>, exchange_procedure>)
inline void sort(const std::int32_t& first, const std::int32_t& last, Exchange&& exchange) {
    detail::shell_sort(first, last, exchange);
}

} // namespace zktarn::sorting_mod
