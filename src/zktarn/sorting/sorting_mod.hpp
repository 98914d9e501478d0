#pragma once

#include <cstdint>
#include <type_traits>

#include "zktarn/export.hpp"
#include "zktarn/function_ref.hpp"
#include "zktarn/sorting/detail/shell_sort.hpp"
#include "zktarn/types.hpp"

/// Sorting of whatever the caller can exchange.
///
/// The sort sees positions only. A procedure of the caller compares the elements at two positions,
/// exchanges them, with all that belongs to them, when they are out of order, and says whether it
/// did; ascending or descending, by which key and in how many parallel arrays is its business.
///
/// No state and no storage; the caller's procedure is called on the caller's thread.

namespace zktarn::sorting_mod {

/// `exchange(a, b)` for positions a < b of the range: exchanges the elements there and returns true
/// (nonzero) when they are out of order; leaves them and returns false otherwise. The positions are
/// temporaries.
using exchange_procedure = function_ref<flag(std::int32_t a, std::int32_t b)>;

/// Sorts the positions first..last, both inclusive, by calls of `exchange`.
///
/// @param first     in. Any position, as the caller counts.
/// @param last      in. Where it is not above `first`, nothing is called.
/// @param exchange  in. Called for positions first <= a < b <= last.
///
/// The passes go over the range with the gaps 1, 4, 13, 40, ... that are smaller than it, the
/// largest first: each position, in increasing order, is walked down by its gap until `exchange`
/// returns false or the range ends. So the sort ends for any procedure, and for a consistent one
/// the range is then in its order. Not stable: elements that are equal may change places.
ZKTARN_API void sort(const std::int32_t& first, const std::int32_t& last,
                     exchange_procedure exchange) noexcept;

/// The same with `exchange` inlined into the caller. Every callable is taken here; pass an
/// `exchange_procedure` for the procedure of the library. What `exchange` throws here leaves the
/// sort, with the range as it was then.
template <class Exchange>
    requires(std::is_invocable_r_v<flag, Exchange&, const std::int32_t&, const std::int32_t&> &&
             !std::is_same_v<std::remove_cvref_t<Exchange>, exchange_procedure>)
inline void sort(const std::int32_t& first, const std::int32_t& last, Exchange&& exchange) {
    detail::shell_sort(first, last, exchange);
}

} // namespace zktarn::sorting_mod
