#pragma once

#include <functional>

#include <ClpSimplex.hpp>

namespace zero_half {

/// Solves a large program from the beginning: Clp's crash method (`Idiot`) finds a nearly optimal
/// point in passes over the entries, and the primal simplex method continues from it. The dual
/// simplex method from the slack basis takes time that grows almost with the square of the rows.
///
/// The crash method calls `should_stop` after each pass, the simplex method calls the event handler
/// of the program. After `should_stop` returned true, the status of the program has no meaning.
void solve_by_crash(ClpSimplex& lp, const std::function<bool()>& should_stop);

} // namespace zero_half
