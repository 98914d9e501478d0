/// Solves models by Cbc without zero-half cuts, with those of CglZeroHalf and with those of
/// zero_half, and prints nodes, time and root bound side by side.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <CoinError.hpp>

#include "cbc/comparison.hpp"
#include "input/error.hpp"
#include "input/read_model.hpp"

namespace {

using namespace zero_half;

enum exit_status { success = 0, failure = 1, wrong_usage = 2 };

struct command_line {
    std::vector<std::string> files;
    comparison_options comparison;
    int seeds = 1;
    std::string csv_file;
    std::string json_file;
};

std::string check_finite(const std::string& text) {
    return std::isfinite(std::strtod(text.c_str(), nullptr)) ? "" : text + " is not finite";
}

void declare_options(CLI::App& app, command_line& options) {
    app.add_option("model", options.files,
                   "MPS files, plain or compressed, or LP files (.lp); - is standard input")
        ->required();
    app.add_option("--time-limit", options.comparison.seconds,
                   "Seconds of processor time for each run of Cbc")
        ->check(CLI::Range(0.0, 1e9))
        ->check(check_finite)
        ->capture_default_str();
    app.add_option("--every", options.comparison.every,
                   "Separate at every k-th node, in the variants that separate in the tree")
        ->check(CLI::Range(1, 1'000'000))
        ->capture_default_str();
    app.add_option("--seeds", options.seeds, "Solve each model with the seeds 1 to N")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    app.add_flag("--plain", options.comparison.is_plain,
                 "Without Cbc's other cuts, its preprocessing and its heuristics");
    app.add_option("--csv", options.csv_file, "Write all runs as CSV");
    app.add_option("--json", options.json_file, "Write all runs as JSON");
    app.set_version_flag("--version", "zero_half_cbc " ZERO_HALF_VERSION);
    app.failure_message([](const CLI::App*, const CLI::Error& found) {
        return std::string("zero_half_cbc: ") + found.what() + "; see zero_half_cbc --help\n";
    });
    app.footer(
        "The optimum of a model must be the same in all variants, and the one in optima.csv\n"
        "beside it. Exit status: 0 success, 1 an error in a file or different optima, 2 wrong\n"
        "usage. Reaching the time limit is not an error.");
}

void print_error(const std::string& sentence) {
    std::fprintf(stderr, "zero_half_cbc: %s\n", sentence.c_str());
}

compared_model compare(const std::string& file, const model& program, comparison_options options) {
    compared_model compared{file, options.seed, program.is_maximised, known_optimum(file), {}};
    for (const variant& each : variants()) {
        compared.results.push_back(solve_by_cbc(program, each, options));
    }
    return compared;
}

/// Compares with all seeds, and prints the results.
void compare_all_seeds(const std::string& file, const command_line& options,
                       std::vector<compared_model>& models) {
    const model program = read_model(file);
    for (int seed = 1; seed <= options.seeds; ++seed) {
        comparison_options chosen = options.comparison;
        chosen.seed = seed;
        models.push_back(compare(file, program, chosen));
        std::printf("%s", table_of(models.back()).c_str());
        std::fflush(stdout);
    }
}

int compare_all(const command_line& options, std::vector<compared_model>& models) {
    int status = success;
    for (const std::string& file : options.files) {
        try {
            compare_all_seeds(file, options, models);
        } catch (const CoinError& found) { // does not derive from std::exception
            print_error(file + ": " + found.message());
            status = failure;
        } catch (const std::bad_alloc&) {
            print_error(file + ": there is not enough memory for it");
            status = failure;
        } catch (const std::exception& found) {
            print_error(found.what());
            status = failure;
        }
    }
    return status;
}

int report(const command_line& options, const std::vector<compared_model>& models, int status) {
    for (const compared_model& each : models) {
        if (const std::string sentence = each.contradiction(); !sentence.empty()) {
            print_error(each.file + ": " + sentence);
            status = failure;
        }
    }
    try {
        if (!options.csv_file.empty()) {
            write_csv(models, options.csv_file);
        }
        if (!options.json_file.empty()) {
            write_json(models, options.comparison, options.json_file);
        }
    } catch (const error& found) {
        print_error(found.what());
        status = failure;
    }
    return status;
}

} // namespace

int main(int argc, char** argv) {
    command_line options;
    CLI::App app("Solves integer programs by Cbc with no zero-half cuts, with those of CglZeroHalf "
                 "and with those of zero_half.",
                 "zero_half_cbc");
    declare_options(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& found) {
        return app.exit(found) == 0 ? success : wrong_usage;
    }
    std::vector<compared_model> models;
    std::printf("%s", heading_of_table().c_str());
    int status = compare_all(options, models);
    if (!models.empty()) {
        std::printf("%s", summary_of(models).c_str());
    }
    status = report(options, models, status);
    if (!models.empty() && status == success) {
        std::printf("The optima are the same in all variants.\n");
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        print_error("the standard output cannot be written");
        return failure;
    }
    return status;
}
