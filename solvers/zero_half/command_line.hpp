#pragma once

#include <string>
#include <vector>

#include "run/run.hpp"

namespace zero_half {

struct command_line {
    std::vector<std::string> files;
    run_options run;
    /// Empty: not written.
    std::string cuts_file;
    std::string certificate_file;
    std::string json_file;
    std::string plot_file;
};

enum exit_status { success = 0, failure = 1, wrong_usage = 2, interrupted = 130 };

/// Parses the arguments into `options`. Returns true when the program continues. Otherwise it has
/// printed the help, the version or an error, and `status` is its exit status.
bool parse(int argc, char** argv, command_line& options, int& status);

} // namespace zero_half
