#include "command_line.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <CLI/CLI.hpp>

namespace zero_half {

namespace {

/// CLI11 accepts `nan` and `inf` as numbers, and finds `nan` in every range.
std::string check_finite(const std::string& text) {
    return std::isfinite(std::strtod(text.c_str(), nullptr)) ? "" : text + " is not finite";
}

std::string check_picture(const std::string& file) {
    const std::string suffix = std::filesystem::path(file).extension().string();
    return suffix == ".svg" || suffix == ".png" ? "" : "the name of a picture ends in .svg or .png";
}

/// An empty name comes from an unset variable of a shell. A file called - would surprise.
std::string check_output(const std::string& file) {
    return file.empty()  ? "the name of an output file is empty"
           : file == "-" ? "the standard output is called /dev/stdout"
                         : "";
}

/// Whether writing one of the files changes the other.
bool are_same_file(const std::string& a, const std::string& b) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (fs::exists(a, ignored) && fs::exists(b, ignored)) {
        return fs::is_regular_file(a, ignored) && fs::equivalent(a, b, ignored);
    }
    return fs::weakly_canonical(a, ignored) == fs::weakly_canonical(b, ignored);
}

/// Throws when an output would overwrite a model or another output.
void check_files(const command_line& options) {
    std::vector<std::string> before = options.files;
    if (std::count(before.begin(), before.end(), "-") > 1) {
        throw CLI::ValidationError("the standard input can be read only once");
    }
    for (const std::string& output :
         {options.json_file, options.cuts_file, options.certificate_file, options.plot_file}) {
        for (const std::string& other : before) {
            if (!output.empty() && are_same_file(output, other)) {
                throw CLI::ValidationError("writing " + output + " would overwrite " + other);
            }
        }
        if (!output.empty()) {
            before.push_back(output);
        }
    }
}

/// Explains the words in the last column of the table.
std::string legend() {
    std::string text = "The column `end` of the table says why a run ended:\n";
    for (const ending_text& each : ending_texts) {
        char row[120];
        std::snprintf(row, sizeof row, "  %-12s%s\n", each.word, each.description);
        text += row;
    }
    return text;
}

display display_of(const std::string& level) {
    return level == "off" ? display::off : level == "final" ? display::final : display::iter;
}

void declare_options(CLI::App& app, command_line& options, std::string& display_level) {
    app.add_option("model", options.files,
                   "MPS files, plain or compressed, or LP files (.lp); - is standard input")
        ->required();
    app.add_option("--rounds", options.run.rounds, "Maximum number of rounds for each model")
        ->check(CLI::Range(0, 1'000'000))
        ->capture_default_str();
    app.add_option("--time-limit", options.run.seconds, "Time limit for each model, in seconds")
        ->check(CLI::Range(0.0, 1e9))
        ->check(check_finite)
        ->capture_default_str();
    app.add_option("--seed", options.run.seed, "Seed of the random numbers")->capture_default_str();
    app.add_option("--display", display_level,
                   "off, final, iter: print nothing, the table, each round")
        ->check(CLI::IsMember({"off", "final", "iter"}).description(""))
        ->capture_default_str();
    app.add_option("--stop-at-gap", options.run.stop_at_gap,
                   "Stop when this share of the gap to the optimum is closed, in per cent")
        ->check(CLI::Range(0.0, 100.0))
        ->check(check_finite)
        ->capture_default_str();
    app.add_option("--optimum", options.run.optimum,
                   "Integer optimum of the only model; default: from optima.csv beside it")
        ->check(check_finite);
    app.add_option("--cuts", options.cuts_file, "Write the only model with its cuts as MPS")
        ->check(check_output);
    app.add_option("--certificate", options.certificate_file,
                   "Write the derivation of the cuts of the only model, for check_cuts")
        ->check(check_output);
    app.add_option("--json", options.json_file, "Write all figures as JSON")->check(check_output);
    app.add_option("--plot", options.plot_file, "Draw the bounds as .svg or .png, by gnuplot")
        ->check(check_picture);
    app.set_version_flag("--version", "zero_half " ZERO_HALF_VERSION);
    app.failure_message([](const CLI::App*, const CLI::Error& found) {
        return std::string("zero_half: ") + found.what() + "; see zero_half --help\n";
    });
    app.footer(legend() +
               "\nExit status: 0 success, 1 an error in a file or a model, 2 wrong usage,\n"
               "130 interrupted; the results up to then are written in each case.");
}

} // namespace

bool parse(int argc, char** argv, command_line& options, int& status) {
    CLI::App app(
        "Tightens the relaxations of integer programs by zero-half cuts, round after round.",
        "zero_half");
    std::string display_level = "iter";
    declare_options(app, options, display_level);
    try {
        app.parse(argc, argv);
        if (options.files.size() > 1 && (options.run.optimum || !options.cuts_file.empty() ||
                                         !options.certificate_file.empty())) {
            throw CLI::ValidationError("--optimum, --cuts and --certificate are for one model");
        }
        check_files(options);
    } catch (const CLI::ParseError& found) {
        status = app.exit(found) == 0 ? success : wrong_usage;
        return false;
    }
    options.run.show = display_of(display_level);
    return true;
}

} // namespace zero_half
