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
/// right when it follows from the rows before it in one of two ways:
///
/// - from a row of the model, multiplied by the scale. Where a coefficient was rounded, the bounds
///   of the column limit the difference. The right-hand side is rounded down.
/// - from half the sum of earlier rows, with bounds substituted and all coefficients and the
///   right-hand side rounded down; possibly divided by an integer and rounded down once more.
verdict replay(const model& program, const run_result& run);

} // namespace zero_half::testing
