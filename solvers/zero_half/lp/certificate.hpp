#pragma once

#include <functional>
#include <vector>

#include <ClpSimplex.hpp>

#include "lp/safe_bound.hpp"

namespace zero_half {

/// Proofs in exact rational arithmetic that a linear program has no optimum. The simplex method
/// proposes a ray; it is tried as it is and rounded to multiples of a common denominator. If both
/// prove nothing, the same is tried with the ray's entries in units of 1 / c, where c is the
/// largest coefficient of the row or column of the entry.
///
/// The cost is that of one pass over the coefficients in rational arithmetic for each attempt. A
/// pass calls `should_stop` for every row or column and ends without a proof after it returned
/// true.

/// Whether no point satisfies all rows and bounds, even if it may exceed each side of a row by a
/// relative 1e-9: the decimal numbers of a file are not exact as doubles. Proven by a row or column
/// with crossed bounds, by a row that the bounds of its columns contradict, or by Farkas
/// multipliers: a sum of rows that the bounds contradict. `columns` are bounds that rows of the
/// program imply, which keep small the error of a multiplier that no double is. False when the ray
/// of the last solve proves nothing.
bool is_proven_infeasible(const ClpSimplex& lp, const std::vector<safe_bound::range>& columns,
                          const std::function<bool()>& should_stop);

/// Whether there is a direction in which the objective falls and no row or bound is ever reached:
/// then the program is unbounded if it has any feasible point. False when the ray of the last solve
/// proves nothing.
bool has_proven_ray(const ClpSimplex& lp, const std::function<bool()>& should_stop);

} // namespace zero_half
