#pragma once

#include "input/model.hpp"
#include "run/options.hpp"
#include "run/result.hpp"

namespace zero_half {

/// Tightens the relaxation of a model by cuts, round after round, and reports each round to the
/// host. Throws `error` when the relaxation is infeasible, unbounded or cannot be solved.
run_result tighten(const model& program, const run_options& options);

} // namespace zero_half
