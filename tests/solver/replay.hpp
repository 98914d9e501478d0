#pragma once

#include <string>
#include <vector>

#include "input/model.hpp"
#include "run/result.hpp"

namespace zero_half::testing {

struct verdict {
    std::size_t cuts = 0;
    /// One sentence for each wrong row.
    std::vector<std::string> faults;
};

/// Derives every row of a run's pool again, in exact rational arithmetic. A row a * x <= rhs is
/// right when it follows from its origin: the multiples of rows of the model and of earlier rows
/// are added up and divided; every coefficient is moved to the one of the row, which costs a bound
/// of its column; the right-hand side is rounded down. The row must have integer coefficients, in
/// integer columns only.
verdict replay(const model& program, const run_result& run);

} // namespace zero_half::testing
