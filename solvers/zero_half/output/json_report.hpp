#pragma once

#include <deque>
#include <string>

#include "output/solved_model.hpp"
#include "run/options.hpp"

namespace zero_half {

/// Writes one JSON object: the version, the options of all runs, and an array `models`. Throws
/// `error` when the file cannot be written.
void write_json(const std::deque<solved_model>& models, const run_options& options,
                const std::string& file);

} // namespace zero_half
