#include "output/output.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <utility>
#include <vector>

#include "input/error.hpp"

namespace zero_half {

namespace {

/// Sizes in pixels.
constexpr int width = 1000;
constexpr int row_height = 260;
constexpr int legend_height = 50;

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

struct time_unit {
    const char* name;
    double seconds;
};

/// A unit in which the duration is a number of one to four digits.
time_unit unit_for(double seconds) {
    constexpr double limit = 2.0; // of the next larger unit
    for (const time_unit& unit :
         {time_unit{"µs", 1e-6}, time_unit{"ms", 1e-3}, time_unit{"s", 1.0}}) {
        const double next = unit.seconds < 1.0 ? unit.seconds * 1e3 : 60.0;
        if (seconds < limit * next) {
            return unit;
        }
    }
    return {"min", 60.0};
}

/// The distance between marks on the axis of rounds, for at most eight marks: 1, 2 or 5 times a
/// power of ten.
int round_step(int rounds) {
    constexpr int most_marks = 8;
    for (int power = 1;; power *= 10) {
        for (const int factor : {1, 2, 5}) {
            if (rounds <= most_marks * factor * power) {
                return factor * power;
            }
        }
    }
}

/// Three columns: the round, the time, the bound.
void send_data(std::FILE* gnuplot, const run_result& run, const time_unit& unit) {
    std::fprintf(gnuplot, "$bounds << end_of_bounds\n0 0 %.17g\n", *run.first_bound);
    for (const round_figures& figures : run.rounds) {
        std::fprintf(gnuplot, "%d %.9g %.17g\n", figures.round, figures.seconds / unit.seconds,
                     figures.bound);
    }
    std::fprintf(gnuplot, "end_of_bounds\n");
}

constexpr const char* lp_bound_line = "lc rgb 'gray60' lw 1.5";
constexpr const char* optimum_line = "lc rgb 'black' lw 1 dashtype 2";
constexpr const char* bound_line = "lc rgb '#1f5fa8' lw 1.5";

/// The legend of the whole picture, in one row at the top. gnuplot draws it with the next panel.
void send_legend(std::FILE* gnuplot, long height) {
    const double y = 1.0 - 0.5 * legend_height / static_cast<double>(height);
    double x = 0.2;
    for (const auto& [text, style] :
         {std::pair("LP bound", lp_bound_line), std::pair("bound with cuts", bound_line),
          std::pair("optimum", optimum_line)}) {
        std::fprintf(
            gnuplot,
            "set arrow from screen %.3f, screen %.6f to screen %.3f, screen %.6f nohead %s\n"
            "set label '%s' at screen %.3f, screen %.6f left\n",
            x, y, x + 0.05, y, style, text, x + 0.06, y);
        x += 0.23;
    }
}

void send_panel(std::FILE* gnuplot, const run_result& run, int column) {
    std::fprintf(gnuplot, "plot %.17g with lines %s", *run.first_bound, lp_bound_line);
    if (run.optimum) {
        std::fprintf(gnuplot, ", %.17g with lines %s", *run.optimum, optimum_line);
    }
    std::fprintf(gnuplot, ", $bounds using %d:3 with linespoints %s pt 7 ps 0.4\n", column,
                 bound_line);
}

/// The two panels of a model.
void send_model(std::FILE* gnuplot, const run_result& run, const std::string& label) {
    const double seconds = run.rounds.empty() ? 0.0 : run.rounds.back().seconds;
    const time_unit unit = unit_for(seconds);
    const int rounds = std::max(1, static_cast<int>(run.rounds.size()));
    send_data(gnuplot, run, unit);
    std::fprintf(gnuplot, "set title %s noenhanced offset 0,-0.5\nset ylabel 'bound'\n",
                 quoted(label).c_str());
    std::fprintf(gnuplot, "set xlabel 'round'\nset xrange [0:%d]\nset xtics 0,%d nomirror\n",
                 rounds, round_step(rounds));
    send_panel(gnuplot, run, 1);
    std::fprintf(gnuplot,
                 "unset label\nunset arrow\nset xlabel 'time (%s)'\nset xrange [0:%.9g]\n"
                 "set xtics autofreq nomirror\n",
                 unit.name, std::max(1e-6, seconds / unit.seconds));
    send_panel(gnuplot, run, 2);
}

void send_picture(std::FILE* gnuplot, const std::deque<solved_model>& models,
                  const std::string& file) {
    const auto rows = std::count_if(models.begin(), models.end(), [](const solved_model& solved) {
        return solved.run.first_bound.has_value();
    });
    const bool is_png = file.size() >= 4 && file.compare(file.size() - 4, 4, ".png") == 0;
    const long height = row_height * rows + legend_height;
    // Margins in parts of the picture: below the last panel there are 60 pixels for its labels.
    const double top = 1.0 - (legend_height + 25.0) / static_cast<double>(height);
    std::fprintf(gnuplot,
                 "set encoding utf8\nset terminal %s size %d,%ld\nset output %s\n"
                 "set multiplot layout %ld,2 margins 0.1,0.98,%.6f,%.6f spacing 0.11,%.6f\n"
                 "unset key\nset border 3\nset ytics nomirror\nset format y '%%.8g'\n"
                 "set offsets 0,0,graph 0.06,graph 0.06\n",
                 is_png ? "pngcairo" : "svg", width, height, quoted(file).c_str(), rows,
                 60.0 / static_cast<double>(height), top, 100.0 / static_cast<double>(height));
    const std::vector<std::string> labels = labels_of(models);
    send_legend(gnuplot, height);
    for (std::size_t i = 0; i < models.size(); ++i) {
        if (models[i].run.first_bound) {
            send_model(gnuplot, models[i].run, labels[i]);
        }
    }
    std::fprintf(gnuplot, "unset multiplot\n");
}

} // namespace

void write_plot(const std::deque<solved_model>& models, const std::string& file) {
    // gnuplot runs a name that starts with '|' as a command, and a line feed ends its own command.
    if (file.front() == '|' || std::any_of(file.begin(), file.end(), is_control)) {
        throw error("a picture cannot have the name " + quoted(file));
    }
    if (std::none_of(models.begin(), models.end(), [](const solved_model& solved) {
            return solved.run.first_bound.has_value();
        })) {
        throw error(file + ": there is no bound to draw");
    }
    // gnuplot draws to its standard output when it cannot open the file. When gnuplot is missing,
    // writing to it must not end this process; its exit status reports that.
    const auto previous_handler = std::signal(SIGPIPE, SIG_IGN);
    std::FILE* const gnuplot = ::popen("gnuplot >/dev/null 2>&1", "w");
    if (gnuplot == nullptr) {
        throw error(file + ": gnuplot cannot be started");
    }
    send_picture(gnuplot, models, file);
    const int status = ::pclose(gnuplot);
    std::signal(SIGPIPE, previous_handler);
    if (status != 0) {
        throw error(file + ": gnuplot is missing or cannot write it");
    }
}

} // namespace zero_half
