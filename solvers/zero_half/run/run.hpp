#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cuts/row_pool.hpp"
#include "cuts/separation.hpp"
#include "input/memory.hpp"
#include "input/model.hpp"

/// A run on one model: its options, its result, and the function that executes it.

namespace zero_half {

/// What is printed. The values are the host's codes.
enum class display : std::int32_t { off = 0, final = 1, iter = 2 };

struct run_options {
    int rounds = 1000;
    double seconds = 60.0;
    /// The part of these seconds that was used before the run, to read the model.
    double seconds_used = 0.0;
    /// Seed of the host's generator.
    std::int32_t seed = 1;
    display show = display::iter;
    bool has_output_function = false;
    /// The integer optimum; empty if it is unknown.
    std::optional<double> optimum = {};
    /// The run ends when this share of the gap between relaxation and optimum is closed, in per
    /// cent.
    double stop_at_gap = 100.0;
    /// The run ends after so many rounds in succession that did not raise the bound.
    int most_stalled_rounds = 15;
    /// Cuts that were slack for so many rounds are dropped.
    int most_slack_rounds = 5;
    /// The maximum number of other vertices of the optimal face that a round separates.
    int most_other_points = 40;
    separation_options separation = {};
    /// The bytes that may still be allocated. The run ends before a round that may need more.
    std::function<std::optional<std::uint64_t>()> memory_left = [] { return available_memory(); };
};

/// Why a run ended.
enum class ending {
    integral,
    gap_closed,
    no_cut_found,
    no_integer_point,
    no_progress,
    rounds_used,
    time_used,
    memory_used,
    interrupted,
    stopped_by_output_function,
    numeric_error,
};

struct ending_text {
    ending reason;
    /// The name in the JSON report, the word in the table, and the sentence that explains it.
    const char* name;
    const char* word;
    const char* description;
};

/// All endings, in the order of the enumeration.
inline constexpr std::array<ending_text, 11> ending_texts = {{
    {ending::integral, "integral", "integral", "the optimum of the relaxation is integral"},
    {ending::gap_closed, "gap_closed", "closed", "the requested share of the gap is closed"},
    {ending::no_cut_found, "no_cut_found", "no-cut", "no violated cut was found"},
    {ending::no_integer_point, "no_integer_point", "infeasible",
     "the cuts leave no point, so there is no integer point"},
    {ending::no_progress, "no_progress", "stalled",
     "several rounds in succession did not raise the bound"},
    {ending::rounds_used, "rounds_used", "rounds", "the limit of rounds was reached"},
    {ending::time_used, "time_used", "time", "the time limit was reached"},
    {ending::memory_used, "memory_used", "memory",
     "a further round may need more memory than is left"},
    {ending::interrupted, "interrupted", "interrupt", "the user interrupted the run"},
    {ending::stopped_by_output_function, "stopped_by_output_function", "stopped",
     "the output function stopped the run"},
    {ending::numeric_error, "numeric_error", "numeric",
     "the relaxation with the last cuts could not be decided"},
}};

constexpr const ending_text& text_of(ending reason) {
    return ending_texts[static_cast<std::size_t>(reason)];
}

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
    /// Whether the point is an optimum of the model: integral, with the bound as its objective.
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

/// Tightens the relaxation of a model by cuts, round after round, and reports each round to the
/// host. Throws `error` when the relaxation is infeasible, unbounded or cannot be solved.
run_result tighten(const model& program, const run_options& options);

} // namespace zero_half
