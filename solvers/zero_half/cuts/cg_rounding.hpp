#pragma once

#include <optional>
#include <span>
#include <vector>

#include "cuts/bound_substitution.hpp"
#include "cuts/cut.hpp"
#include "cuts/odd_sums.hpp"
#include "cuts/vectors.hpp"

namespace zero_half {

/// Chvatal-Gomory rounding with multipliers 0 and 1/2. Each cut is divided by the greatest common
/// divisor of its coefficients, and its right-hand side is rounded down once more.
class cg_rounding {
public:
    cg_rounding(const mixed_integer_rows& model, const row_pool& pool)
        : model_(model), pool_(pool), sum_(new_vector(model.column_count())),
          row_(new_vector(model.column_count())) {}

    /// The sum of the rows, each column substituted by its bound, halved, rounded down, and the
    /// bounds substituted back. Nothing when a number is too large to be exact, when rounding needs
    /// a bound that a column does not have, or when no column is left.
    std::optional<cut> halved_sum(const odd_sum& members, const std::vector<substitution>& bounds,
                                  const double* point);

private:
    void add_row(std::size_t row);

    const mixed_integer_rows& model_;
    const row_pool& pool_;
    /// Working vectors.
    zktarn::owned_vector sum_;
    zktarn::owned_vector row_;
};

} // namespace zero_half
