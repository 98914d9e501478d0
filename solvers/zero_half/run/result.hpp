#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cuts/row_pool.hpp"
#include "run/ending.hpp"

namespace zero_half {

/// The figures of one round, as in one printed line.
struct round_figures {
    int round;
    /// The bounds of the model and of the relaxation, as in the result.
    double bound;
    double relaxation_bound;
    std::size_t cuts_found;
    std::size_t cuts_kept;
    /// Processor time.
    double separation_ms;
    double relaxation_ms;
    /// Elapsed since the run began.
    double seconds;
};

struct run_result {
    /// Whether the file maximises. Bounds are then upper bounds, in the sense of the file.
    bool is_maximised = false;
    /// The bound of the relaxation without cuts, and that of the last relaxation. Nothing when the
    /// run ended before the first relaxation was solved.
    std::optional<double> first_bound = {};
    std::optional<double> relaxation_bound = {};
    /// The bound of the model: that of the last relaxation, moved to the next value that the
    /// objective takes at integer points.
    std::optional<double> bound = {};
    /// The integer optimum: as the caller gave it, or the bound when the optimum of the relaxation
    /// is integral. Nothing when it is unknown.
    std::optional<double> optimum = {};
    ending reason = ending::no_cut_found;
    /// Elapsed time, including the time to read the model.
    double seconds = 0.0;
    /// Processor time of the run, without the time of other programs.
    double cpu_seconds = 0.0;
    std::int32_t seed = 1;
    std::vector<round_figures> rounds = {};
    /// The rows of the model made integral, followed by all violated cuts that were found.
    row_pool pool = {};
    std::size_t first_cut = 0;
    /// The rows of the pool that are cuts of the last relaxation. The other cuts were not selected,
    /// or were dropped because they had become slack.
    std::vector<std::size_t> cuts = {};
    /// The optimum of the last relaxation that was solved. Where it is integral, its integer
    /// columns are rounded, and it satisfies all rows. Empty when no relaxation was solved.
    std::vector<double> point = {};
    /// Whether the point is integral with the bound as its objective, so an optimum of the model.
    bool is_integral = false;

    /// The share of the gap between the first bound and the optimum that `reached` closes, in per
    /// cent, at most 100. Nothing without an optimum, or when `is_optimum_wrong`.
    std::optional<double> gap_closed(std::optional<double> reached) const;
    /// Whether the run disproves the optimum that the caller gave: it is beyond a bound, or there
    /// is no integer point.
    bool is_optimum_wrong() const;
    /// A warning about the result, in one sentence: the last relaxation could not be decided, or
    /// the given optimum is wrong. Empty without such an error.
    std::string fault() const;
};

} // namespace zero_half
