#include "output/output.hpp"

#include <cmath>
#include <fstream>

#include <nlohmann/json.hpp>

#include "input/error.hpp"

namespace zero_half {

namespace {

/// Keeps the members in the order in which they are written here.
using json = nlohmann::ordered_json;

json number_or_null(const std::optional<double>& value) {
    return value && std::isfinite(*value) ? json(*value) : json(nullptr);
}

json record_of(const round_figures& figures, const run_result& run) {
    return {{"round", figures.round},
            {"bound", figures.bound},
            {"relaxation_bound", figures.relaxation_bound},
            {"gap_closed_percent", number_or_null(run.gap_closed(figures.bound))},
            {"cuts_found", figures.cuts_found},
            {"cuts_kept", figures.cuts_kept},
            {"separation_ms", figures.separation_ms},
            {"lp_ms", figures.relaxation_ms},
            {"seconds", figures.seconds}};
}

json record_of(const solved_model& solved) {
    const run_result& run = solved.run;
    json rounds = json::array();
    for (const round_figures& figures : run.rounds) {
        rounds.push_back(record_of(figures, run));
    }
    return {{"file", solved.program.file},
            {"rows", solved.program.row_count()},
            {"columns", solved.program.column_count()},
            {"lp_bound", number_or_null(run.first_bound)},
            {"relaxation_bound", number_or_null(run.relaxation_bound)},
            {"bound", number_or_null(run.bound)},
            {"optimum", number_or_null(run.optimum)},
            {"gap_closed_percent", number_or_null(run.gap_closed(run.bound))},
            {"cuts_kept", run.cuts.size()},
            {"seconds", run.seconds},
            {"cpu_seconds", run.cpu_seconds},
            {"seed", run.seed},
            {"status", text_of(run.reason).name},
            {"rounds", rounds}};
}

} // namespace

void write_json(const std::deque<solved_model>& models, const run_options& options,
                const std::string& file) {
    json records = json::array();
    for (const solved_model& solved : models) {
        records.push_back(record_of(solved));
    }
    const json report = {{"version", ZERO_HALF_VERSION},
                         {"options",
                          {{"rounds", options.rounds},
                           {"time_limit", options.seconds},
                           {"seed", options.seed},
                           {"stop_at_gap", options.stop_at_gap}}},
                         {"models", records}};
    std::ofstream stream(file);
    // A file name may not be valid UTF-8; invalid bytes are replaced.
    stream << report.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
    if (!stream.flush()) {
        throw error(file + ": cannot be written");
    }
}

} // namespace zero_half
