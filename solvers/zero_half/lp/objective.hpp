#pragma once

#include <optional>

#include "input/model.hpp"

/// The objective at integer points.

namespace zero_half {

/// The values that the objective takes at integer points. When only integer columns have costs,
/// these are the sums of a constant and the multiples of a step: the costs scaled to integers by
/// `find_scalar_integral` have a greatest common divisor, found by `xgcd_r8`, and the step is this
/// divisor over the scalar. Otherwise the objective takes any value.
class objective_values {
public:
    /// Costs one pass over the costs.
    explicit objective_values(const model& program);

    /// The least value that is not below `bound`. A value that is lower by at most a millionth of a
    /// step plus a relative 1e-9 counts as well, because the bound may be this value with an error.
    /// Returns the bound itself when the objective takes any value, and when that tolerance is more
    /// than a tenth of a step.
    double round_up(double bound) const;

    /// The step; 0 when the objective takes any value.
    double step() const { return divisor_ / scale_; }

private:
    double constant_;
    double divisor_ = 0.0;
    double scale_ = 1.0;
};

/// The objective of the point with its integer columns rounded to the nearest integers. Nothing
/// when a column is farther than 1e-6 from an integer, or when the rounded point violates a bound
/// or a row: rows with integer coefficients over integer columns are checked exactly, other rows
/// over integer columns up to the rounding of their decimals to doubles, and rows with continuous
/// columns with a tolerance of 1e-9 relative to their right-hand side.
std::optional<double> integral_objective(const model& program, const double* point);

} // namespace zero_half
