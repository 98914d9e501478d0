#pragma once

#include <string>

#include "input/error.hpp"
#include "input/model.hpp"

namespace zero_half {

/// Whether the text begins like an LP file: after comments, with the sense of the objective.
bool begins_as_lp(const std::string& text);

/// Reads the text of an LP file: objective, rows, also with two sides, bounds, generals, binaries.
/// A keyword stands at the beginning of a line. `file` is the name in messages. Each
/// row is a step of the poll; after it stopped, the result is not the model.
///
/// Throws `error` with the number of the line for everything else: sets, semi-continuous columns,
/// quadratic and logical parts, lazy rows, a column that occurs twice in a row, a text without End.
model read_lp(const std::string& text, const std::string& file, reading_poll& poll);

} // namespace zero_half
