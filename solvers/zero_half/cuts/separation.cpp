#include "cuts/separation.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "cuts/searches.hpp"

namespace zero_half {

namespace {

/// Stands for the slack of a row that is to be left out.
constexpr double too_much_slack = 2.0;

cut cut_of_pool_row(const row_pool& pool, std::size_t row, double slack) {
    const auto columns = pool.columns(row);
    const auto coefficients = pool.coefficients(row);
    double square = 0.0;
    for (const double each : coefficients) {
        square += each * each;
    }
    cut made;
    made.columns.assign(columns.begin(), columns.end());
    made.coefficients.assign(coefficients.begin(), coefficients.end());
    made.rhs = pool.rhs(row);
    made.violation = -slack;
    made.norm = std::sqrt(square);
    made.pool_row = row;
    return made;
}

void add_single_rows(const parity_system& system, odd_sums& sums) {
    std::vector<std::int32_t> odd;
    for (std::size_t i = 0; i < system.rows(); ++i) {
        const auto columns = system.odd_columns(i);
        odd.assign(columns.begin(), columns.end());
        odd.push_back(system.slack_of(i));
        sums.add_if_violated(odd, system.is_odd(i));
    }
}

} // namespace

separator::separator(const mixed_integer_rows& model, const zktarn::random::rng_state& random,
                     stop_predicate should_stop, const separation_options& options)
    : model_(model), random_(random), should_stop_(std::move(should_stop)), options_(options),
      pool_(integral_rows_of(model)), model_rows_(pool_.size()), is_in_use_(pool_.size(), 1),
      rounding_(model_, pool_), division_(model_, pool_), selection_(model_, options.selection),
      limits_(options.normal) {}

std::vector<std::size_t> separator::find(const double* point, effort wanted) {
    limits_ = wanted == effort::normal ? options_.normal : options_.thorough;
    set_budget();
    const separated_point place = look_at(point);
    std::vector<cut> cuts = violated_rows(place);
    const std::size_t known = cuts.size();
    add_divided_rows(place, cuts);
    add_new_cuts(place, cuts);
    if (cuts.size() == known && count_cuts(false) > 0) {
        add_sums(system_of(place, rows_to_use::all), place, cuts);
    }
    found_ = cuts.size();
    put_into_pool(cuts);
    // Rows of the model that rounding tightened are no denser than before: all are selected.
    std::vector<std::size_t> selected;
    std::erase_if(cuts, [&](const cut& each) {
        const bool is_model_row = *each.pool_row < model_rows_;
        if (is_model_row) {
            selected.push_back(*each.pool_row);
        }
        return is_model_row;
    });
    for (const cut& each : selection_.select(std::move(cuts))) {
        selected.push_back(*each.pool_row);
        is_in_use_[*each.pool_row] = 1;
    }
    selected_ = selected.size();
    return selected;
}

/// If the selection takes few of the cuts, the next call makes fewer: making a cut costs more than
/// finding its sum, and the most promising sums come first. If it takes many, the next call makes
/// more.
void separator::set_budget() {
    constexpr std::size_t sums_for_each_cut = 2;
    most_cuts_ = std::clamp(limits_.cuts_for_each_selected * selected_, limits_.least_cuts,
                            options_.most_cuts);
    enough_ = sums_for_each_cut * most_cuts_;
}

void separator::truncate(std::size_t count) {
    pool_.truncate(count);
    is_in_use_.resize(count);
}

separator::separated_point separator::look_at(const double* point) const {
    separated_point place{point, nearest_bounds(model_, point), {}};
    place.slacks.resize(pool_.size());
    for (std::size_t i = 0; i < pool_.size(); ++i) {
        place.slacks[i] = pool_.slack(i, point);
    }
    return place;
}

/// The violated rows of the pool: cuts that were dropped from the relaxation, and rows of the model
/// that became tighter when they were made integral.
std::vector<cut> separator::violated_rows(const separated_point& place) const {
    std::vector<cut> violated;
    for (std::size_t i = 0; i < pool_.size(); ++i) {
        if (place.slacks[i] <= -options_.least_violation) {
            violated.push_back(cut_of_pool_row(pool_, i, place.slacks[i]));
        }
    }
    return violated;
}

/// The number of cuts of the pool that are in use or, if `in_use` is false, that are not.
std::ptrdiff_t separator::count_cuts(bool in_use) const {
    return std::count(is_in_use_.begin() + static_cast<std::ptrdiff_t>(model_rows_),
                      is_in_use_.end(), in_use ? 1 : 0);
}

parity_system separator::system_of(const separated_point& place, rows_to_use rows) const {
    if (rows == rows_to_use::all) {
        return parity_system(model_, pool_, place.slacks, place.bounds);
    }
    if (rows == rows_to_use::of_model) {
        return parity_system(model_, pool_, std::span(place.slacks).first(model_rows_),
                             place.bounds);
    }
    std::vector<double> slacks = place.slacks;
    for (std::size_t i = 0; i < slacks.size(); ++i) {
        slacks[i] = is_in_use_[i] != 0 ? slacks[i] : too_much_slack;
    }
    return parity_system(model_, pool_, slacks, place.bounds);
}

/// Blossoms are sums of rows of the model alone: with cuts, a column is in more than two rows. If
/// there are blossoms, one of them is the most violated sum of rows of the model.
void separator::add_new_cuts(const separated_point& place, std::vector<cut>& cuts) {
    const parity_system model_system = system_of(place, rows_to_use::of_model);
    if (model_system.columns() > 0 && is_column_graph(model_system)) {
        odd_sums sums(model_system, enough_);
        find_blossoms(model_system, should_stop_, sums);
        add_cuts_of(sums, place, cuts);
        if (sums.size() > 0 && !limits_.continues_after_blossoms) {
            return;
        }
    }
    if (count_cuts(true) == 0) {
        add_sums(model_system, place, cuts);
    } else {
        add_sums(system_of(place, rows_to_use::in_use), place, cuts);
    }
}

/// Adds the best violated cut of each single row in use, divided by an integer.
void separator::add_divided_rows(const separated_point& place, std::vector<cut>& cuts) {
    const std::size_t count = limits_.divides_cuts ? pool_.size() : model_rows_;
    for (std::size_t i = 0; i < count && !should_stop_(); ++i) {
        const auto found = is_in_use_[i] == 0
                               ? std::nullopt
                               : division_.best_of(i, place.slacks[i], place.values, place.bounds,
                                                   limits_.divisors, options_.least_violation);
        if (!found) {
            continue;
        }
        std::optional<cut> made = rounding_.divided_row(static_cast<std::int32_t>(i),
                                                        found->divisor, found->used, place.values);
        if (made && made->violation >= options_.least_violation) {
            cuts.push_back(std::move(*made));
        }
    }
}

void separator::add_sums(const parity_system& system, const separated_point& place,
                         std::vector<cut>& cuts) {
    odd_sums sums(system, enough_);
    add_single_rows(system, sums);
    find_odd_cycles(system, should_stop_, sums);
    find_further_sums(system, sums);
    add_cuts_of(sums, place, cuts);
}

/// Runs eliminations and, if they find nothing, a greedy search. In a graph every violated sum
/// consists of odd cycles, so without an odd cycle there is nothing to find.
void separator::find_further_sums(const parity_system& system, odd_sums& sums) const {
    if (system.is_row_graph() && sums.size() == 0) {
        return;
    }
    for (int i = 0; i < most_restarts(system, sums) && !sums.are_enough() && !should_stop_(); ++i) {
        find_by_elimination(system, random_, should_stop_, sums);
    }
    if (sums.size() == 0 && system.rows() <= options_.small_system) {
        find_by_greedy_search(system, should_stop_, sums);
    }
}

/// Eliminations continue while they find nothing, because a round without a cut may end the run and
/// they are cheap in comparison.
int separator::most_restarts(const parity_system& system, const odd_sums& sums) const {
    if (system.is_row_graph()) {
        return limits_.restarts_in_graphs;
    }
    return sums.size() > 0 ? limits_.restarts : limits_.restarts_without_sums;
}

void separator::add_cuts_of(odd_sums& sums, const separated_point& place, std::vector<cut>& cuts) {
    constexpr std::size_t always_allowed = 50'000;
    const std::size_t most_entries =
        always_allowed + options_.most_entries * model_.entry_columns.size();
    std::size_t entries = 0;
    sums.sort();
    const std::size_t before = cuts.size();
    for (std::size_t i = 0; i < sums.size() && cuts.size() - before < most_cuts_ &&
                            entries < most_entries && !should_stop_();
         ++i) {
        const odd_sum sum = sums[i];
        for (const std::int32_t row : sum.rows) {
            entries += pool_.columns(static_cast<std::size_t>(row)).size();
        }
        std::optional<cut> made = rounding_.halved_sum(sum, place.bounds, place.values);
        if (made && made->violation >= options_.least_violation) {
            cuts.push_back(std::move(*made));
        }
    }
}

void separator::put_into_pool(std::vector<cut>& cuts) {
    for (cut& each : cuts) {
        if (!each.pool_row) {
            each.pool_row = pool_.size();
            pool_.add(each.columns, each.coefficients, each.rhs, std::move(each.origin));
            is_in_use_.push_back(0);
        }
    }
}

} // namespace zero_half
