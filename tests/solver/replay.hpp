#pragma once

#include <string>
#include <vector>

#include "run/tightener.hpp"

/// Derives every cut of a run again, in exact rational arithmetic, from the rows of the model.

namespace zero_half::testing {

struct verdict {
    std::size_t cuts = 0;
    /// What is wrong with a cut, one sentence each.
    std::vector<std::string> faults;
};

/// A row a * x <= b of the run is right when it follows from the rows before it: from a row of the
/// model, whose multiple it is, or which differs from its multiple by no more than the bounds
/// allow, the right-hand side rounded down; or from half the sum of earlier rows, with bounds
/// substituted, every coefficient and the right-hand side rounded down.
verdict replay(const model& from, const run_result& run);

} // namespace zero_half::testing
