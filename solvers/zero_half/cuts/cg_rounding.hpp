#pragma once

#include <optional>
#include <span>
#include <vector>

#include "cuts/bound_substitution.hpp"
#include "cuts/integral_rows.hpp"
#include "lp/cut.hpp"

namespace zero_half {

/// Chvatal-Gomory rounding with multipliers 0 and 1/2. Each cut is divided by the greatest common
/// divisor of its coefficients, and its right-hand side is rounded down once more.
class cg_rounding {
public:
    explicit cg_rounding(const model& program) : sum_(new_vector(program.column_count())) {}

    /// The sum of the rows, each column substituted by its bound, halved, rounded down, and the
    /// bounds substituted back. Nothing when a number is too large to be exact, when rounding needs
    /// a bound that a column does not have, or when no column is left.
    std::optional<cut> halved_sum(std::span<const int> rows, std::span<const integral_row> pool,
                                  const std::vector<substitution>& bounds);

    /// A row of the pool divided by the greatest common divisor of its coefficients.
    static std::optional<cut> divided_row(int row, std::span<const integral_row> pool);

private:
    zktarn::owned_vector sum_;
};

} // namespace zero_half
