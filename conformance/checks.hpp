#pragma once

#include <optional>
#include <string>

/// The checks, by what a host has: each function looks at some of its operations.

namespace zktarn::host_conformance {

struct settings {
    /// The host-language function to call; none when empty.
    std::string function;
    /// What it is to answer; any number when absent.
    std::optional<double> answer;
    /// Whether text of the console comes to standard output, where it can be looked at.
    bool console_is_standard_output = true;
};

void check_memory();
void check_generators();
void check_arrays();
void check_function(const settings& wanted);
void check_console(const settings& wanted);
void check_interrupts_and_assertions();

/// Null addresses, last: a host that does not stand them may end the process.
void check_nulls();

/// All of them.
void check_host(const settings& wanted);

} // namespace zktarn::host_conformance
