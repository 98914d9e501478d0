#pragma once

#include <optional>
#include <vector>

#include "cuts/cg_rounding.hpp"
#include "cuts/cut_selection.hpp"
#include "cuts/odd_sums.hpp"
#include "cuts/row_division.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// How much work a search may do.
struct search_limits {
    /// The maximum number of eliminations: where sums are found, while none is found, and in a
    /// system in which shortest odd cycles are exact.
    int restarts;
    int restarts_without_sums;
    int restarts_in_graphs;
    /// How many sums are made into cuts, the most promising first: a number for each cut that the
    /// previous call selected, and at least `least_cuts`.
    std::size_t cuts_for_each_selected;
    std::size_t least_cuts;
    /// Whether further searches follow where blossoms, which are exact, were found.
    bool continues_after_blossoms;
    /// The most divisors that are tried for each row, and whether cuts in use are divided too.
    std::size_t divisors;
    bool divides_cuts;
};

/// Normal effort is for a new point. Thorough effort takes several times as long and finds more,
/// and more varied, cuts; it is for a run whose bound does not rise.
enum class effort { normal, thorough };

struct separation_options {
    search_limits normal = {5, 10, 1, 3, 40, false, 8, false};
    search_limits thorough = {10, 40, 10, 5, 100, true, 24, true};
    std::size_t most_cuts = 1000;
    /// The most entries that the rows of the sums of a call may have, as a multiple of the entries
    /// of the model.
    std::size_t most_entries = 5;
    /// The greedy search is used where nothing else finds a cut, in systems with at most this many
    /// rows.
    std::size_t small_system = 300;
    double least_violation = 1e-6;
    selection_options selection = {};
};

/// Finds zero-half cuts: sums of rows, halved and rounded down (Caprara and Fischetti 1996). Where
/// rows have coefficients other than -1, 0 and 1, single rows are divided by other integers as
/// well.
///
/// The pool holds the rows of the model that can be made integral, followed by every violated cut
/// that was found. Cuts that the selection rejected become rows of further sums only if the other
/// rows give no cut, because they would slow down each search.
class separator {
public:
    /// After `should_stop` has returned true, `find` returns the cuts found so far. The arrays of
    /// the model and the generator must outlive the separator. Throws std::bad_alloc.
    separator(const mixed_integer_rows& model, const zktarn::random::rng_state& random,
              stop_predicate should_stop, const separation_options& options = {});
    separator(const separator&) = delete;
    separator& operator=(const separator&) = delete;

    /// Finds violated cuts and returns the selected ones, as rows of the pool.
    /// @param point  in. A value for each column of the model.
    ///
    /// A row of the pool that the point violates is returned again, whether it is new or not.
    std::vector<std::size_t> find(const double* point, effort wanted = effort::normal);

    const row_pool& pool() const { return pool_; }
    /// The first rows of the pool are made of rows of the model, the others are cuts.
    std::size_t model_rows() const { return model_rows_; }
    /// The number of violated cuts that the last call found before the selection.
    std::size_t found() const { return found_; }

    /// Removes the cuts after the first `count` rows of the pool.
    void truncate(std::size_t count);

private:
    /// A point, and what the searches need of it.
    struct separated_point {
        const double* values;
        /// For each column, counted from 1, its nearest bound.
        std::vector<substitution> bounds;
        /// For each row of the pool.
        std::vector<double> slacks;
    };

    /// Which rows of the pool a search adds up. A cut is in use once it was selected.
    enum class rows_to_use { of_model, in_use, all };

    separated_point look_at(const double* point) const;
    std::vector<cut> violated_rows(const separated_point& place) const;
    std::ptrdiff_t count_cuts(bool in_use) const;
    parity_system system_of(const separated_point& place, rows_to_use rows) const;
    void add_new_cuts(const separated_point& place, std::vector<cut>& cuts);
    void add_divided_rows(const separated_point& place, std::vector<cut>& cuts);
    void add_sums(const parity_system& system, const separated_point& place,
                  std::vector<cut>& cuts);
    void find_further_sums(const parity_system& system, odd_sums& sums) const;
    void add_cuts_of(odd_sums& sums, const separated_point& place, std::vector<cut>& cuts);
    void put_into_pool(std::vector<cut>& cuts);
    void set_budget();
    int most_restarts(const parity_system& system, const odd_sums& sums) const;

    mixed_integer_rows model_;
    const zktarn::random::rng_state& random_;
    stop_predicate should_stop_;
    separation_options options_;
    row_pool pool_;
    std::size_t model_rows_;
    /// For each row of the pool, whether it comes from the model or was selected once.
    std::vector<char> is_in_use_;
    cg_rounding rounding_;
    row_division division_;
    cut_selection selection_;
    std::size_t found_ = 0;
    /// The number of cuts that the previous call selected.
    std::size_t selected_ = 100;
    /// The limits of this call, the number of cuts that it makes, and the number of sums at which
    /// its searches end.
    search_limits limits_;
    std::size_t most_cuts_ = 0;
    std::size_t enough_ = 0;
};

} // namespace zero_half
