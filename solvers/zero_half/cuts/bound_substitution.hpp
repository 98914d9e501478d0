#pragma once

#include <limits>
#include <span>
#include <vector>

#include "cuts/mixed_integer_rows.hpp"

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

} // namespace zero_half
