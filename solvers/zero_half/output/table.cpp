#include "output/table.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>

namespace zero_half {

namespace {

std::string number_or_dash(const std::optional<double>& value, int decimals) {
    if (!value) {
        return "-";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, *value);
    return text;
}

std::string file_name(const solved_model& solved) {
    return std::filesystem::path(solved.program.file).filename().string();
}

} // namespace

void print_table(const std::deque<solved_model>& models) {
    int width = 5;
    for (const solved_model& solved : models) {
        width = std::max(width, static_cast<int>(file_name(solved).size()));
    }
    std::printf("%-*s %6s %8s %14s %14s %14s %8s %6s %8s  %s\n", width, "model", "rows", "columns",
                "LP bound", "bound", "optimum", "gap %", "cuts", "seconds", "end");
    for (const solved_model& solved : models) {
        const run_result& run = solved.run;
        std::printf("%-*s %6d %8d %14s %14s %14s %8s %6zu %8.2f  %s\n", width,
                    file_name(solved).c_str(), solved.program.row_count(),
                    solved.program.column_count(), number_or_dash(run.first_bound, 4).c_str(),
                    number_or_dash(run.bound, 4).c_str(), number_or_dash(run.optimum, 4).c_str(),
                    number_or_dash(run.gap_closed(run.bound), 2).c_str(), run.cuts(), run.seconds,
                    description(run.reason));
    }
}

} // namespace zero_half
