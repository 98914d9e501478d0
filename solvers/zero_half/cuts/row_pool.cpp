#include "cuts/row_pool.hpp"

#include <utility>

#include "cuts/exact_limits.hpp"

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

} // namespace zero_half
