#include "cuts/elimination.hpp"

#include <limits>
#include <utility>

namespace zero_half {

void elimination::find(const parity_system& system, const stop_predicate& should_stop,
                       odd_sums& sums) {
    copy_rows(system);
    order_columns(system);
    for (const std::int32_t column : order_) {
        if (should_stop()) {
            return;
        }
        eliminate(column, sums);
    }
}

void elimination::copy_rows(const parity_system& system) {
    remaining_ = system.rows().size();
    rows_.resize(remaining_, system.elements());
    slack_.resize(remaining_);
    for (std::size_t i = 0; i < remaining_; ++i) {
        rows_[i].clear();
        rows_[i].add(system.rows()[i]);
        slack_[i] = system.value(system.slack_of(i));
    }
}

void elimination::order_columns(const parity_system& system) {
    const auto n = static_cast<std::size_t>(system.columns());
    order_.resize(n);
    keys_.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        order_[i] = static_cast<std::int32_t>(i) + 1;
        keys_[i] = system.value(order_[i]) * (0.5 + zktarn::random::rand_number(random_));
    }
    zktarn::sorting_mod::sort(0, system.columns() - 1, [this](std::int32_t a, std::int32_t b) {
        const auto lower = static_cast<std::size_t>(a);
        const auto upper = static_cast<std::size_t>(b);
        if (keys_[lower] >= keys_[upper]) {
            return false;
        }
        std::swap(keys_[lower], keys_[upper]);
        std::swap(order_[lower], order_[upper]);
        return true;
    });
}

/// The place in `rows_with_column_` of the row with the least slack, after a random perturbation.
std::size_t elimination::best_pivot() {
    constexpr double perturbation = 1e-3;
    std::size_t best = 0;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t k = 0; k < rows_with_column_.size(); ++k) {
        const double key =
            slack_[rows_with_column_[k]] + perturbation * zktarn::random::rand_number(random_);
        if (key < least) {
            least = key;
            best = k;
        }
    }
    return best;
}

void elimination::eliminate(std::int32_t column, odd_sums& sums) {
    rows_with_column_.clear();
    for (std::size_t i = 0; i < remaining_; ++i) {
        if (zktarn::vector_mod::vector_is_elm(*rows_[i].odd, column) != 0) {
            rows_with_column_.push_back(i);
        }
    }
    if (rows_with_column_.empty()) {
        return;
    }
    const std::size_t pivot = rows_with_column_[best_pivot()];
    for (const std::size_t i : rows_with_column_) {
        if (i != pivot) {
            rows_[i].add(rows_[pivot]);
            slack_[i] += slack_[pivot];
            sums.add_if_violated(rows_[i]);
        }
    }
    --remaining_;
    std::swap(rows_[pivot], rows_[remaining_]);
    std::swap(slack_[pivot], slack_[remaining_]);
}

} // namespace zero_half
