#include "cuts/odd_sums.hpp"

#include <algorithm>
#include <utility>

namespace zero_half {

namespace {

/// The slack of a sum; or, when that reaches the limit, some value that is not below the limit.
double limited_slack(const parity_system& system, const parity_row& sum) {
    double slack = 0.0;
    for (const auto [element, unused] : zktarn::entries(sum.odd)) {
        slack += system.value(element);
        if (slack >= slack_limit) {
            break;
        }
    }
    return slack;
}

} // namespace

void odd_sums::reset(const parity_system& system) {
    system_ = &system;
    sums_.clear();
    members_.clear();
    signatures_.clear();
}

void odd_sums::add_if_violated(const parity_row& sum) {
    if (!sum.is_odd) {
        return;
    }
    const double slack = limited_slack(*system_, sum);
    if (slack >= slack_limit) {
        return;
    }
    std::uint64_t signature = 0;
    for (const auto [element, unused] : zktarn::entries(sum.odd)) {
        signature ^= system_->is_slack(element) ? system_->signature(element) : 0;
    }
    if (!signatures_.insert(signature).second) {
        return;
    }
    const std::size_t first = members_.size();
    for (const auto [element, unused] : zktarn::entries(sum.odd)) {
        if (system_->is_slack(element)) {
            members_.push_back(system_->pool_row(element));
        }
    }
    sums_.push_back({slack, first, members_.size() - first});
}

void odd_sums::sort() {
    constexpr double price_of_row = 0.2;
    const auto price = [](const kept_sum& sum) {
        return sum.slack + price_of_row * static_cast<double>(sum.count);
    };
    std::sort(sums_.begin(), sums_.end(), [&](const kept_sum& a, const kept_sum& b) {
        return std::pair(price(a), a.first) < std::pair(price(b), b.first);
    });
}

std::span<const int> odd_sums::members(std::size_t i) const {
    return std::span(members_).subspan(sums_[i].first, sums_[i].count);
}

} // namespace zero_half
