#pragma once

#include <vector>

#include "cuts/sparse_vector.hpp"
#include "input/model.hpp"

/// Rows with integer coefficients over integer columns: what zero-half cuts are made of.

namespace zero_half {

/// How a row was made.
struct origin {
    /// A row of the model times `scale`, or else a cut.
    int model_row = -1;
    double scale = 1.0;
    /// For a cut: the rows, counted from 0 in the pool, whose sum was halved, and the columns,
    /// counted from 1, whose upper bound was substituted; the others have their lower bound.
    std::vector<int> summed = {};
    std::vector<int> complemented = {};
};

/// coefficients * x <= right for every point of the model with integer columns; all integers.
struct integral_row {
    integral_row(sparse_vector a, double b, origin made);

    sparse_vector coefficients;
    /// The columns with odd coefficients.
    sparse_vector odd;
    double right;
    origin from;
};

/// Sums of integers up to this are exact.
inline constexpr double largest_exact = 1e15;
/// Beyond this, coefficients are taken for a numeric accident.
inline constexpr double largest_coefficient = 1e9;

/// The rows of a model that can be made integral; an equation as its upper bound alone. Columns are
/// counted from 1.
std::vector<integral_row> integral_rows_of(const model& from);

} // namespace zero_half
