#pragma once

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
    numeric_error,
};

/// A sentence for people, and the name that the JSON report uses.
const char* description(ending reason);
const char* name(ending reason);

} // namespace zero_half
