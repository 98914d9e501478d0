/// Tightens the relaxations of integer programs by zero-half cuts.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <CoinError.hpp>

#include "input/optima.hpp"
#include "output/output.hpp"
#include "run/tightener.hpp"
#include "zktarn_standin/arrays.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using namespace zero_half;

enum exit_status { done = 0, something_wrong = 1, wrong_usage = 2, interrupted = 130 };

struct command_line {
    std::vector<std::string> files;
    run_options run;
    std::string display_level = "iter";
    std::string cuts_file;
    std::string json_file;
    std::string plot_file;
};

void complain(const std::string& sentence) {
    std::fprintf(stderr, "zero_half: %s\n", sentence.c_str());
}

/// The parser takes `nan` and `inf` for numbers, and finds the former in every range.
std::string finite(const std::string& text) {
    return std::isfinite(std::strtod(text.c_str(), nullptr)) ? "" : text + " is not finite";
}

display level_of(const std::string& name) {
    return name == "off" ? display::off : name == "final" ? display::final : display::iter;
}

/// Describes the options to the parser.
void declare(CLI::App& app, command_line& to) {
    app.add_option("model", to.files, "MPS files, plain or compressed")->required();
    app.add_option("--rounds", to.run.rounds, "At most so many rounds a model")
        ->check(CLI::Range(0, 1'000'000))
        ->capture_default_str();
    app.add_option("--time-limit", to.run.seconds, "Seconds for each model")
        ->check(CLI::Range(0.0, 1e9))
        ->check(finite)
        ->capture_default_str();
    app.add_option("--seed", to.run.seed, "Seed of the random numbers")->capture_default_str();
    app.add_option("--display", to.display_level,
                   "off, final, iter: nothing, the table, every round")
        ->check(CLI::IsMember({"off", "final", "iter"}).description(""))
        ->capture_default_str();
    app.add_option("--stop-at-gap", to.run.stop_at_gap,
                   "Stop when so many per cent of the gap to the optimum are closed")
        ->check(CLI::Range(0.0, 100.0))
        ->check(finite)
        ->capture_default_str();
    app.add_option("--optimum", to.run.optimum,
                   "The integer optimum of the only model; else from optima.csv beside it")
        ->check(finite);
    app.add_option("--cuts", to.cuts_file, "Write the only model with its cuts as MPS");
    app.add_option("--json", to.json_file, "Write all figures as JSON");
    app.add_option("--plot", to.plot_file, "Draw the bounds as SVG, by gnuplot");
    app.set_version_flag("--version", "zero_half " ZERO_HALF_VERSION);
    app.failure_message([](const CLI::App*, const CLI::Error& found) {
        return std::string("zero_half: ") + found.what() + "; see zero_half --help\n";
    });
    app.footer(
        "Exit status: 0 all done, 1 something was wrong with a file or a model, 2 wrong usage,\n"
        "130 interrupted; what was computed by then is written all the same.");
}

/// One line on a terminal that each round writes over.
void show_progress(const zktarn::standin::array_value& info) {
    if (info.field("phase").text() == "done") {
        std::fprintf(stderr, "\r\033[K");
    } else {
        std::fprintf(stderr, "\rround %.0f, bound %.6g\033[K", info.field("round").scalar(),
                     info.field("bound").scalar());
    }
}

/// The host's side of the output function. Rounds that are printed need no further line, and who
/// wants to see nothing gets none.
void register_output_function(display show) {
    const bool is_live = show == display::final && ::isatty(STDERR_FILENO) != 0;
    zktarn::standin::set_function("tarnCallback",
                                  [is_live](const zktarn::standin::array_value& info) {
                                      if (is_live) {
                                          show_progress(info);
                                      }
                                      return 0;
                                  });
}

/// Whether a run ended well with a bound that fits the optimum; says so where not.
bool is_plausible(const solved_model& of) {
    const run_result& run = of.run;
    if (run.how == ending::numeric_trouble) {
        complain(of.from.file +
                 ": the relaxation with the cuts cannot be solved, its numbers are too "
                 "far apart; the bound is the last one that was reached");
        return false;
    }
    if (run.optimum && run.how == ending::no_integer_point) {
        complain(of.from.file + ": there is no integer point, but an optimum was given");
        return false;
    }
    if (run.optimum && run.bound &&
        *run.bound > *run.optimum + 1e-6 * (1.0 + std::fabs(*run.optimum))) {
        complain(of.from.file + ": the bound is above the optimum that was given, which cannot be");
        return false;
    }
    return true;
}

/// Reads a model and tightens its relaxation.
void solve_one(const std::string& file, run_options options, std::deque<solved_model>& all) {
    if (!options.optimum) {
        options.optimum = known_optimum(file);
    }
    try {
        model from = read_model(file);
        if (options.show == display::iter) {
            std::printf("%s%s\n", all.empty() ? "" : "\n", file.c_str());
            std::fflush(stdout);
        }
        run_result run = tighten(from, options);
        all.push_back({std::move(from), std::move(run)});
    } catch (const CoinError& found) { // is no std::exception
        throw trouble(file + ": " + found.message());
    } catch (const std::bad_alloc&) {
        throw trouble(file + ": there is not enough memory for it");
    }
}

/// Solves one model after the other; a bad one does not keep the others from it.
int solve_all(const command_line& given, std::deque<solved_model>& all) {
    int status = done;
    for (const std::string& file : given.files) {
        try {
            solve_one(file, given.run, all);
        } catch (const std::exception& found) {
            complain(found.what());
            status = something_wrong;
            continue;
        }
        if (all.back().run.how == ending::interrupted) {
            return interrupted;
        }
        if (!is_plausible(all.back())) {
            status = something_wrong;
        }
    }
    return status;
}

template <class Write>
int write_to(const std::string& file, int status, Write write) {
    if (file.empty()) {
        return status;
    }
    try {
        write(file);
    } catch (const std::exception& found) {
        complain(found.what());
        return status == done ? something_wrong : status;
    }
    return status;
}

int write_all(const command_line& given, const std::deque<solved_model>& all, int status) {
    status =
        write_to(given.json_file, status, [&](const std::string& file) { write_json(all, file); });
    if (all.empty()) {
        return status;
    }
    if (given.run.show != display::off) {
        std::printf("%s", given.run.show == display::iter ? "\n" : "");
        print_table(all);
    }
    status = write_to(given.cuts_file, status,
                      [&](const std::string& file) { write_model(all.front(), file); });
    return write_to(given.plot_file, status,
                    [&](const std::string& file) { write_plot(all, file); });
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app(
        "Tightens the relaxations of integer programs by zero-half cuts, round after round.",
        "zero_half");
    command_line given;
    declare(app, given);
    try {
        app.parse(argc, argv);
        if (given.files.size() > 1 && (given.run.optimum || !given.cuts_file.empty())) {
            throw CLI::ValidationError("--optimum and --cuts are for one model");
        }
    } catch (const CLI::ParseError& found) {
        return app.exit(found) == 0 ? done : wrong_usage;
    }
    given.run.show = level_of(given.display_level);
    register_output_function(given.run.show);
    given.run.has_output_function = true;
    int status = done;
    {
        std::deque<solved_model> all;
        status = solve_all(given, all);
        status = write_all(given, all, status);
    }
    if (given.run.show == display::iter) {
        std::printf("%s", zktarn::standin::memory_report().c_str());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        complain("the standard output cannot be written");
        return status == done ? something_wrong : status;
    }
    return status;
}
