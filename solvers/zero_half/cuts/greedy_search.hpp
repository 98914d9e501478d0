#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Starts from each row and repeats a few times: adds the row that gives the sum with the least
/// slack. Finds sums with odd columns, which elimination misses. Each step tests every row, so the
/// cost is quadratic in the number of rows: use it for small systems.
void find_by_greedy_search(const parity_system& system, const stop_predicate& should_stop,
                           odd_sums& sums);

} // namespace zero_half
