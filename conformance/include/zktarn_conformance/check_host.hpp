#pragma once

#include <optional>
#include <string>

/// The checks of a host, as procedures for a host that exists only inside its own process. Any
/// other host is checked by the program `zktarn_host_conformance`.
///
/// Each check prints one line to standard output. A process may run the checks once, on one thread.

namespace zktarn::host_conformance {

/// What the checks need to know of a host.
struct settings {
    /// The host-language function to call; none when empty. It receives the struct that `--help` of
    /// the program describes.
    std::string function;
    /// The number that the function must return; any number when absent.
    std::optional<double> answer;
    /// Whether console text goes to standard output, where the checks can read it.
    bool console_is_standard_output = true;
};

/// Installs a handler for signals that end the process: it fails the check that is running, prints
/// the summary and exits with status 1. Replaces the handlers of SIGABRT, SIGBUS, SIGFPE, SIGILL
/// and SIGSEGV.
void report_signals();

/// Runs every check and prints its results. Those that may end the process come last.
void check_host(const settings& wanted);

/// Prints the numbers of checks and of failures. Returns whether every check passed.
bool summary();

} // namespace zktarn::host_conformance
