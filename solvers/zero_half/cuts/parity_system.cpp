#include "cuts/parity_system.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "cuts/hashing.hpp"

namespace zero_half {

namespace {

using namespace zktarn::vector_mod;

/// What is less is rounding of the relaxation's solver.
constexpr double negligible = 1e-9;
/// From a bound that is not there; infinities could not be subtracted again.
constexpr double far_away = 1e6;

} // namespace

void parity_row::clear() {
    odd.clear();
    is_odd = false;
}

void parity_row::add(const parity_row& other) {
    vectors_calc_sym_diff(*odd, *other.odd);
    is_odd = is_odd != other.is_odd;
}

void parity_rows::resize(std::size_t count, std::int32_t capacity) {
    if (capacity > capacity_) {
        rows_.clear();
        capacity_ = capacity + capacity / 2;
    }
    while (rows_.size() < count) {
        rows_.push_back({sparse_vector(capacity_, false)});
    }
    size_ = count;
}

void parity_system::build(std::span<const integral_row> pool,
                          const std::vector<substitution>& bounds, const double* point) {
    compute_slacks(pool, point);
    find_candidates(pool, bounds);
    look_at_columns(pool, bounds);
    number_columns(bounds);
    drop_candidates(pool);
    fill_rows(pool);
}

void parity_system::compute_slacks(std::span<const integral_row> pool, const double* point) {
    slacks_.clear();
    for (const integral_row& row : pool) {
        const sparse_vector& a = row.coefficients;
        double slack = row.right;
        for (std::int32_t k = 1; k <= a.size(); ++k) {
            const std::int32_t j = a.index(k);
            slack -= a.value(j) * point[j - 1];
        }
        slacks_.push_back(slack);
    }
}

/// Rows that do not give too much away by their slack alone.
void parity_system::find_candidates(std::span<const integral_row> pool,
                                    const std::vector<substitution>& bounds) {
    candidates_.clear();
    for (std::size_t i = 0; i < pool.size(); ++i) {
        if (slacks_[i] >= too_much_to_give) {
            continue;
        }
        double right = pool[i].right;
        const sparse_vector& odd = pool[i].odd;
        for (std::int32_t k = 1; k <= odd.size(); ++k) {
            right += bounds[static_cast<std::size_t>(odd.index(k))].bound;
        }
        candidates_.push_back({static_cast<int>(i), std::fmod(right, 2.0) != 0.0,
                               slacks_[i] < negligible ? 0.0 : slacks_[i]});
    }
}

void parity_system::look_at_columns(std::span<const integral_row> pool,
                                    const std::vector<substitution>& bounds) {
    looks_.assign(bounds.size(), {});
    seen_.clear();
    for (std::size_t c = 0; c < candidates_.size(); ++c) {
        const sparse_vector& odd = pool[static_cast<std::size_t>(candidates_[c].pool_row)].odd;
        for (std::int32_t k = 1; k <= odd.size(); ++k) {
            const auto j = static_cast<std::size_t>(odd.index(k));
            if (bounds[j].value <= negligible) {
                continue;
            }
            column_look& look = looks_[j];
            if (look.rows++ == 0) {
                seen_.push_back(odd.index(k));
            }
            look.signature ^= mixed(c);
            look.last_row = c;
        }
    }
}

/// A column at its bound gives nothing away; one that is in a single row goes with its slack; those
/// that are in the same rows are as good as one.
void parity_system::number_columns(const std::vector<substitution>& bounds) {
    element_.assign(bounds.size(), 0);
    values_.assign(1, 0.0);
    std::unordered_map<std::uint64_t, std::int32_t> known;
    known.reserve(seen_.size());
    for (const std::int32_t j : seen_) {
        const column_look& look = looks_[static_cast<std::size_t>(j)];
        const double value = std::min(bounds[static_cast<std::size_t>(j)].value, far_away);
        if (look.rows == 1) {
            candidates_[look.last_row].slack += value;
            continue;
        }
        const auto [place, is_new] =
            known.emplace(look.signature, static_cast<std::int32_t>(values_.size()));
        if (is_new) {
            element_[static_cast<std::size_t>(j)] = place->second;
            values_.push_back(value);
        } else {
            values_[static_cast<std::size_t>(place->second)] += value;
        }
    }
    columns_ = static_cast<std::int32_t>(values_.size()) - 1;
}

/// Of rows that are alike, the one with the least slack is enough.
void parity_system::drop_candidates(std::span<const integral_row> pool) {
    std::unordered_map<std::uint64_t, std::size_t> best;
    best.reserve(candidates_.size());
    std::size_t kept = 0;
    for (const candidate& each : candidates_) {
        if (each.slack >= too_much_to_give) {
            continue;
        }
        std::uint64_t signature = each.is_odd ? mixed(0) : 0;
        const sparse_vector& odd = pool[static_cast<std::size_t>(each.pool_row)].odd;
        for (std::int32_t k = 1; k <= odd.size(); ++k) {
            const std::int32_t element = element_[static_cast<std::size_t>(odd.index(k))];
            if (element != 0) {
                signature ^= mixed(static_cast<std::uint64_t>(element));
            }
        }
        if (signature == 0) {
            continue;
        }
        const auto [place, is_new] = best.emplace(signature, kept);
        if (is_new) {
            candidates_[kept++] = each;
        } else if (each.slack < candidates_[place->second].slack) {
            candidates_[place->second] = each;
        }
    }
    candidates_.resize(kept);
}

void parity_system::fill_rows(std::span<const integral_row> pool) {
    for (const candidate& each : candidates_) {
        values_.push_back(each.slack);
    }
    for (std::size_t element = signatures_.size(); element < values_.size(); ++element) {
        signatures_.push_back(mixed(element));
    }
    rows_.resize(candidates_.size(), elements());
    is_graph_ = true;
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
        parity_row& row = rows_[i];
        row.clear();
        const sparse_vector& odd = pool[static_cast<std::size_t>(candidates_[i].pool_row)].odd;
        for (std::int32_t k = 1; k <= odd.size(); ++k) {
            const std::int32_t element = element_[static_cast<std::size_t>(odd.index(k))];
            if (element != 0) {
                row.odd.include(element);
            }
        }
        is_graph_ = is_graph_ && row.odd.size() <= 2;
        row.odd.include(slack_of(i));
        row.is_odd = candidates_[i].is_odd;
    }
}

std::vector<substitution> nearest_bounds(const model& from, const double* point) {
    std::vector<substitution> all(static_cast<std::size_t>(from.column_count()) + 1);
    for (int i = 0; i < from.column_count(); ++i) {
        const auto j = static_cast<std::size_t>(i);
        substitution& at = all[j + 1];
        if (from.lower[j] > -no_bound) {
            at = {from.lower[j], std::max(0.0, point[i] - from.lower[j]), false};
        }
        if (from.upper[j] < no_bound && from.upper[j] - point[i] < at.value) {
            at = {from.upper[j], std::max(0.0, from.upper[j] - point[i]), true};
        }
    }
    return all;
}

} // namespace zero_half
