#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Starts from each row and adds, a few times, the row after which the slack of the sum is least.
/// Finds sums with odd columns, which elimination misses. Each step looks at every row, so the cost
/// is quadratic in the number of rows: it is meant for small systems.
void find_by_greedy_search(const parity_system& system, const stop_predicate& should_stop,
                           odd_sums& sums);

} // namespace zero_half
