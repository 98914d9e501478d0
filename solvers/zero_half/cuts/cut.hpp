#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zero_half {

/// How a row of the pool, or a cut, follows from the model. The terms are added up and the sum is
/// divided by `divisor`. Every coefficient is then moved to the integer in the row: down at the
/// cost of the column's lower bound, up at the cost of its upper bound. The right-hand side is
/// rounded down.
struct row_origin {
    struct term {
        /// A row of the model, counted from 0, or of the pool before this one.
        std::int32_t row;
        bool is_model_row;
        /// Positive for the upper side of a row of the model, negative for its lower side.
        double multiplier;
    };
    std::vector<term> terms;
    double divisor = 1.0;
};

/// An inequality coefficients * x <= rhs that is violated at the separated point.
struct cut {
    /// Counted from 1, as are the indices of the library's vectors.
    std::vector<std::int32_t> columns;
    std::vector<double> coefficients;
    double rhs = 0.0;
    row_origin origin = {};
    /// At the separated point.
    double violation = 0.0;
    /// The Euclidean norm of the coefficients.
    double norm = 0.0;
    /// Its index in the pool; empty for a new cut.
    std::optional<std::size_t> pool_row = {};

    /// The Euclidean distance between the point and the cut's hyperplane.
    double efficacy() const { return violation / norm; }
};

} // namespace zero_half
