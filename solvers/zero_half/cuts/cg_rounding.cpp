#include "cuts/cg_rounding.hpp"

#include <cmath>

#include "input/rounding.hpp"

namespace zero_half {

namespace {

constexpr double no_tolerance = 0.0;

/// A sum of integers that records whether it is still exact.
class exact_sum {
public:
    void add(double term) {
        value_ += term;
        magnitude_ += std::fabs(term);
    }
    double value() const { return value_; }
    bool is_exact() const { return magnitude_ <= largest_exact; }

private:
    double value_ = 0.0;
    double magnitude_ = 0.0;
};

/// A coefficient of a row over the columns' distances to their bounds.
struct term {
    std::int32_t column;
    double coefficient;
    const substitution* substituted;

    double sign() const { return substituted->is_upper ? -1.0 : 1.0; }
};

/// sum of coefficient * distance <= rhs.
struct distance_row {
    std::vector<term> terms;
    exact_sum rhs;
};

/// Replaces each column by its distance to the bound.
distance_row substitute(const zktarn::owned_vector& sum, exact_sum rhs,
                        const std::vector<substitution>& bounds) {
    distance_row row{{}, rhs};
    row.terms.reserve(static_cast<std::size_t>(size(sum)));
    for (const auto [j, coefficient] : zktarn::entries(sum)) {
        const substitution& at = bounds[static_cast<std::size_t>(j)];
        row.terms.push_back({j, at.is_upper ? -coefficient : coefficient, &at});
        row.rhs.add(-coefficient * at.bound);
    }
    return row;
}

/// Halves the row and rounds it down. Rounding a coefficient down is valid because distances are
/// not negative, so it needs a bound. False when the cut would not be valid or not be exact.
bool halve(distance_row& row) {
    for (term& each : row.terms) {
        const double half = zktarn::util::epsilon_floor(each.coefficient * 0.5, no_tolerance);
        if (std::fabs(each.coefficient) > largest_coefficient ||
            (half * 2.0 != each.coefficient && !each.substituted->is_bounded())) {
            return false;
        }
        each.coefficient = half;
    }
    if (!row.rhs.is_exact()) {
        return false;
    }
    const double half = floor_of(row.rhs.value() * 0.5, no_tolerance);
    row.rhs = {};
    row.rhs.add(half);
    return true;
}

/// Replaces each distance by its column. Nothing when no column is left or the right-hand side is
/// not exact.
std::optional<cut> substitute_back(const distance_row& row) {
    cut made;
    exact_sum shift;
    for (const term& each : row.terms) {
        const double coefficient = each.sign() * each.coefficient;
        shift.add(coefficient * each.substituted->bound);
        if (coefficient != 0.0) {
            made.columns.push_back(each.column);
            made.coefficients.push_back(coefficient);
        }
        if (each.substituted->is_upper) {
            made.origin.complemented.push_back(each.column);
        }
    }
    if (made.columns.empty() || !shift.is_exact()) {
        return std::nullopt;
    }
    made.rhs = row.rhs.value() + shift.value();
    return made;
}

/// The cut divided by the greatest common divisor of its coefficients, its right-hand side rounded
/// down.
cut divided(cut inequality) {
    constexpr double less_than_one = 0.5;
    double divisor = 0.0;
    for (const double coefficient : inequality.coefficients) {
        divisor = zktarn::util::xgcd_r8(divisor, coefficient, less_than_one);
        if (divisor == 1.0) {
            return inequality;
        }
    }
    for (double& coefficient : inequality.coefficients) {
        coefficient /= divisor;
    }
    inequality.rhs = floor_of(inequality.rhs / divisor, no_tolerance);
    return inequality;
}

} // namespace

std::optional<cut> cg_rounding::halved_sum(std::span<const int> rows,
                                           std::span<const integral_row> pool,
                                           const std::vector<substitution>& bounds) {
    exact_sum rhs;
    zktarn::vector_mod::vector_clear(*sum_);
    for (const int i : rows) {
        const integral_row& row = pool[static_cast<std::size_t>(i)];
        zktarn::vector_mod::vectors_combine(*sum_, *row.coefficients, 1.0, 1.0, no_tolerance);
        rhs.add(row.rhs);
    }
    distance_row row = substitute(sum_, rhs, bounds);
    if (!halve(row)) {
        return std::nullopt;
    }
    std::optional<cut> made = substitute_back(row);
    if (made) {
        made->origin.summed.assign(rows.begin(), rows.end());
        made = divided(std::move(*made));
    }
    return made;
}

std::optional<cut> cg_rounding::divided_row(int row, std::span<const integral_row> pool) {
    const integral_row& undivided = pool[static_cast<std::size_t>(row)];
    if (size(undivided.coefficients) == 0) {
        return std::nullopt;
    }
    cut made;
    for (const auto [j, coefficient] : zktarn::entries(undivided.coefficients)) {
        made.columns.push_back(j);
        made.coefficients.push_back(coefficient);
    }
    made.rhs = undivided.rhs;
    // Half the sum of the row and itself is the row.
    made.origin.summed = {row, row};
    return divided(std::move(made));
}

} // namespace zero_half
