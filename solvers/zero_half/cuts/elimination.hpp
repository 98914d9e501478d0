#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Gaussian elimination modulo 2. After a column is eliminated, no remaining row contains it; the
/// remaining rows are sums of rows of the system.
class elimination {
public:
    explicit elimination(const zktarn::random::rng_state& random) : random_(random) {}

    /// Adds the violated ones of all sums that occur. Columns are eliminated in the order of their
    /// values, the least first, and the pivot is a row with little slack. The order and the pivot
    /// are perturbed at random, so each call finds other sums.
    void find(const parity_system& system, const stop_predicate& should_stop, odd_sums& sums);

private:
    void copy_rows(const parity_system& system);
    void order_columns(const parity_system& system);
    void eliminate(std::int32_t column, odd_sums& sums);
    std::size_t best_pivot();

    const zktarn::random::rng_state& random_;
    parity_rows rows_;
    /// For each row the total slack of the rows of which it is the sum.
    std::vector<double> slack_;
    /// The first `remaining_` rows have not been a pivot.
    std::size_t remaining_ = 0;
    std::vector<std::size_t> rows_with_column_;
    std::vector<std::int32_t> order_;
    std::vector<double> keys_;
};

} // namespace zero_half
