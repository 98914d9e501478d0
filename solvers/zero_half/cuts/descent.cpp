#include "cuts/descent.hpp"

#include <limits>

namespace zero_half {

double descent::total_with(const parity_row& row) const {
    double total = total_;
    for (std::int32_t k = 1; k <= row.odd.size(); ++k) {
        const std::int32_t element = row.odd.index(k);
        const double value = in_->value(element);
        total += sums_[0].odd.has(element) ? -value : value;
    }
    return total;
}

std::size_t descent::best_next(odd_sums& found) {
    const parity_rows& rows = in_->rows();
    std::size_t best = rows.size();
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (used_[i]) {
            continue;
        }
        const double total = total_with(rows[i]);
        if (total < 1.0 && rows[i].is_odd != sums_[0].is_odd) {
            sums_[1].clear();
            sums_[1].add(sums_[0]);
            sums_[1].add(rows[i]);
            found.note(sums_[1]);
        }
        if (total < least) {
            least = total;
            best = i;
        }
    }
    return best;
}

void descent::add(std::size_t row) {
    total_ = total_with(in_->rows()[row]);
    sums_[0].add(in_->rows()[row]);
    used_[row] = true;
}

void descent::find(const parity_system& in, odd_sums& found) {
    constexpr int most_steps = 8;
    in_ = &in;
    sums_.resize(2, in.elements());
    for (std::size_t start = 0; start < in.rows().size(); ++start) {
        sums_[0].clear();
        total_ = 0.0;
        used_.assign(in.rows().size(), false);
        add(start);
        for (int step = 0; step < most_steps && !found.are_enough(); ++step) {
            const std::size_t next = best_next(found);
            if (next == in.rows().size()) {
                break;
            }
            add(next);
        }
    }
}

} // namespace zero_half
