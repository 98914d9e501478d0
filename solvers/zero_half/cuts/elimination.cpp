#include "cuts/elimination.hpp"

#include <limits>
#include <utility>

namespace zero_half {

void elimination::find(const parity_system& in, odd_sums& found) {
    copy_rows(in);
    order_columns(in);
    for (const std::int32_t column : order_) {
        if (found.is_stopped()) {
            return;
        }
        eliminate(column, found);
    }
}

void elimination::copy_rows(const parity_system& in) {
    left_ = in.rows().size();
    rows_.resize(left_, in.elements());
    slack_.resize(left_);
    for (std::size_t i = 0; i < left_; ++i) {
        rows_[i].clear();
        rows_[i].add(in.rows()[i]);
        slack_[i] = in.value(in.slack_of(i));
    }
}

void elimination::order_columns(const parity_system& in) {
    const auto n = static_cast<std::size_t>(in.columns());
    order_.resize(n);
    keys_.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        order_[i] = static_cast<std::int32_t>(i) + 1;
        keys_[i] = in.value(order_[i]) * (0.5 + zktarn::random::rand_number(random_));
    }
    zktarn::sorting_mod::sort(0, in.columns() - 1, [this](std::int32_t a, std::int32_t b) {
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

/// The place among `with_column_` of a row with the least slack.
std::size_t elimination::best_pivot() {
    constexpr double nearly_alike = 1e-3;
    std::size_t best = 0;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t k = 0; k < with_column_.size(); ++k) {
        const double key =
            slack_[with_column_[k]] + nearly_alike * zktarn::random::rand_number(random_);
        if (key < least) {
            least = key;
            best = k;
        }
    }
    return best;
}

void elimination::eliminate(std::int32_t column, odd_sums& found) {
    with_column_.clear();
    for (std::size_t i = 0; i < left_; ++i) {
        if (rows_[i].odd.has(column)) {
            with_column_.push_back(i);
        }
    }
    if (with_column_.empty()) {
        return;
    }
    const std::size_t pivot = with_column_[best_pivot()];
    for (const std::size_t i : with_column_) {
        if (i != pivot) {
            rows_[i].add(rows_[pivot]);
            slack_[i] += slack_[pivot];
            found.note(rows_[i]);
        }
    }
    --left_;
    std::swap(rows_[pivot], rows_[left_]);
    std::swap(slack_[pivot], slack_[left_]);
}

} // namespace zero_half
