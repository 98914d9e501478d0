#pragma once

#include <optional>

#include "input/model.hpp"

namespace zero_half {

/// The objective of the point with its integer columns rounded to the nearest integers. Nothing
/// when a column is farther than 1e-6 from an integer, or when the rounded point violates a bound
/// or a row: rows with integer coefficients over integer columns are checked exactly, other rows
/// over integer columns up to the rounding of their decimals to doubles, and rows with continuous
/// columns with a tolerance of 1e-9 relative to their right-hand side.
std::optional<double> integral_objective(const model& program, const double* point);

} // namespace zero_half
