#pragma once

#include <string>
#include <vector>

#include "input/model.hpp"
#include "run/run.hpp"

namespace zero_half::testing {

struct verdict {
    std::size_t cuts = 0;
    /// One sentence for each wrong row.
    std::vector<std::string> faults;
};

/// Derives every row a * x <= rhs of a run's pool again, in exact arithmetic, from its
/// origin:
///
/// 1. Sum the multiples of rows of the model and of earlier rows, and divide by the divisor.
/// 2. Substitute a bound of the column for the difference of each coefficient to that of the row.
/// 3. Round the right-hand side down.
///
/// The row must have integer coefficients, and only integer columns.
verdict replay(const model& program, const run_result& run);

} // namespace zero_half::testing
