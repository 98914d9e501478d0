#pragma once

#include <array>
#include <cstddef>

namespace zero_half {

/// Why a run ended.
enum class ending {
    integral,
    gap_closed,
    no_cut_found,
    no_integer_point,
    no_progress,
    rounds_used,
    time_used,
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
inline constexpr std::array<ending_text, 10> ending_texts = {{
    {ending::integral, "integral", "integral", "the optimum of the relaxation is integral"},
    {ending::gap_closed, "gap_closed", "closed", "the requested share of the gap is closed"},
    {ending::no_cut_found, "no_cut_found", "no-cut", "no violated cut was found"},
    {ending::no_integer_point, "no_integer_point", "infeasible",
     "the cuts leave no point, so there is no integer point"},
    {ending::no_progress, "no_progress", "stalled",
     "several rounds in succession did not raise the bound"},
    {ending::rounds_used, "rounds_used", "rounds", "the limit of rounds was reached"},
    {ending::time_used, "time_used", "time", "the time limit was reached"},
    {ending::interrupted, "interrupted", "interrupt", "the user interrupted the run"},
    {ending::stopped_by_output_function, "stopped_by_output_function", "stopped",
     "the output function stopped the run"},
    {ending::numeric_error, "numeric_error", "numeric",
     "the relaxation with the last cuts could not be decided"},
}};

constexpr const ending_text& text_of(ending reason) {
    return ending_texts[static_cast<std::size_t>(reason)];
}

} // namespace zero_half
