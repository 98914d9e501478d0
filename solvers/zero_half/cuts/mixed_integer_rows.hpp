#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

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

} // namespace zero_half
