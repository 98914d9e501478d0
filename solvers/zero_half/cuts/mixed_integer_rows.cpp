#include "cuts/mixed_integer_rows.hpp"

#include <algorithm>

#include "cuts/integers.hpp"

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

namespace {

/// The position, 0 or 1, of the only continuous one of two columns; 2 if there is not exactly one.
std::size_t place_of_continuous(const mixed_integer_rows& model, std::span<const int> columns) {
    const bool first = model.is_integer[static_cast<std::size_t>(columns[0])] == 0;
    const bool second = model.is_integer[static_cast<std::size_t>(columns[1])] == 0;
    return first == second ? 2 : first ? 0 : 1;
}

} // namespace

std::vector<std::vector<variable_bound>> variable_bounds_of(const mixed_integer_rows& model) {
    std::vector<std::vector<variable_bound>> found(model.lower.size());
    for (std::size_t i = 0; i < model.row_count(); ++i) {
        const auto columns = model.columns_of(i);
        const auto values = model.values_of(i);
        const std::size_t own = columns.size() == 2 ? place_of_continuous(model, columns) : 2;
        const auto scale = own < 2 ? integral_scale(values) : std::nullopt;
        if (!scale) {
            continue;
        }
        for (const double sign : {1.0, -1.0}) {
            if (model.has_side(i, sign)) {
                const double multiplier = sign * *scale;
                found[static_cast<std::size_t>(columns[own])].push_back(
                    {static_cast<std::int32_t>(i), multiplier,
                     nearest_integer(values[own] * multiplier),
                     nearest_integer(values[1 - own] * multiplier), columns[1 - own]});
            }
        }
    }
    return found;
}

} // namespace zero_half
