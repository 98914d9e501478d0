#pragma once

#include <vector>

#include "cuts/vectors.hpp"
#include "input/model.hpp"
#include "lp/cut.hpp"

namespace zero_half {

/// A row coefficients * x <= rhs with integer coefficients and right-hand side, over integer
/// columns counted from 1. Every point of the model with integer values in these columns satisfies
/// it.
struct integral_row {
    integral_row(zktarn::owned_vector coefficients, double rhs, row_origin origin);

    zktarn::owned_vector coefficients;
    /// The columns with odd coefficients.
    zktarn::owned_vector odd;
    double rhs;
    row_origin origin;
};

/// Sums of integers up to this magnitude are exact.
inline constexpr double largest_exact = 1e15;
/// Larger coefficients are taken for a numerical accident.
inline constexpr double largest_coefficient = 1e9;

/// The rows of the model that can be scaled to integers. A range gives two rows, an equation only
/// its upper side: modulo 2 the lower side is the same row.
std::vector<integral_row> integral_rows_of(const model& program);

/// A cut as a row over the given number of columns.
integral_row integral_row_of(const cut& inequality, std::int32_t columns);

} // namespace zero_half
