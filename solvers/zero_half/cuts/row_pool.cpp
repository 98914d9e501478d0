#include "cuts/row_pool.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "cuts/integers.hpp"

namespace zero_half {

void row_pool::add(std::span<const std::int32_t> columns, std::span<const double> coefficients,
                   double rhs, row_origin origin) {
    columns_.insert(columns_.end(), columns.begin(), columns.end());
    coefficients_.insert(coefficients_.end(), coefficients.begin(), coefficients.end());
    for (std::size_t k = 0; k < columns.size(); ++k) {
        if (is_odd_integer(coefficients[k])) {
            odd_.push_back(columns[k]);
        }
    }
    starts_.push_back(columns_.size());
    odd_starts_.push_back(odd_.size());
    rhs_.push_back(rhs);
    origins_.push_back(std::move(origin));
}

void row_pool::truncate(std::size_t count) {
    starts_.resize(count + 1);
    odd_starts_.resize(count + 1);
    columns_.resize(starts_.back());
    coefficients_.resize(starts_.back());
    odd_.resize(odd_starts_.back());
    rhs_.resize(count);
    origins_.resize(count);
}

double row_pool::slack(std::size_t row, const double* point) const {
    double slack = rhs_[row];
    for (std::size_t k = starts_[row]; k < starts_[row + 1]; ++k) {
        slack -= coefficients_[k] * point[columns_[k] - 1];
    }
    return slack;
}

namespace {

/// A sum of rows of the model whose coefficients are integers up to rounding errors. Columns are
/// counted from 0.
struct scaled_sum {
    std::map<std::int32_t, double> coefficients;
    std::vector<row_origin::term> terms;
};

/// A coefficient as an integer, and the remainder that the integer omits.
struct split_coefficient {
    double whole = 0.0;
    double rest = 0.0;
};

/// The sum of the terms in the model's own numbers.
struct exact_sum {
    std::map<std::int32_t, split_coefficient> coefficients;
    double rhs = 0.0;
    /// By how much rounding errors may have moved the right-hand side.
    double error = 0.0;
};

constexpr double unit_roundoff = std::numeric_limits<double>::epsilon();

bool is_whole(double value) {
    return std::trunc(value) == value;
}

exact_sum sum_of(const mixed_integer_rows& model, const std::vector<row_origin::term>& terms) {
    exact_sum sum;
    for (const row_origin::term& term : terms) {
        const auto row = static_cast<std::size_t>(term.row);
        const auto columns = model.columns_of(row);
        const auto values = model.values_of(row);
        for (std::size_t k = 0; k < columns.size(); ++k) {
            const double whole = nearest_integer(values[k] * term.multiplier);
            split_coefficient& coefficient = sum.coefficients[columns[k]];
            coefficient.whole += whole;
            // The rounded product would hide a remainder.
            coefficient.rest += std::fma(values[k], term.multiplier, -whole);
        }
        const double side = model.side(row, term.multiplier);
        const double added = side * term.multiplier;
        sum.rhs += added;
        if (!is_whole(side) || !is_whole(term.multiplier)) {
            sum.error += 4.0 * unit_roundoff * std::fabs(added);
        }
    }
    return sum;
}

/// The maximum of `difference` times the column over its range; infinite where the bound that gives
/// it is missing.
double most_over_bounds(const mixed_integer_rows& model, std::int32_t column, double difference) {
    const auto j = static_cast<std::size_t>(column);
    const double bound = difference > 0.0 ? model.upper[j] : model.lower[j];
    if (difference == 0.0) {
        return 0.0;
    }
    return std::fabs(bound) >= no_bound ? std::numeric_limits<double>::infinity()
                                        : difference * bound;
}

/// The greatest common divisor; nothing if a value is too large.
std::optional<double> common_divisor_of(const std::vector<double>& values) {
    double divisor = 0.0;
    for (const double each : values) {
        if (std::fabs(each) > largest_coefficient) {
            return std::nullopt;
        }
        divisor = common_divisor(divisor, each);
    }
    return divisor;
}

/// The sum without its continuous columns, with integer coefficients. The right-hand side is not
/// yet rounded, and may be off by `error`.
struct unrounded_row {
    std::vector<std::int32_t> columns;
    std::vector<double> values;
    double rhs = 0.0;
    double error = 0.0;
};

/// Changes each coefficient to its integer, and that of a continuous column to 0. The maximum of
/// each difference over the range of its column is added to the right-hand side.
unrounded_row move_to_integers(const mixed_integer_rows& model, const scaled_sum& scaled) {
    const exact_sum exact = sum_of(model, scaled.terms);
    unrounded_row made;
    made.rhs = exact.rhs;
    made.error = exact.error;
    for (const auto& [column, value] : exact.coefficients) {
        const bool is_integer = model.is_integer[static_cast<std::size_t>(column)] != 0;
        const auto place = scaled.coefficients.find(column);
        const double rounded =
            is_integer && place != scaled.coefficients.end() ? place->second : 0.0;
        const double moved = most_over_bounds(model, column, rounded - value.whole - value.rest);
        made.rhs += moved;
        made.error += is_whole(moved) ? 0.0 : 16.0 * unit_roundoff * std::fabs(moved);
        if (rounded != 0.0) {
            made.columns.push_back(column + 1);
            made.values.push_back(rounded);
        }
    }
    return made;
}

/// Makes the coefficients integers, eliminates continuous columns by constant bounds, divides by
/// the greatest common divisor, rounds the right-hand side down, and adds the row to the pool. Adds
/// nothing when a column needs a bound that it does not have.
void add_to_pool(const mixed_integer_rows& model, const scaled_sum& scaled, row_pool& pool) {
    constexpr double largest_error = 0.01;
    unrounded_row row = move_to_integers(model, scaled);
    const double error = std::max(integrality_tolerance, row.error);
    const std::optional<double> divisor = common_divisor_of(row.values);
    if (row.columns.empty() || !divisor || !(std::fabs(row.rhs) <= largest_exact) ||
        error > largest_error) {
        return;
    }
    for (double& each : row.values) {
        each /= *divisor;
    }
    pool.add(row.columns, row.values, floor_of(floor_of(row.rhs, error) / *divisor, 0.0),
             {scaled.terms, *divisor});
}

/// Multiplies the sum so that all numbers stay integers, and adds the multiple of the bound that
/// eliminates the column.
void substitute(std::int32_t column, const variable_bound& bound, scaled_sum& sum) {
    const double coefficient = sum.coefficients[column];
    const double divisor = common_divisor(coefficient, bound.own);
    const double sum_factor = std::fabs(bound.own) / divisor;
    const double bound_factor = std::fabs(coefficient) / divisor;
    for (auto& entry : sum.coefficients) {
        entry.second *= sum_factor;
    }
    for (row_origin::term& term : sum.terms) {
        term.multiplier *= sum_factor;
    }
    sum.coefficients[bound.other_column] += bound_factor * bound.other;
    sum.coefficients.erase(column);
    sum.terms.push_back({bound.row, true, bound_factor * bound.multiplier});
}

/// Eliminates the continuous columns that have a variable bound on the side that the row needs.
/// `add_to_pool` eliminates the others by constant bounds. Returns nothing if no column has a
/// variable bound.
std::optional<scaled_sum>
with_variable_bounds(const mixed_integer_rows& model,
                     const std::vector<std::vector<variable_bound>>& bounds, scaled_sum sum) {
    bool is_changed = false;
    const std::int32_t own_row = sum.terms.front().row;
    const auto before = sum.coefficients;
    for (const auto& entry : before) {
        const auto j = static_cast<std::size_t>(entry.first);
        if (model.is_integer[j] != 0) {
            continue;
        }
        const auto place = std::find_if(bounds[j].begin(), bounds[j].end(), [&](const auto& each) {
            return each.own * entry.second < 0.0 && each.row != own_row;
        });
        if (place != bounds[j].end()) {
            substitute(entry.first, *place, sum);
            is_changed = true;
        }
    }
    return is_changed ? std::optional(std::move(sum)) : std::nullopt;
}

scaled_sum scaled_row(const mixed_integer_rows& model, std::size_t row, double multiplier) {
    scaled_sum made;
    const auto columns = model.columns_of(row);
    const auto values = model.values_of(row);
    for (std::size_t k = 0; k < columns.size(); ++k) {
        made.coefficients[columns[k]] = nearest_integer(values[k] * multiplier);
    }
    made.terms.push_back({static_cast<std::int32_t>(row), true, multiplier});
    return made;
}

bool has_one_magnitude(std::span<const double> values) {
    return std::all_of(values.begin(), values.end(),
                       [&](double value) { return std::fabs(value) == std::fabs(values.front()); });
}

} // namespace

row_pool integral_rows_of(const mixed_integer_rows& model) {
    const auto bounds = variable_bounds_of(model);
    row_pool pool;
    for (std::size_t row = 0; row < model.row_count(); ++row) {
        const auto columns = model.columns_of(row);
        const auto scale = columns.empty() ? std::nullopt : integral_scale(model.values_of(row));
        if (!scale) {
            continue;
        }
        const bool is_pure = std::all_of(columns.begin(), columns.end(), [&](int j) {
            return model.is_integer[static_cast<std::size_t>(j)] != 0;
        });
        const bool is_equation = model.row_lower[row] == model.row_upper[row];
        const bool needs_one_side =
            is_pure && is_equation && has_one_magnitude(model.values_of(row));
        for (const double sign : {1.0, -1.0}) {
            if (!model.has_side(row, sign) || (needs_one_side && sign < 0.0)) {
                continue;
            }
            const scaled_sum own = scaled_row(model, row, sign * *scale);
            if (const auto substituted = with_variable_bounds(model, bounds, own)) {
                add_to_pool(model, *substituted, pool);
            }
            add_to_pool(model, own, pool);
        }
    }
    return pool;
}

} // namespace zero_half
