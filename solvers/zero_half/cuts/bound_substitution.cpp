#include "cuts/bound_substitution.hpp"

#include <algorithm>

namespace zero_half {

std::vector<substitution> nearest_bounds(const mixed_integer_rows& model, const double* point) {
    const std::size_t n = model.lower.size();
    std::vector<substitution> nearest(n + 1);
    for (std::size_t j = 0; j < n; ++j) {
        substitution& best = nearest[j + 1];
        if (model.lower[j] > -no_bound) {
            best = {model.lower[j], std::max(0.0, point[j] - model.lower[j]), false};
        }
        if (model.upper[j] < no_bound && model.upper[j] - point[j] < best.distance) {
            best = {model.upper[j], std::max(0.0, model.upper[j] - point[j]), true};
        }
    }
    return nearest;
}

substitution other_bound(const mixed_integer_rows& model, std::int32_t column,
                         const substitution& nearest) {
    const auto j = static_cast<std::size_t>(column) - 1;
    const double range = model.upper[j] - model.lower[j];
    if (!nearest.is_bounded() || model.lower[j] <= -no_bound || model.upper[j] >= no_bound) {
        return {};
    }
    return {nearest.is_upper ? model.lower[j] : model.upper[j],
            std::max(0.0, range - nearest.distance), !nearest.is_upper};
}

} // namespace zero_half
