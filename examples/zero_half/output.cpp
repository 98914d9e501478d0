#include "output.hpp"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>

#include <CoinMpsIO.hpp>
#include <nlohmann/json.hpp>

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

/// Cuts as rows over columns counted from 0.
CoinPackedMatrix cut_rows(const solved_model& of) {
    CoinPackedMatrix rows(false, 0.0, 0.0);
    rows.setDimensions(0, of.from.column_count());
    std::vector<int> columns;
    std::vector<double> values;
    for (std::size_t i = of.run.first_cut; i < of.run.pool.size(); ++i) {
        const sparse_vector& a = of.run.pool[i].coefficients;
        columns.clear();
        values.clear();
        for (std::int32_t k = 1; k <= a.size(); ++k) {
            columns.push_back(a.index(k) - 1);
            values.push_back(a.value(a.index(k)));
        }
        rows.appendRow(static_cast<int>(columns.size()), columns.data(), values.data());
    }
    return rows;
}

/// Names that no row has yet.
void name_cuts(std::vector<std::string>& rows, std::size_t count) {
    const std::set<std::string> taken(rows.begin(), rows.end());
    std::string prefix = "ZH";
    while (std::any_of(taken.begin(), taken.end(),
                       [&](const std::string& each) { return each.rfind(prefix, 0) == 0; })) {
        prefix += "_";
    }
    for (std::size_t i = 1; i <= count; ++i) {
        rows.push_back(prefix + std::to_string(i));
    }
}

} // namespace

void print_table(const std::deque<solved_model>& all) {
    int width = 5;
    for (const solved_model& each : all) {
        width = std::max(
            width,
            static_cast<int>(std::filesystem::path(each.from.file).filename().string().size()));
    }
    std::printf("%-*s %6s %8s %14s %14s %14s %8s %6s %8s  %s\n", width, "model", "rows", "columns",
                "LP bound", "bound", "optimum", "gap %", "cuts", "seconds", "end");
    for (const solved_model& each : all) {
        const run_result& run = each.run;
        std::printf("%-*s %6d %8d %14s %14s %14s %8s %6zu %8.2f  %s\n", width,
                    std::filesystem::path(each.from.file).filename().c_str(), each.from.row_count(),
                    each.from.column_count(), number_or_dash(run.first_bound, 4).c_str(),
                    number_or_dash(run.bound, 4).c_str(), number_or_dash(run.optimum, 4).c_str(),
                    number_or_dash(run.gap_closed(run.bound), 2).c_str(), run.cuts(), run.seconds,
                    description(run.how));
    }
}

void write_model(const solved_model& of, const std::string& file) {
    const model& from = of.from;
    CoinPackedMatrix rows = from.rows;
    rows.bottomAppendPackedMatrix(cut_rows(of));
    std::vector<double> row_lower = from.row_lower;
    std::vector<double> row_upper = from.row_upper;
    for (std::size_t i = of.run.first_cut; i < of.run.pool.size(); ++i) {
        row_lower.push_back(-no_bound);
        row_upper.push_back(of.run.pool[i].right);
    }
    std::vector<std::string> row_names = from.row_names;
    name_cuts(row_names, of.run.cuts());
    CoinMpsIO writer;
    writer.messageHandler()->setLogLevel(0);
    writer.setInfinity(no_bound);
    writer.setMpsData(rows, no_bound, from.lower.data(), from.upper.data(), from.objective.data(),
                      from.is_integer.data(), row_lower.data(), row_upper.data(), from.column_names,
                      row_names);
    writer.setProblemName(from.name.c_str());
    writer.setObjectiveOffset(-from.constant);
    constexpr int not_compressed = 0;
    constexpr int all_digits = 1;
    if (writer.writeMps(file.c_str(), not_compressed, all_digits) != 0) {
        throw trouble(file + ": cannot be written");
    }
}

