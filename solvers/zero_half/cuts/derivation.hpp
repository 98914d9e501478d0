#pragma once

#include <optional>
#include <span>
#include <vector>

#include "cuts/integral_rows.hpp"
#include "cuts/parity_system.hpp"

namespace zero_half {

/// coefficients * x <= right, and how it was derived.
struct cut {
    /// Counted from 1.
    std::vector<std::int32_t> columns;
    std::vector<double> coefficients;
    double right = 0.0;
    origin from;
    /// How much a point violates it, and how far from it the point is.
    double violation = 0.0;
    double norm = 0.0;

    double distance() const { return violation / norm; }
};

/// Makes cuts of sums of rows: bounds are substituted, each column's nearest one; everything is
/// halved and rounded down, which holds for integer points; and the bounds put back.
class derivation {
public:
    explicit derivation(const model& from) : sum_(from.column_count()) {}

    /// Nothing when a number is too large to be trusted, or rounding would need a bound that is not
    /// there.
    std::optional<cut> cut_of(std::span<const int> rows, std::span<const integral_row> pool,
                              const std::vector<substitution>& bounds);

private:
    sparse_vector sum_;
};

/// The cut as a row over that many columns.
integral_row row_of(const cut& from, std::int32_t columns);

} // namespace zero_half
