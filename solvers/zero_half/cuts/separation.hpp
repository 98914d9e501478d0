#pragma once

#include <optional>
#include <span>
#include <vector>

#include "cuts/cg_rounding.hpp"
#include "cuts/cut_selection.hpp"
#include "cuts/elimination.hpp"
#include "cuts/integral_rows.hpp"

namespace zero_half {

struct separation_options {
    /// The most eliminations; they end when `enough` sums are found.
    int restarts = 10;
    std::size_t enough = 200;
    /// The most sums that are made into cuts, the most promising first.
    std::size_t most_cuts = 100;
    /// The greedy search is used where nothing else finds a cut, in systems with at most this many
    /// rows.
    std::size_t small_system = 300;
    double least_violation = 1e-6;
    selection_options selection = {};
};

/// Finds zero-half cuts: sums of rows, halved and rounded down (Caprara and Fischetti 1996).
class separator {
public:
    /// After `should_stop` returns true, `find` returns the cuts found by then. The model and the
    /// generator have to outlive the separator.
    separator(const model& program, const zktarn::random::rng_state& random,
              stop_predicate should_stop, const separation_options& options = {});

    /// Cuts from rows of `pool` that `point` violates, and selected from all that were found. The
    /// rows of the model come first in the pool.
    std::vector<cut> find(std::span<const integral_row> pool, const double* point);
    /// The number of violated cuts that the last call found before the selection.
    std::size_t found() const { return found_; }

private:
    void search();
    bool search_harder();
    std::vector<cut> violated_cuts(std::span<const integral_row> pool, const double* point);
    void add_divided_rows(std::span<const integral_row> pool, const double* point,
                          std::vector<cut>& cuts) const;
    void add_if_violated(std::optional<cut> candidate, const double* point,
                         std::vector<cut>& cuts) const;

    const model& model_;
    stop_predicate should_stop_;
    separation_options options_;
    std::vector<substitution> bounds_;
    parity_system system_;
    odd_sums sums_;
    elimination elimination_;
    cg_rounding rounding_;
    cut_selection selection_;
    std::size_t found_ = 0;
};

} // namespace zero_half
