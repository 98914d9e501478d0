#pragma once

#include <deque>

#include "output/solved_model.hpp"

namespace zero_half {

/// Prints a heading and one line for each model to the standard output.
void print_table(const std::deque<solved_model>& models);

} // namespace zero_half