namespace {

/// Members stay in the order in which they are written here.
using json = nlohmann::ordered_json;

json number_or_null(const std::optional<double>& value) {
    return value && std::isfinite(*value) ? json(*value) : json(nullptr);
}

json record_of(const round_figures& of) {
    return {{"round", of.round},
            {"bound", of.bound},
            {"gap_closed_percent", number_or_null(of.gap_closed)},
            {"cuts_found", of.cuts_found},
            {"cuts_kept", of.cuts_kept},
            {"separation_ms", of.separation_ms},
            {"lp_ms", of.relaxation_ms},
            {"seconds", of.seconds}};
}

json record_of(const solved_model& of) {
    const run_result& run = of.run;
    json rounds = json::array();
    for (const round_figures& each : run.rounds) {
        rounds.push_back(record_of(each));
    }
    return {{"file", of.from.file},
            {"rows", of.from.row_count()},
            {"columns", of.from.column_count()},
            {"lp_bound", number_or_null(run.first_bound)},
            {"bound", number_or_null(run.bound)},
            {"optimum", number_or_null(run.optimum)},
            {"gap_closed_percent", number_or_null(run.gap_closed(run.bound))},
            {"cuts_kept", run.cuts()},
            {"seconds", run.seconds},
            {"status", name(run.how)},
            {"rounds", rounds}};
}

} // namespace

void write_json(const std::deque<solved_model>& all, const std::string& file) {
    json models = json::array();
    for (const solved_model& each : all) {
        models.push_back(record_of(each));
    }
    std::ofstream out(file);
    // A file's name need not be UTF-8.
    out << json{{"models", models}}.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
    if (!out.flush()) {
        throw trouble(file + ": cannot be written");
    }
}

namespace {

/// Text in single quotes, as gnuplot reads it.
std::string quoted(const std::string& text) {
    std::string made = "'";
    for (const char c : text) {
        made += c == '\'' ? "''" : std::string(1, c);
    }
    return made + "'";
}

/// Two columns: the number of the round and the seconds; and the bound.
void send_data(std::FILE* to, const run_result& of) {
    std::fprintf(to, "$bounds << end_of_bounds\n0 0 %.17g\n", of.first_bound.value_or(0.0));
    for (const round_figures& each : of.rounds) {
        std::fprintf(to, "%d %.6f %.17g\n", each.round, each.seconds, each.bound);
    }
    std::fprintf(to, "end_of_bounds\n");
}

void send_panel(std::FILE* to, const run_result& of, const std::string& label, int column) {
    std::fprintf(to, "set xlabel '%s'\nplot $bounds using %d:3 with linespoints title 'bound'",
                 label.c_str(), column);
    if (of.optimum) {
        std::fprintf(to, ", %.17g with lines dashtype 2 title 'optimum'", *of.optimum);
    }
    std::fprintf(to, "\n");
}

} // namespace

void write_plot(const std::deque<solved_model>& all, const std::string& file) {
    // Where gnuplot is missing, writing to it must not end this process; its exit status tells.
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    std::FILE* const gnuplot = ::popen("gnuplot 2>/dev/null", "w");
    if (gnuplot == nullptr) {
        throw trouble(file + ": gnuplot cannot be started");
    }
    const std::size_t panels = all.size();
    std::fprintf(gnuplot,
                 "set terminal svg size 1000,%zu\nset output %s\nset multiplot layout %zu,2\n"
                 "set key right bottom\nset xtics nomirror\nset ytics nomirror\nset border 3\n",
                 300 * panels, quoted(file).c_str(), panels);
    for (const solved_model& each : all) {
        const std::string title = std::filesystem::path(each.from.file).filename().string();
        std::fprintf(gnuplot, "set title %s noenhanced\n", quoted(title).c_str());
        send_data(gnuplot, each.run);
        send_panel(gnuplot, each.run, "round", 1);
        send_panel(gnuplot, each.run, "seconds", 2);
    }
    std::fprintf(gnuplot, "unset multiplot\n");
    const int status = ::pclose(gnuplot);
    std::signal(SIGPIPE, before);
    if (status != 0) {
        throw trouble(file + ": gnuplot is missing or cannot write it");
    }
}

} // namespace zero_half
