#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Starts from each row and adds, a few times, the row after which the sum gives least away. Finds
/// sums that elimination passes by, where columns may stay odd; for small systems, since it tries
/// every row at every step.
class descent {
public:
    void find(const parity_system& in, odd_sums& found);

private:
    /// What the sum would give away with that row added.
    double total_with(const parity_row& row) const;
    /// Where the best row stands that has not been added yet; notes odd sums on the way.
    std::size_t best_next(odd_sums& found);
    void add(std::size_t row);

    const parity_system* in_ = nullptr;
    parity_rows sums_;
    double total_ = 0.0;
    std::vector<bool> used_;
};

} // namespace zero_half
