#include "cuts/parity_reduction.hpp"

#include <algorithm>

#include "cuts/exact_limits.hpp"

namespace zero_half {

namespace {

/// Smaller distances and slacks are rounding errors of the simplex method.
constexpr double negligible = 1e-9;
/// Stands for infinity in sums that are subtracted again.
constexpr double far_away = 1e6;

parity_change change_of(const mixed_integer_rows& model, std::int32_t column,
                        const substitution& nearest) {
    const substitution other = other_bound(model, column, nearest);
    if (!other.is_bounded() || !is_odd_integer(other.bound - nearest.bound)) {
        return {};
    }
    return {other.distance - nearest.distance, column};
}

/// Whether the first of two rows with equal odd columns can replace the second in every sum.
bool is_at_least_as_good(const parity_reduction::row& a, const parity_reduction::row& b) {
    return a.slack <= b.slack && a.slack + a.change.cost <= b.slack + b.change.cost;
}

} // namespace

parity_reduction::parity_reduction(const mixed_integer_rows& model, const row_pool& pool,
                                   std::span<const double> slacks,
                                   const std::vector<substitution>& bounds)
    : number_(bounds.size(), -1) {
    for (std::size_t i = 0; i < slacks.size(); ++i) {
        if (slacks[i] < slack_limit) {
            add_row(model, pool, i, slacks[i], bounds);
        }
    }
    for (column& each : columns_) {
        if (each.count == 1) {
            absorb(each);
        }
    }
    do {
        remove_rows_with_slack();
    } while (remove_dominated_rows());
}

void parity_reduction::add_row(const mixed_integer_rows& model, const row_pool& pool,
                               std::size_t pool_row, double slack,
                               const std::vector<substitution>& bounds) {
    const std::size_t index = rows_.size();
    const std::size_t first = entries_.size();
    bool is_odd = is_odd_integer(pool.rhs(pool_row));
    for (const std::int32_t j : pool.odd_columns(pool_row)) {
        const substitution& nearest = bounds[static_cast<std::size_t>(j)];
        is_odd = is_odd != is_odd_integer(nearest.bound);
        if (nearest.distance <= negligible) {
            continue;
        }
        std::int32_t& number = number_[static_cast<std::size_t>(j)];
        if (number < 0) {
            number = static_cast<std::int32_t>(columns_.size());
            columns_.push_back(
                {std::min(nearest.distance, far_away), change_of(model, j, nearest), 0, 0});
        }
        column& own = columns_[static_cast<std::size_t>(number)];
        ++own.count;
        own.rows ^= index;
        entries_.push_back(number);
    }
    rows_.push_back({static_cast<std::int32_t>(pool_row),
                     is_odd,
                     false,
                     slack < negligible ? 0.0 : slack,
                     {},
                     first,
                     entries_.size()});
}

/// Adds a column that is odd in only one row to the slack of that row.
void parity_reduction::absorb(column& single) {
    row& only = rows_[single.rows];
    const bool was_below = only.slack < slack_limit;
    only.slack += single.value;
    only.change = cheaper(only.change, single.change);
    single.count = 0;
    if (was_below && only.slack >= slack_limit) {
        open_.push_back(single.rows);
    }
}

void parity_reduction::remove(row& unwanted) {
    const auto index = static_cast<std::size_t>(&unwanted - rows_.data());
    unwanted.is_removed = true;
    for (const std::int32_t number : entries(unwanted)) {
        column& each = columns_[static_cast<std::size_t>(number)];
        if (each.count == 0) {
            continue;
        }
        --each.count;
        each.rows ^= index;
        if (each.count == 1) {
            absorb(each);
        }
    }
}

void parity_reduction::remove_rows_with_slack() {
    while (!open_.empty()) {
        row& next = rows_[open_.back()];
        open_.pop_back();
        if (!next.is_removed) {
            remove(next);
        }
    }
}

/// Rows with equal signatures have the same odd columns and right-hand sides of the same parity.
std::uint64_t parity_reduction::signature_of(const row& each) const {
    std::uint64_t signature = each.is_odd ? mixed(0) : 0;
    for (const std::int32_t number : entries(each)) {
        if (columns_[static_cast<std::size_t>(number)].count > 0) {
            signature ^= mixed(static_cast<std::uint64_t>(number) + 1);
        }
    }
    return signature;
}

/// Returns whether a row was removed.
bool parity_reduction::remove_dominated_rows() {
    bool is_changed = false;
    best_.reset(rows_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        row& each = rows_[i];
        if (each.is_removed || each.slack >= slack_limit) {
            continue;
        }
        const std::uint64_t signature = signature_of(each);
        const auto [first, is_new] = best_.insert(signature, i);
        const bool is_empty = signature == 0 && each.change.column == 0;
        const bool is_compared = !is_new && !rows_[first].is_removed;
        row* unwanted = nullptr;
        if (is_empty || (is_compared && is_at_least_as_good(rows_[first], each))) {
            unwanted = &each;
        } else if (is_compared && is_at_least_as_good(each, rows_[first])) {
            unwanted = &rows_[first];
            best_.set(signature, i);
        }
        if (unwanted != nullptr) {
            remove(*unwanted);
            is_changed = true;
        }
    }
    return is_changed;
}

} // namespace zero_half
