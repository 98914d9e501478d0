#include "cuts/parity_system.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "cuts/hashing.hpp"

namespace zero_half {

namespace {

/// Smaller distances and slacks are rounding errors of the simplex method.
constexpr double negligible = 1e-9;
/// Stands for infinity in sums that are subtracted again.
constexpr double far_away = 1e6;

parity_change change_of(const mixed_integer_rows& model, std::int32_t column,
                        const substitution& nearest) {
    const substitution other = other_bound(model, column, nearest);
    if (!other.is_bounded() || std::fmod(other.bound - nearest.bound, 2.0) == 0.0) {
        return {};
    }
    return {other.distance - nearest.distance, column};
}

} // namespace

parity_system::parity_system(const mixed_integer_rows& model, const row_pool& pool,
                             std::span<const double> slacks,
                             const std::vector<substitution>& bounds) {
    find_candidates(pool, slacks, bounds);
    const column_map element = number_columns(model, pool, bounds);
    drop_candidates(pool, element);
    fill_rows(pool, element);
}

/// Rows whose own slack does not exceed the limit.
void parity_system::find_candidates(const row_pool& pool, std::span<const double> slacks,
                                    const std::vector<substitution>& bounds) {
    for (std::size_t i = 0; i < pool.size(); ++i) {
        if (slacks[i] >= slack_limit) {
            continue;
        }
        double rhs = pool.rhs(i);
        for (const std::int32_t j : pool.odd_columns(i)) {
            rhs += bounds[static_cast<std::size_t>(j)].bound;
        }
        candidates_.push_back({static_cast<std::int32_t>(i),
                               std::fmod(rhs, 2.0) != 0.0,
                               slacks[i] < negligible ? 0.0 : slacks[i],
                               {}});
    }
}

parity_system::column_map parity_system::number_columns(const mixed_integer_rows& model,
                                                        const row_pool& pool,
                                                        const std::vector<substitution>& bounds) {
    std::vector<occurrences> seen(bounds.size());
    std::vector<std::int32_t> used;
    for (std::size_t c = 0; c < candidates_.size(); ++c) {
        for (const std::int32_t j :
             pool.odd_columns(static_cast<std::size_t>(candidates_[c].pool_row))) {
            const auto at = static_cast<std::size_t>(j);
            if (bounds[at].distance <= negligible) {
                continue;
            }
            if (seen[at].count++ == 0) {
                used.push_back(j);
            }
            seen[at].signature ^= mixed(c);
            seen[at].last = c;
        }
    }
    column_map element(bounds.size());
    values_.assign(1, 0.0);
    changes_.assign(1, {});
    std::unordered_map<std::uint64_t, std::int32_t> known;
    for (const std::int32_t j : used) {
        const auto at = static_cast<std::size_t>(j);
        const double value = std::min(bounds[at].distance, far_away);
        const parity_change change = change_of(model, j, bounds[at]);
        if (seen[at].count == 1) {
            candidate& only = candidates_[seen[at].last];
            only.slack += value;
            only.change = cheaper(only.change, change);
            continue;
        }
        const auto [place, is_new] =
            known.emplace(seen[at].signature, static_cast<std::int32_t>(values_.size()));
        if (is_new) {
            element[at] = place->second;
            values_.push_back(value);
            changes_.push_back(change);
        } else {
            const auto first = static_cast<std::size_t>(place->second);
            values_[first] += value;
            changes_[first] = cheaper(changes_[first], change);
        }
    }
    columns_ = static_cast<std::int32_t>(values_.size()) - 1;
    return element;
}

/// Of two rows with equal odd columns: whether the first can replace the second in every sum.
bool parity_system::is_at_least_as_good(const candidate& a, const candidate& b) {
    return a.slack <= b.slack && a.slack + a.change.cost <= b.slack + b.change.cost;
}

void parity_system::drop_candidates(const row_pool& pool, const column_map& element) {
    std::unordered_map<std::uint64_t, std::size_t> best;
    std::size_t kept = 0;
    for (const candidate& each : candidates_) {
        if (each.slack >= slack_limit) {
            continue;
        }
        std::uint64_t signature = each.is_odd ? mixed(0) : 0;
        for (const std::int32_t j : pool.odd_columns(static_cast<std::size_t>(each.pool_row))) {
            const std::int32_t e = element[static_cast<std::size_t>(j)];
            signature ^= e != 0 ? mixed(static_cast<std::uint64_t>(e)) : 0;
        }
        if (signature == 0 && each.change.column == 0) {
            continue;
        }
        const auto [place, is_new] = best.emplace(signature, kept);
        candidate& other = candidates_[place->second];
        if (is_new || !is_at_least_as_good(other, each)) {
            if (!is_new && is_at_least_as_good(each, other)) {
                other = each;
            } else {
                candidates_[kept++] = each;
            }
        }
    }
    candidates_.resize(kept);
}

void parity_system::fill_rows(const row_pool& pool, const column_map& element) {
    starts_.assign(1, 0);
    for (const candidate& each : candidates_) {
        for (const std::int32_t j : pool.odd_columns(static_cast<std::size_t>(each.pool_row))) {
            if (const std::int32_t e = element[static_cast<std::size_t>(j)]; e != 0) {
                entries_.push_back(e);
            }
        }
        starts_.push_back(entries_.size());
        values_.push_back(each.slack);
        changes_.push_back(each.change);
    }
}

} // namespace zero_half
