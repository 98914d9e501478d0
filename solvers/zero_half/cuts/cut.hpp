#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "cuts/row_pool.hpp"

namespace zero_half {

/// The inequality coefficients * x <= rhs, and how it was derived.
struct cut {
    /// Counted from 1, as are the indices of the library's vectors.
    std::vector<std::int32_t> columns;
    std::vector<double> coefficients;
    double rhs = 0.0;
    row_origin origin = {};
    /// The violation of the cut at the separated point, and the Euclidean norm of the coefficients.
    double violation = 0.0;
    double norm = 0.0;
    /// Its index in the pool; empty for a new cut.
    std::optional<std::size_t> pool_row = {};

    /// The Euclidean distance between the point and the cut's hyperplane.
    double efficacy() const { return violation / norm; }
};

} // namespace zero_half
