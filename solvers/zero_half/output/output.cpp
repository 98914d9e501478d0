#include "output/output.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>

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

bool is_control(char c) {
    return std::iscntrl(static_cast<unsigned char>(c)) != 0;
}

/// Text in single quotes, as gnuplot reads it. A line feed would begin a command of its own.
std::string quoted(const std::string& text) {
    std::string made = "'";
    for (const char c : text) {
        made += c == '\'' ? "''" : std::string(1, is_control(c) ? '?' : c);
    }
    return made + "'";
}

/// Two columns: the number of the round and the seconds; and the bound.
void send_data(std::FILE* to, const run_result& of) {
    std::fprintf(to, "$bounds << end_of_bounds\n");
    std::fprintf(to, "0 0 %.17g\n", *of.first_bound);
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
    // A name with a bar in front is a command to gnuplot, and line feeds end its own.
    if (file.front() == '|' || std::any_of(file.begin(), file.end(), is_control)) {
        throw trouble("a picture cannot have the name " + quoted(file));
    }
    // What was stopped before its first bound has nothing to draw.
    const auto panels = static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(),
                      [](const solved_model& each) { return each.run.first_bound.has_value(); }));
    if (panels == 0) {
        throw trouble(file + ": there is no bound to draw");
    }
    // Where it cannot open its file it draws to its standard output. Where gnuplot is missing,
    // writing to it must not end this process; its exit status tells.
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    std::FILE* const gnuplot = ::popen("gnuplot >/dev/null 2>&1", "w");
    if (gnuplot == nullptr) {
        throw trouble(file + ": gnuplot cannot be started");
    }
    std::fprintf(gnuplot,
                 "set terminal svg size 1000,%zu\nset output %s\nset multiplot layout %zu,2\n"
                 "set key right bottom\nset xtics nomirror\nset ytics nomirror\nset border 3\n",
                 300 * panels, quoted(file).c_str(), panels);
    for (const solved_model& each : all) {
        if (!each.run.first_bound) {
            continue;
        }
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
