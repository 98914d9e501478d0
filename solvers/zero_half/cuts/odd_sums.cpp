#include "cuts/odd_sums.hpp"

#include <algorithm>
#include <utility>

namespace zero_half {

bool odd_sums::add_if_violated(std::span<const std::int32_t> odd, bool is_odd) {
    double slack = 0.0;
    std::uint64_t signature = 0;
    parity_change change;
    for (const std::int32_t element : odd) {
        slack += system_.value(element);
        if (slack >= slack_limit) {
            return false;
        }
        change = cheaper(change, system_.change(element));
        signature ^= system_.is_slack(element) ? signature_of(element) : 0;
    }
    if (!is_odd) {
        slack += change.cost;
    }
    if (slack >= slack_limit || !signatures_.insert(signature, sums_.size()).second) {
        return false;
    }
    keep(slack, is_odd ? 0 : change.column, odd);
    return true;
}

void odd_sums::keep(double slack, std::int32_t changed_column, std::span<const std::int32_t> odd) {
    const std::size_t first = members_.size();
    for (const std::int32_t element : odd) {
        if (system_.is_slack(element)) {
            members_.push_back(system_.pool_row(system_.row_of(element)));
        }
    }
    sums_.push_back({slack, changed_column, first, members_.size() - first});
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

odd_sum odd_sums::operator[](std::size_t i) const {
    const kept_sum& sum = sums_[i];
    return {sum.slack, std::span(members_).subspan(sum.first, sum.count), sum.changed_column};
}

} // namespace zero_half
