#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "cuts/mixed_integer_rows.hpp"

/// The bounds of columns: those that a substitution uses, and those that rows of the model state.

namespace zero_half {

/// A column expressed by its distance to one of its bounds: x = bound + distance, or, for an upper
/// bound, x = bound - distance. A column without bounds has an infinite distance.
struct substitution {
    double bound = 0.0;
    double distance = std::numeric_limits<double>::infinity();
    bool is_upper = false;

    bool is_bounded() const { return distance < std::numeric_limits<double>::infinity(); }
};

/// For each column, counted from 1, the substitution of the bound that is nearest to the point.
std::vector<substitution> nearest_bounds(const mixed_integer_rows& model, const double* point);

/// The substitution of the column's other bound; its distance is infinite if that bound does not
/// exist.
substitution other_bound(const mixed_integer_rows& model, std::int32_t column,
                         const substitution& nearest);

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
