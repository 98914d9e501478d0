#include "cuts/variable_bounds.hpp"

#include "cuts/rounding.hpp"

namespace zero_half {

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
