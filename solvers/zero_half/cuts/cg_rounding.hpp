#pragma once

#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "cuts/integers.hpp"
#include "cuts/mixed_integer_rows.hpp"
#include "cuts/odd_sums.hpp"
#include "cuts/row_pool.hpp"
#include "zktarn/owners.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// Chvatal-Gomory rounding: sums of rows with multipliers 1/2, and single rows with any multiplier
/// 1/k. Each cut is divided by the greatest common divisor of its coefficients, and its right-hand
/// side is rounded down once more.
class cg_rounding {
public:
    /// Throws std::bad_alloc if the host has no memory for a vector over the columns.
    cg_rounding(const mixed_integer_rows& model, const row_pool& pool);

    /// Adds up the rows, substitutes each column by its bound, halves, rounds down, and substitutes
    /// back. Returns nothing when a number is too large to be exact, when rounding needs a bound
    /// that a column does not have, or when no column is left.
    std::optional<cut> halved_sum(const odd_sum& members, const std::vector<substitution>& bounds,
                                  const double* point);

    /// Substitutes each column of a row of the pool by the bound at the same place in `used`,
    /// divides by `divisor`, which is 1 or more, rounds down, and substitutes back. Returns nothing
    /// in the same cases.
    std::optional<cut> divided_row(std::int32_t row, std::int64_t divisor,
                                   std::span<const substitution> used, const double* point);

private:
    /// A sum of integers that detects when it may no longer be exact.
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

    void add_up(std::span<const std::int32_t> rows);
    void begin(std::int64_t divisor);
    bool divide(std::int32_t column, double coefficient, const substitution& used);
    std::optional<cut> made_of(std::span<const std::int32_t> rows, const double* point);

    const mixed_integer_rows& model_;
    const row_pool& pool_;
    zktarn::owned_vector sum_;
    /// Of the current cut: the divisor, and the entries.
    std::int64_t divisor_ = 2;
    std::vector<std::int32_t> columns_;
    std::vector<double> coefficients_;
    /// Its right-hand side after the substitution and before the division.
    exact_sum rhs_;
    /// What substituting back adds to the right-hand side.
    exact_sum bound_terms_;
};

} // namespace zero_half
