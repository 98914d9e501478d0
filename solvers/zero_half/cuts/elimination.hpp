#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Gauss' elimination over the field of two elements: what is left of the rows after each column is
/// a sum that gives that column no longer away.
class elimination {
public:
    explicit elimination(zktarn::random::rng_state& random) : random_(random) {}

    /// Notes the sums on the way. Columns go by their value, rows with little slack are taken as
    /// pivots; chance decides between those that are nearly alike, so that each call goes another
    /// way.
    void find(const parity_system& in, odd_sums& found);

private:
    void copy_rows(const parity_system& in);
    void order_columns(const parity_system& in);
    void eliminate(std::int32_t column, odd_sums& found);
    std::size_t best_pivot();

    zktarn::random::rng_state& random_;
    parity_rows rows_;
    /// For each row, what the slacks of the rows in it come to.
    std::vector<double> slack_;
    /// Rows before this place have not been a pivot yet.
    std::size_t left_ = 0;
    std::vector<std::size_t> with_column_;
    std::vector<std::int32_t> order_;
    std::vector<double> keys_;
};

} // namespace zero_half
