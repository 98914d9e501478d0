#pragma once

#include <cstdint>
#include <vector>

namespace zero_half {

/// How a row was derived: from a row of the model, or as a cut from rows derived before it.
struct row_origin {
    /// A row of the model, which was multiplied by `scale`; -1 for a cut.
    int model_row = -1;
    double scale = 1.0;
    /// For a cut: the rows of the pool, counted from 0, whose sum was halved. A row that occurs
    /// twice was not halved.
    std::vector<int> summed = {};
    /// For a cut: the columns, counted from 1, whose upper bound was substituted. For the other
    /// columns it was the lower bound.
    std::vector<int> complemented = {};
};

/// The inequality coefficients * x <= rhs, and how it was derived.
struct cut {
    /// Counted from 1, as are the indices of the library's vectors.
    std::vector<std::int32_t> columns;
    std::vector<double> coefficients;
    double rhs = 0.0;
    row_origin origin;
    /// By how much the point that was separated violates the cut, and the Euclidean norm of the
    /// coefficients.
    double violation = 0.0;
    double norm = 0.0;

    /// The Euclidean distance between the point and the cut's hyperplane.
    double efficacy() const { return violation / norm; }
};

} // namespace zero_half
