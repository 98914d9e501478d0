/// The command line program: reads models, tightens their relaxations, writes the results.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <deque>
#include <exception>
#include <new>
#include <string>

#include <unistd.h>

#include <CoinError.hpp>

#include "command_line.hpp"
#include "input/error.hpp"
#include "input/read_model.hpp"
#include "output/output.hpp"
#include "run/bridge.hpp"
#include "run/run.hpp"
#include "zktarn_standin/arrays.hpp"
#include "zktarn_standin/control.hpp"
#include "zktarn_standin/interrupts.hpp"

namespace {

using namespace zero_half;

void print_error(const std::string& sentence) {
    std::fprintf(stderr, "zero_half: %s\n", sentence.c_str());
}

/// Shows the last round in one line of the terminal, which is overwritten each time.
void show_progress(const zktarn::standin::array_value& info) {
    if (info.field("phase").text() == "done") {
        std::fprintf(stderr, "\r\033[K");
    } else {
        std::fprintf(stderr, "\rround %.0f, bound %.6g\033[K", info.field("round").scalar(),
                     info.field("bound").scalar());
    }
}

/// Registers the output function with the host. It shows progress on a terminal where the display
/// is the table alone.
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

/// Called at the start, so that an interrupt before the first poll is not lost. A program that was
/// started with SIGINT ignored continues to ignore it.
void listen_for_interrupts() {
    struct sigaction installed = {};
    ::sigaction(SIGINT, nullptr, &installed);
    if (installed.sa_handler != SIG_IGN) {
        zktarn::standin::listen_for_sigint(true);
    }
}

/// Thrown when the user interrupts the reading of a file.
struct interrupted_reading {};

/// Reads a model and tightens its relaxation. Throws `error` and
/// `interrupted_reading`.
solved_model solve(const std::string& file, run_options options, bool is_first) {
    const auto start = std::chrono::steady_clock::now();
    if (!options.optimum) {
        options.optimum = known_optimum(file);
    }
    const auto seconds = [start] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    const bridge host(display::off, false);
    try {
        model program =
            read_model(file, [&] { return host.is_interrupted() || seconds() >= options.seconds; });
        options.seconds_used = seconds();
        if (options.show == display::iter) {
            std::printf("%s%s%s\n", is_first ? "" : "\n", file.c_str(),
                        program.is_maximised ? " (maximisation)" : "");
            std::fflush(stdout);
        }
        run_result run = tighten(program, options);
        return {std::move(program), std::move(run)};
    } catch (const stopped&) {
        if (host.is_interrupted()) {
            throw interrupted_reading();
        }
        throw error(file + ": the time limit was reached before the file was read");
    } catch (const CoinError& found) { // does not derive from std::exception
        throw error(file + ": " + found.message());
    } catch (const std::bad_alloc&) {
        throw error(file + ": there is not enough memory for it");
    }
}

/// Solves one model after the other. An error in one does not prevent the next.
int solve_all(const command_line& options, std::deque<solved_model>& models) {
    int status = success;
    for (const std::string& file : options.files) {
        try {
            models.push_back(solve(file, options.run, models.empty()));
        } catch (const interrupted_reading&) {
            return interrupted;
        } catch (const std::exception& found) {
            print_error(found.what());
            status = failure;
            continue;
        }
        const run_result& run = models.back().run;
        if (run.reason == ending::interrupted) {
            return interrupted;
        }
        if (const std::string fault = run.fault(); !fault.empty()) {
            print_error(file + ": " + fault);
            status = failure;
        }
    }
    return status;
}

/// Calls `write` with the file unless its name is empty. Returns the status, or `failure` after
/// success and an error.
template <class Write>
int write_to(const std::string& file, int status, Write write) {
    if (file.empty()) {
        return status;
    }
    try {
        write(file);
    } catch (const std::exception& found) {
        print_error(found.what());
        return status == success ? failure : status;
    }
    return status;
}

int write_all(const command_line& options, const std::deque<solved_model>& models, int status) {
    status = write_to(options.json_file, status,
                      [&](const std::string& file) { write_json(models, options.run, file); });
    if (models.empty()) {
        return status;
    }
    if (options.run.show != display::off) {
        std::printf("%s", options.run.show == display::iter ? "\n" : "");
        std::printf("%s", table_of(models, output_width()).c_str());
    }
    status = write_to(options.cuts_file, status,
                      [&](const std::string& file) { write_model(models.front(), file); });
    status = write_to(options.certificate_file, status,
                      [&](const std::string& file) { write_certificate(models.front(), file); });
    return write_to(options.plot_file, status,
                    [&](const std::string& file) { write_plot(models, file); });
}

int execute(const command_line& options) {
    std::deque<solved_model> models;
    const int status = solve_all(options, models);
    return write_all(options, models, status);
}

} // namespace

int main(int argc, char** argv) {
    command_line options;
    int status = success;
    if (!parse(argc, argv, options, status)) {
        return status;
    }
    listen_for_interrupts();
    register_output_function(options.run.show);
    options.run.has_output_function = true;
    status = execute(options);
    // All models are destroyed by now, so the report shows what was not released.
    if (options.run.show == display::iter) {
        std::printf("%s", zktarn::standin::memory_report().c_str());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        print_error("the standard output cannot be written");
        return status == success ? failure : status;
    }
    return status;
}
