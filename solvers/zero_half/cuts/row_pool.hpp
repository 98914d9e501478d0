#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zero_half {

/// How a row a x <= rhs of the pool follows from the model. The terms are added up and the sum is
/// divided by `divisor`. Every coefficient is then moved to the integer in the row: down at the
/// cost of the column's lower bound, up at the cost of its upper bound. The right-hand side is
/// rounded down.
struct row_origin {
    struct term {
        /// A row of the model, counted from 0, or of the pool before this one.
        std::int32_t row;
        bool is_model_row;
        /// Positive for the upper side of a row of the model, negative for its lower side.
        double multiplier;
    };
    std::vector<term> terms;
    double divisor = 1.0;
};

/// Rows coefficients * x <= rhs with integer coefficients over integer columns counted from 1. All
/// rows share a few arrays, so a row takes memory only for its entries.
class row_pool {
public:
    void add(std::span<const std::int32_t> columns, std::span<const double> coefficients,
             double rhs, row_origin origin);
    /// Removes all rows but the first `count`.
    void truncate(std::size_t count);

    std::size_t size() const { return rhs_.size(); }
    /// Of all rows.
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

} // namespace zero_half
