// What solver_families.py runs:
//
//     solver_tuning optimum MODEL SECONDS          the optimum by Cbc, or "unknown"
//     solver_tuning run MODEL SEED SECONDS [NAME=VALUE...]
//
// `run` prints the bound without cuts, the last bound, rounds and processor seconds, with constants
// of the separation and of the run set as given; `constants` below has their names.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include <CbcModel.hpp>
#include <CbcSolver.hpp>

#include "cbc/comparison.hpp"
#include "input/error.hpp"
#include "input/read_model.hpp"
#include "run/run.hpp"

namespace {

using namespace zero_half;

std::size_t count(double value) {
    return static_cast<std::size_t>(value);
}

const std::map<std::string, std::function<void(run_options&, double)>> constants = {
    {"restarts", [](auto& o, double v) { o.separation.normal.restarts = static_cast<int>(v); }},
    {"cuts_for_each_selected",
     [](auto& o, double v) { o.separation.normal.cuts_for_each_selected = count(v); }},
    {"least_cuts", [](auto& o, double v) { o.separation.normal.least_cuts = count(v); }},
    {"divisors", [](auto& o, double v) { o.separation.normal.divisors = count(v); }},
    {"divides_cuts", [](auto& o, double v) { o.separation.normal.divides_cuts = v != 0.0; }},
    {"small_system", [](auto& o, double v) { o.separation.small_system = count(v); }},
    {"selected", [](auto& o, double v) { o.separation.selection.passes[0].target = count(v); }},
    {"max_cosine", [](auto& o, double v) { o.separation.selection.passes[0].max_cosine = v; }},
    {"most_stalled_rounds", [](auto& o, double v) { o.most_stalled_rounds = static_cast<int>(v); }},
    {"most_slack_rounds", [](auto& o, double v) { o.most_slack_rounds = static_cast<int>(v); }},
    {"most_other_points", [](auto& o, double v) { o.most_other_points = static_cast<int>(v); }},
};

void set(run_options& options, const std::string& assignment) {
    const std::size_t sign = assignment.find('=');
    const auto found = constants.find(assignment.substr(0, sign));
    if (sign == std::string::npos || found == constants.end()) {
        throw std::runtime_error("'" + assignment + "' sets no constant");
    }
    found->second(options, std::atof(assignment.c_str() + sign + 1));
}

int print_optimum(const model& program, const char* seconds) {
    CbcModel search(loaded(program));
    CbcSolverUsefulData settings;
    CbcMain0(search, settings);
    const char* arguments[] = {"cbc", "-log",   "0", "-sec",   seconds, "-ratio",
                               "0",   "-allow", "0", "-solve", "-quit"};
    CbcMain1(11, arguments, search, nullptr, settings);
    if (search.isProvenOptimal() && search.bestSolution() != nullptr) {
        std::printf("%.12g\n", program.in_sense_of_file(search.getObjValue() + program.constant));
    } else {
        std::printf("unknown\n");
    }
    return 0;
}

int print_run(const model& program, int argc, char** argv) {
    run_options options;
    options.show = display::off;
    options.seed = std::atoi(argv[3]);
    options.seconds = std::atof(argv[4]);
    for (int i = 5; i < argc; ++i) {
        set(options, argv[i]);
    }
    const run_result run = tighten(program, options);
    std::printf("%.12g %.12g %zu %.4f\n", run.first_bound.value_or(0.0), run.bound.value_or(0.0),
                run.rounds.size(), run.cpu_seconds);
    return 0;
}

} // namespace

int main(int argc, char** argv) try {
    const std::string kind = argc > 1 ? argv[1] : "";
    if (kind == "optimum" && argc == 4) {
        return print_optimum(read_model(argv[2]), argv[3]);
    }
    if (kind == "run" && argc >= 5) {
        return print_run(read_model(argv[2]), argc, argv);
    }
    std::fprintf(stderr, "usage: solver_tuning optimum MODEL SECONDS\n"
                         "       solver_tuning run MODEL SEED SECONDS [NAME=VALUE...]\n");
    return 2;
} catch (const std::exception& found) {
    std::fprintf(stderr, "solver_tuning: %s\n", found.what());
    return 1;
}
