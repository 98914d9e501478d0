#pragma once

#include "cuts/odd_sums.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// Gaussian elimination modulo 2. After a column is eliminated, no remaining row contains it; the
/// remaining rows are sums of rows of the system. Adds the violated ones of all sums that occur.
///
/// Columns are eliminated in the order of their values, the greatest first, and the pivot is a row
/// with little slack. The order and the pivot are perturbed at random, so each call finds other
/// sums. A row is a string of bits, one for each column and one for each row in the sum; the work
/// of a call is limited by leaving out the rows with the greatest slacks of a large system.
void find_by_elimination(const parity_system& system, const zktarn::random::rng_state& random,
                         const stop_predicate& should_stop, odd_sums& sums);

} // namespace zero_half
