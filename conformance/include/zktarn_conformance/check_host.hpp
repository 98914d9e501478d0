#pragma once

#include <optional>
#include <string>

/// Checks of a host, for a program that calls them itself: a host that exists only inside of its
/// own process. Any other host needs no code: `zktarn_host_conformance` is a whole program.
///
/// Each check prints one line to standard output. One process checks once, on one thread.

namespace zktarn::host_conformance {

struct settings {
    /// The host-language function to call; none when empty. `--help` of the program says what it
    /// receives.
    std::string function;
    /// The number that the function must return; any number when absent.
    std::optional<double> answer;
    /// Whether console text goes to standard output, where the checks can read it.
    bool console_is_standard_output = true;
};

/// From now on, a signal that ends the process fails the check that is running, prints the summary
/// and ends the process with exit status 1. Replaces the handlers of SIGABRT, SIGBUS, SIGFPE,
/// SIGILL and SIGSEGV.
void report_signals();

/// Runs every check, those that may end the process last.
void check_host(const settings& wanted);

/// Prints the numbers of checks and of failures. Returns whether every check passed.
bool summary();

} // namespace zktarn::host_conformance
