#pragma once

#include <string>

#include "output/solved_model.hpp"

namespace zero_half {

/// Writes the model with its cuts as additional rows, as free MPS. Every column keeps its kind and
/// its name, in which blanks become underscores. Throws `error` when the file cannot be written.
void write_model(const solved_model& solved, const std::string& file);

} // namespace zero_half
