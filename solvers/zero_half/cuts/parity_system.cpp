#include "cuts/parity_system.hpp"

#include <algorithm>

#include "cuts/hashing.hpp"

namespace zero_half {

parity_system::parity_system(const mixed_integer_rows& model, const row_pool& pool,
                             std::span<const double> slacks,
                             const std::vector<substitution>& bounds) {
    const parity_reduction reduced(model, pool, slacks, bounds);
    fill_rows(reduced, number_columns(reduced));
}

/// Merges the columns that are odd in the same rows.
parity_system::column_map parity_system::number_columns(const parity_reduction& reduced) {
    std::vector<std::uint64_t> signatures(reduced.columns().size());
    for (std::size_t i = 0; i < reduced.rows().size(); ++i) {
        const parity_reduction::row& each = reduced.rows()[i];
        for (const std::int32_t number : reduced.entries(each)) {
            signatures[static_cast<std::size_t>(number)] ^= each.is_removed ? 0 : mixed(i);
        }
    }
    column_map element(signatures.size());
    values_.assign(1, 0.0);
    changes_.assign(1, {});
    signature_map known;
    known.reset(signatures.size());
    for (std::size_t k = 0; k < signatures.size(); ++k) {
        const parity_reduction::column& each = reduced.columns()[k];
        if (each.count == 0) {
            continue;
        }
        const auto [first, is_new] = known.insert(signatures[k], values_.size());
        if (is_new) {
            element[k] = static_cast<std::int32_t>(first);
            values_.push_back(each.value);
            changes_.push_back(each.change);
        } else {
            values_[first] += each.value;
            changes_[first] = cheaper(changes_[first], each.change);
        }
    }
    columns_ = static_cast<std::int32_t>(values_.size()) - 1;
    return element;
}

void parity_system::fill_rows(const parity_reduction& reduced, const column_map& element) {
    starts_.assign(1, 0);
    for (const parity_reduction::row& each : reduced.rows()) {
        if (each.is_removed) {
            continue;
        }
        for (const std::int32_t number : reduced.entries(each)) {
            if (const std::int32_t e = element[static_cast<std::size_t>(number)]; e != 0) {
                entries_.push_back(e);
            }
        }
        most_odd_columns_ = std::max(most_odd_columns_, entries_.size() - starts_.back());
        starts_.push_back(entries_.size());
        rows_.push_back({each.pool_row, each.is_odd});
        values_.push_back(each.slack);
        changes_.push_back(each.change);
    }
}

} // namespace zero_half
