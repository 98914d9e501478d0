#include "cuts/bound_substitution.hpp"

#include <algorithm>

namespace zero_half {

std::vector<substitution> nearest_bounds(const model& program, const double* point) {
    const auto n = static_cast<std::size_t>(program.column_count());
    std::vector<substitution> bounds(n + 1);
    for (std::size_t j = 0; j < n; ++j) {
        const double lower = program.lower[j];
        const double upper = program.upper[j];
        substitution& nearest = bounds[j + 1];
        if (lower > -no_bound) {
            nearest = {lower, std::max(0.0, point[j] - lower), false};
        }
        if (upper < no_bound && upper - point[j] < nearest.distance) {
            nearest = {upper, std::max(0.0, upper - point[j]), true};
        }
    }
    return bounds;
}

} // namespace zero_half
