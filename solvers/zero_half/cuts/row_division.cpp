#include "cuts/row_division.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>

#include "cuts/integers.hpp"

namespace zero_half {

namespace {

/// The residue from 0 to `divisor` - 1.
std::int64_t modulo(std::int64_t a, std::int64_t divisor) {
    const std::int64_t rest = a % divisor;
    return rest < 0 ? rest + divisor : rest;
}

std::int64_t as_integer(double value) {
    return static_cast<std::int64_t>(value);
}

substitution lower_bound_of(const mixed_integer_rows& model, std::int32_t column, double value) {
    const double bound = model.lower[static_cast<std::size_t>(column) - 1];
    return std::fabs(bound) <= largest_exact
               ? substitution{bound, std::max(0.0, value - bound), false}
               : substitution{};
}

substitution upper_bound_of(const mixed_integer_rows& model, std::int32_t column, double value) {
    const double bound = model.upper[static_cast<std::size_t>(column) - 1];
    return std::fabs(bound) <= largest_exact
               ? substitution{bound, std::max(0.0, bound - value), true}
               : substitution{};
}

} // namespace

/// Splits the row into columns between their bounds and columns at a bound. Returns false when
/// numbers are too large to be exact, and when no column is between its bounds, because then no cut
/// is violated.
bool row_division::load(std::size_t row, const double* point,
                        const std::vector<substitution>& nearest) {
    constexpr double negligible = 1e-9;
    const auto columns = pool_.columns(row);
    const auto coefficients = pool_.coefficients(row);
    free_.clear();
    cover_.clear();
    double rhs = pool_.rhs(row);
    double magnitude = std::fabs(rhs);
    for (std::size_t k = 0; k < columns.size(); ++k) {
        const double a = coefficients[k];
        const substitution& bound = nearest[static_cast<std::size_t>(columns[k])];
        if (std::fabs(a) > largest_coefficient) {
            return false;
        }
        if (bound.distance > negligible) {
            const double value = point[columns[k] - 1];
            free_.push_back({k, as_integer(a), lower_bound_of(model_, columns[k], value),
                             upper_bound_of(model_, columns[k], value)});
        } else {
            if (std::fabs(a) >= 2.0 && (a > 0.0) == bound.is_upper) {
                cover_.push_back(as_integer(std::fabs(a)));
            }
            rhs -= a * bound.bound;
            magnitude += std::fabs(a * bound.bound);
        }
    }
    if (free_.empty() || magnitude > largest_exact) {
        return false;
    }
    rhs_ = as_integer(rhs);
    return true;
}

/// Adds a divisor unless it was added before or there are `most` divisors.
void row_division::add_divisor(std::int64_t divisor, std::size_t most) {
    if (divisor >= 2 && divisors_.size() < most &&
        std::find(divisors_.begin(), divisors_.end(), divisor) == divisors_.end()) {
        divisors_.push_back(divisor);
    }
}

/// Takes the coefficients of the columns between their bounds as divisors, those farthest from a
/// bound first, and then half as many of `cover_`, the greatest first.
void row_division::collect_divisors(std::size_t most_divisors) {
    candidates_.clear();
    for (const free_column& each : free_) {
        candidates_.emplace_back(-std::min(each.low.distance, each.up.distance),
                                 -std::abs(each.coefficient));
    }
    std::sort(candidates_.begin(), candidates_.end());
    std::sort(cover_.begin(), cover_.end(), std::greater<>());
    divisors_.clear();
    for (const auto& [distance, divisor] : candidates_) {
        add_divisor(-divisor, most_divisors);
    }
    const std::size_t most = divisors_.size() + most_divisors / 2;
    for (const std::int64_t divisor : cover_) {
        add_divisor(divisor, most);
    }
}

/// Adds the term of a column at the bound at which the term is less. Returns false when the column
/// has no bound and needs one.
bool row_division::add_term(const free_column& each) {
    const std::int64_t residue = modulo(each.coefficient, divisor_);
    if (residue == 0) {
        terms_.push_back({0, each.low.is_bounded() ? each.low : each.up, {}, 0.0, 0});
        return true;
    }
    const auto k = static_cast<double>(divisor_);
    const double low_cost = each.low.distance * static_cast<double>(residue) / k;
    const double up_cost = each.up.distance * static_cast<double>(divisor_ - residue) / k;
    const bool is_up = up_cost < low_cost;
    term added{residue, is_up ? each.up : each.low, is_up ? each.low : each.up,
               std::fabs(up_cost - low_cost), 0};
    if (!added.used.is_bounded()) {
        return false;
    }
    const auto share = [&](const substitution& bound) {
        return residue * modulo(as_integer(bound.bound), divisor_) % divisor_;
    };
    cost_ += std::min(low_cost, up_cost);
    residue_ = modulo(residue_ - share(added.used), divisor_);
    if (added.other.is_bounded()) {
        added.change = modulo(share(added.used) - share(added.other), divisor_);
    }
    terms_.push_back(added);
    return true;
}

/// The column whose change to its other bound increases the violation most; null if none does.
row_division::term* row_division::best_change() {
    constexpr double least_gain = 1e-6;
    const auto k = static_cast<double>(divisor_);
    term* best = nullptr;
    double most = least_gain;
    for (term& each : terms_) {
        const std::int64_t sum = residue_ + each.change;
        const std::int64_t growth = sum >= divisor_ ? each.change - divisor_ : each.change;
        const double gain = static_cast<double>(growth) / k - each.cost;
        if (each.change != 0 && gain > most) {
            most = gain;
            best = &each;
        }
    }
    return best;
}

/// Changes columns to their other bounds, one after the other, while the violation grows.
void row_division::improve() {
    constexpr int most_changes = 5;
    for (int i = 0; i < most_changes; ++i) {
        term* const changed = best_change();
        if (changed == nullptr) {
            return;
        }
        residue_ = modulo(residue_ + changed->change, divisor_);
        cost_ += changed->cost;
        std::swap(changed->used, changed->other);
        changed->cost = -changed->cost;
        changed->change = divisor_ - changed->change;
    }
}

/// Computes the terms of all columns for a divisor. Returns false when a column lacks a bound that
/// the division needs.
bool row_division::try_divisor(std::int64_t divisor) {
    divisor_ = divisor;
    terms_.clear();
    cost_ = 0.0;
    residue_ = modulo(rhs_, divisor);
    for (const free_column& each : free_) {
        if (!add_term(each)) {
            return false;
        }
    }
    improve();
    return true;
}

/// For each entry of the row the substitution that the current division uses.
std::vector<substitution>
row_division::used_bounds(std::size_t row, const std::vector<substitution>& nearest) const {
    const auto columns = pool_.columns(row);
    std::vector<substitution> used;
    used.reserve(columns.size());
    for (const std::int32_t j : columns) {
        used.push_back(nearest[static_cast<std::size_t>(j)]);
    }
    for (std::size_t i = 0; i < free_.size(); ++i) {
        used[free_[i].place] = terms_[i].used;
    }
    return used;
}

/// The Euclidean norm of the coefficients of the cut; 1 if there are none.
double row_division::norm(std::size_t row, const std::vector<substitution>& used) const {
    const auto coefficients = pool_.coefficients(row);
    double square = 0.0;
    for (std::size_t k = 0; k < used.size(); ++k) {
        const double rounded = rounded_quotient(coefficients[k], divisor_, used[k].is_upper);
        square += rounded * rounded;
    }
    return std::max(1.0, std::sqrt(square));
}

std::optional<division> row_division::best_of(std::size_t row, double slack, const double* point,
                                              const std::vector<substitution>& nearest,
                                              std::size_t most_divisors, double least_violation) {
    if (!load(row, point, nearest)) {
        return std::nullopt;
    }
    collect_divisors(most_divisors);
    std::optional<division> best;
    for (const std::int64_t divisor : divisors_) {
        const auto k = static_cast<double>(divisor);
        const double own_slack = std::max(0.0, slack) / k;
        if (own_slack >= 1.0 || !try_divisor(divisor)) {
            continue;
        }
        const double violation = static_cast<double>(residue_) / k - own_slack - cost_;
        if (violation < least_violation || (best && violation <= best->efficacy)) {
            continue;
        }
        std::vector<substitution> used = used_bounds(row, nearest);
        const double efficacy = violation / norm(row, used);
        if (!best || efficacy > best->efficacy) {
            best = division{divisor, std::move(used), efficacy};
        }
    }
    return best;
}

} // namespace zero_half
