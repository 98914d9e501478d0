#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "cuts/integral_rows.hpp"
#include "input/model.hpp"
#include "run/bridge.hpp"

/// Tightening a relaxation round after round, in touch with the host.

namespace zero_half {

/// Why a run ended.
enum class ending {
    no_cut_found,
    integral,
    rounds_used,
    time_used,
    gap_closed,
    no_integer_point,
    stopped_by_output_function,
    interrupted,
    numeric_trouble,
};

/// In words, and as one word.
const char* description(ending how);
const char* name(ending how);

struct run_options {
    int rounds = 50;
    double seconds = 60.0;
    std::int32_t seed = 1;
    display show = display::iter;
    bool has_output_function = false;
    /// The integer optimum, where it is known, and the share of the gap in per cent at which to
    /// stop.
    std::optional<double> optimum = {};
    double stop_at_gap = 100.0;
};

/// The figures of one printed line.
struct round_figures {
    int round;
    double bound;
    std::optional<double> gap_closed;
    std::size_t cuts_found;
    std::size_t cuts_kept;
    double separation_ms;
    double relaxation_ms;
    /// Since the run began.
    double seconds;
};

struct run_result {
    /// Of the relaxation without cuts, and of the last one solved; none when the run was over
    /// before.
    std::optional<double> first_bound = {};
    std::optional<double> bound = {};
    std::optional<double> optimum = {};
    ending how = ending::no_cut_found;
    double seconds = 0.0;
    std::vector<round_figures> rounds = {};
    /// The rows of the model made integral, and behind them the cuts.
    std::vector<integral_row> pool = {};
    std::size_t first_cut = 0;

    std::size_t cuts() const { return pool.size() - first_cut; }
    /// The share of the gap between first bound and optimum that a bound closes, in per cent; none
    /// for an optimum below the first bound, which is no optimum.
    std::optional<double> gap_closed(std::optional<double> by) const;
};

/// Tightens the relaxation of a model. Throws `trouble` when that is infeasible, unbounded or
/// cannot be solved.
run_result tighten(const model& from, const run_options& options);

} // namespace zero_half
