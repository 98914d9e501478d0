#include "cuts/odd_sums.hpp"

#include <algorithm>
#include <utility>

namespace zero_half {

namespace {

/// What a sum gives away; or, when that is too much, some value that is too much.
double given_away(const parity_system& of, const parity_row& row) {
    double total = 0.0;
    for (std::int32_t k = 1; k <= row.odd.size() && total < too_much_to_give; ++k) {
        total += of.value(row.odd.index(k));
    }
    return total;
}

} // namespace

void odd_sums::start(const parity_system& of) {
    of_ = &of;
    all_.clear();
    members_.clear();
    seen_.clear();
}

void odd_sums::note(const parity_row& found) {
    if (!found.is_odd) {
        return;
    }
    const double total = given_away(*of_, found);
    if (total >= too_much_to_give) {
        return;
    }
    std::uint64_t signature = 0;
    for (std::int32_t k = 1; k <= found.odd.size(); ++k) {
        const std::int32_t element = found.odd.index(k);
        signature ^= of_->is_slack(element) ? of_->signature(element) : 0;
    }
    if (!seen_.insert(signature).second) {
        return;
    }
    const std::size_t first = members_.size();
    for (std::int32_t k = 1; k <= found.odd.size(); ++k) {
        const std::int32_t element = found.odd.index(k);
        if (of_->is_slack(element)) {
            members_.push_back(of_->pool_row(element));
        }
    }
    all_.push_back({total, first, members_.size() - first});
}

void odd_sums::sort() {
    constexpr double a_row = 0.2;
    const auto price = [](const sum& of) {
        return of.given_away + a_row * static_cast<double>(of.count);
    };
    std::sort(all_.begin(), all_.end(), [&](const sum& a, const sum& b) {
        return std::pair(price(a), a.first) < std::pair(price(b), b.first);
    });
}

std::span<const int> odd_sums::members(std::size_t i) const {
    return std::span(members_).subspan(all_[i].first, all_[i].count);
}

} // namespace zero_half
