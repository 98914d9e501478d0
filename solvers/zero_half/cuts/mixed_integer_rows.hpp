#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

/// The rows of a model and the bounds of its columns, as separation uses them.

namespace zero_half {

/// A bound of this magnitude or more counts as infinite.
inline constexpr double no_bound = 1e30;

/// What separation reads of a model: row_lower <= A x <= row_upper, lower <= x <= upper, and which
/// columns are integer. The arrays belong to the caller and outlive every object that refers to
/// them. Rows and columns are counted from 0; row i has its entries at row_starts[i] up to, and
/// without, row_starts[i + 1].
struct mixed_integer_rows {
    std::span<const int> row_starts;
    std::span<const int> entry_columns;
    std::span<const double> entry_values;
    std::span<const double> row_lower;
    std::span<const double> row_upper;
    std::span<const double> lower;
    std::span<const double> upper;
    std::span<const char> is_integer;

    std::size_t row_count() const { return row_lower.size(); }
    std::int32_t column_count() const { return static_cast<std::int32_t>(lower.size()); }
    /// Whether the row has an upper side if `sign` is positive, or a lower side otherwise.
    bool has_side(std::size_t row, double sign) const {
        return sign > 0.0 ? row_upper[row] < no_bound : row_lower[row] > -no_bound;
    }
    double side(std::size_t row, double sign) const {
        return sign > 0.0 ? row_upper[row] : row_lower[row];
    }
    std::span<const int> columns_of(std::size_t row) const {
        return entry_columns.subspan(start(row), start(row + 1) - start(row));
    }
    std::span<const double> values_of(std::size_t row) const {
        return entry_values.subspan(start(row), start(row + 1) - start(row));
    }

private:
    std::size_t start(std::size_t row) const { return static_cast<std::size_t>(row_starts[row]); }
};

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

/// One side of a row of the model with one continuous column y and one integer column x:
/// own * y + other * x <= rhs. It bounds y from above if `own` is positive, else from below.
struct variable_bound {
    std::int32_t row;
    /// The coefficients are those of the row times `multiplier`, made integers. A negative
    /// multiplier stands for the lower side.
    double multiplier;
    double own;
    double other;
    std::int32_t other_column;
};

/// For each column, counted from 0, its variable bounds.
std::vector<std::vector<variable_bound>> variable_bounds_of(const mixed_integer_rows& model);

} // namespace zero_half
