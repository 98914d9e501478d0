#include "output/plot.hpp"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "input/error.hpp"

namespace zero_half {

namespace {

bool is_control(char c) {
    return std::iscntrl(static_cast<unsigned char>(c)) != 0;
}

/// The text in single quotes, as gnuplot reads it. Control characters become '?', because a line
/// feed would start another command.
std::string quoted(const std::string& text) {
    std::string quotation = "'";
    for (const char c : text) {
        quotation += c == '\'' ? "''" : std::string(1, is_control(c) ? '?' : c);
    }
    return quotation + "'";
}

/// Three columns: the round, the seconds, the bound.
void send_data(std::FILE* gnuplot, const run_result& run) {
    std::fprintf(gnuplot, "$bounds << end_of_bounds\n");
    std::fprintf(gnuplot, "0 0 %.17g\n", *run.first_bound);
    for (const round_figures& figures : run.rounds) {
        std::fprintf(gnuplot, "%d %.6f %.17g\n", figures.round, figures.seconds, figures.bound);
    }
    std::fprintf(gnuplot, "end_of_bounds\n");
}

void send_panel(std::FILE* gnuplot, const run_result& run, const std::string& label, int column) {
    std::fprintf(gnuplot, "set xlabel '%s'\nplot $bounds using %d:3 with linespoints title 'bound'",
                 label.c_str(), column);
    if (run.optimum) {
        std::fprintf(gnuplot, ", %.17g with lines dashtype 2 title 'optimum'", *run.optimum);
    }
    std::fprintf(gnuplot, "\n");
}

} // namespace

void write_plot(const std::deque<solved_model>& models, const std::string& file) {
    // A name that starts with '|' is a command to gnuplot, and a line feed ends gnuplot's own one.
    if (file.front() == '|' || std::any_of(file.begin(), file.end(), is_control)) {
        throw error("a picture cannot have the name " + quoted(file));
    }
    const auto panels = static_cast<std::size_t>(
        std::count_if(models.begin(), models.end(), [](const solved_model& solved) {
            return solved.run.first_bound.has_value();
        }));
    if (panels == 0) {
        throw error(file + ": there is no bound to draw");
    }
    // gnuplot draws to its standard output when it cannot open the file. When gnuplot is missing,
    // writing to it must not end this process; its exit status reports that.
    const auto previous_handler = std::signal(SIGPIPE, SIG_IGN);
    std::FILE* const gnuplot = ::popen("gnuplot >/dev/null 2>&1", "w");
    if (gnuplot == nullptr) {
        throw error(file + ": gnuplot cannot be started");
    }
    std::fprintf(gnuplot,
                 "set terminal svg size 1000,%zu\nset output %s\nset multiplot layout %zu,2\n"
                 "set key right bottom\nset xtics nomirror\nset ytics nomirror\nset border 3\n",
                 300 * panels, quoted(file).c_str(), panels);
    for (const solved_model& solved : models) {
        if (!solved.run.first_bound) {
            continue;
        }
        const std::string title = std::filesystem::path(solved.program.file).filename().string();
        std::fprintf(gnuplot, "set title %s noenhanced\n", quoted(title).c_str());
        send_data(gnuplot, solved.run);
        send_panel(gnuplot, solved.run, "round", 1);
        send_panel(gnuplot, solved.run, "seconds", 2);
    }
    std::fprintf(gnuplot, "unset multiplot\n");
    const int status = ::pclose(gnuplot);
    std::signal(SIGPIPE, previous_handler);
    if (status != 0) {
        throw error(file + ": gnuplot is missing or cannot write it");
    }
}

} // namespace zero_half
