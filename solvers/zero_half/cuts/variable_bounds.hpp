#pragma once

#include <cstdint>
#include <vector>

#include "cuts/mixed_integer_rows.hpp"

namespace zero_half {

/// One side of a row of the model with one continuous column y and one integer column x:
/// own * y + other * x <= rhs. It bounds y from above if `own` is positive, else from below.
struct variable_bound {
    std::int32_t row;
    /// The coefficients are those of the row times `multiplier`, made integers. A negative
    /// multiplier stands for the lower side.
    double multiplier;
    double own;
    double other;
    std::int32_t other_column;
};

/// For each column, counted from 0, its variable bounds.
std::vector<std::vector<variable_bound>> variable_bounds_of(const mixed_integer_rows& model);

} // namespace zero_half
