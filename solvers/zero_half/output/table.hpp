#pragma once

#include <deque>
#include <string>

#include "output/solved_model.hpp"

namespace zero_half {

/// A heading and one line for each model, at most `width` characters wide where that is possible.
/// A table that is too wide is made narrower in this order: bounds have eight significant digits
/// instead of nine, the counts of rows and columns are left out, bounds have down to six digits,
/// labels lose characters in the middle.
std::string table_of(const std::deque<solved_model>& models, std::size_t width);

/// The width of the terminal on standard output; 80 when it is not a terminal.
std::size_t output_width();

} // namespace zero_half
