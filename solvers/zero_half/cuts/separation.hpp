#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "cuts/cut_selection.hpp"
#include "cuts/descent.hpp"
#include "cuts/elimination.hpp"
#include "cuts/integral_rows.hpp"

namespace zero_half {

struct separation_options {
    /// Eliminations, each in another order, while the sums found are not enough.
    int restarts = 10;
    std::size_t enough = 200;
    /// The most promising sums become cuts, up to so many.
    std::size_t most_cuts = 100;
    /// Where no cut is found otherwise, systems of up to so many rows are looked through harder.
    std::size_t small_system = 300;
    double least_violation = 1e-6;
    selection_options selection = {};
};

/// Finds zero-half cuts: sums of rows, halved and rounded down (Caprara and Fischetti 1996).
class separator {
public:
    /// `should_stop` is asked now and then; what has been found by then is what there is.
    separator(const model& from, zktarn::random::rng_state& random,
              std::function<bool()> should_stop, const separation_options& options = {});

    /// The best of the cuts found that `point` violates, of the rows of `pool`.
    std::vector<cut> find(std::span<const integral_row> pool, const double* point);
    /// How many cuts were found last, the best and the others.
    std::size_t found() const { return found_; }

private:
    void search();
    /// False where the search was exact, or the system is too large for it.
    bool search_harder();
    std::vector<cut> violated_cuts(std::span<const integral_row> pool, const double* point);
    void add_rounded_rows(std::vector<cut>& to, std::span<const integral_row> pool,
                          const double* point);
    void add_if_violated(std::vector<cut>& to, std::optional<cut> made, const double* point) const;

    const model& from_;
    separation_options options_;
    std::vector<substitution> bounds_;
    parity_system system_;
    odd_sums sums_;
    elimination elimination_;
    descent descent_;
    derivation derivation_;
    cut_selection selection_;
    std::size_t found_ = 0;
};

} // namespace zero_half
