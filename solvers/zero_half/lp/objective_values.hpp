#pragma once

#include "input/model.hpp"

namespace zero_half {

/// The values that the objective takes at integer points. When only integer columns have costs,
/// these are the sums of a constant and the multiples of a step: the costs scaled to integers by
/// `find_scalar_integral` have a greatest common divisor, found by `xgcd_r8`, and the step is this
/// divisor over the scalar. Otherwise the objective takes any value.
class objective_values {
public:
    /// Costs one pass over the costs.
    explicit objective_values(const model& program);

    /// The least of the values that is not below `bound`, or below it by at most a millionth of a
    /// step and a relative 1e-9: a bound this close to a value may be the value itself. The bound
    /// itself when the objective takes any value, and when a relative 1e-9 is a tenth of a step.
    double round_up(double bound) const;

    /// The step; 0 when the objective takes any value.
    double step() const { return divisor_ / scale_; }

private:
    double constant_;
    double divisor_ = 0.0;
    double scale_ = 1.0;
};

} // namespace zero_half
