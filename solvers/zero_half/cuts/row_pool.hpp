#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "cuts/cut.hpp"
#include "cuts/mixed_integer_rows.hpp"

/// The rows that searches add up, which come from the model or are cuts.

namespace zero_half {

/// Rows coefficients * x <= rhs with integer coefficients over integer columns counted from 1. All
/// rows share a few arrays, so a row takes memory only for its entries.
class row_pool {
public:
    void add(std::span<const std::int32_t> columns, std::span<const double> coefficients,
             double rhs, row_origin origin);
    /// Removes all rows but the first `count`.
    void truncate(std::size_t count);

    std::size_t size() const { return rhs_.size(); }
    /// The number of entries of all rows.
    std::size_t entries() const { return columns_.size(); }
    std::span<const std::int32_t> columns(std::size_t row) const {
        return std::span(columns_).subspan(starts_[row], starts_[row + 1] - starts_[row]);
    }
    std::span<const double> coefficients(std::size_t row) const {
        return std::span(coefficients_).subspan(starts_[row], starts_[row + 1] - starts_[row]);
    }
    /// The columns with odd coefficients.
    std::span<const std::int32_t> odd_columns(std::size_t row) const {
        return std::span(odd_).subspan(odd_starts_[row], odd_starts_[row + 1] - odd_starts_[row]);
    }
    double rhs(std::size_t row) const { return rhs_[row]; }
    const row_origin& origin(std::size_t row) const { return origins_[row]; }

    /// rhs - coefficients * x; negative when the point violates the row.
    double slack(std::size_t row, const double* point) const;

private:
    std::vector<std::size_t> starts_ = {0};
    std::vector<std::int32_t> columns_;
    std::vector<double> coefficients_;
    std::vector<std::size_t> odd_starts_ = {0};
    std::vector<std::int32_t> odd_;
    std::vector<double> rhs_;
    std::vector<row_origin> origins_;
};

/// A pool of the rows of the model that can be scaled to integers. A range gives two rows. An
/// equation whose coefficients are all of one magnitude gives only its upper side, because its
/// lower side gives the same cuts: modulo 2 both are the same row. Divided by other integers, both
/// sides of an equation differ.
///
/// A continuous column is eliminated from a row if it has a suitable bound: a variable bound, by
/// adding the row of the model that states it, or else a constant one. Then both sides of an
/// equation are kept, because they differ.
row_pool integral_rows_of(const mixed_integer_rows& model);

} // namespace zero_half
