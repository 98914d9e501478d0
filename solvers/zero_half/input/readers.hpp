#pragma once

#include <string>

#include "input/error.hpp"
#include "input/model.hpp"

/// The readers of the two formats. They do not check the model: `complete` does.

namespace zero_half {

/// The text with '?' for every character that is not printable.
std::string printable(std::string text);

/// Reads an MPS file, plain or compressed by gzip, as fixed MPS, and if that fails as free MPS.
/// `source` is opened, `file` is the name in messages. Each line is a step of the poll. Throws
/// `error` when the file is not MPS or not supported, and when the poll stopped.
model read_mps(const std::string& source, const std::string& file, reading_poll& poll);

/// Whether the text begins like an LP file: after comments, with the sense of the objective.
bool begins_as_lp(const std::string& text);

/// Reads the text of an LP file: objective, rows with one side or two, bounds, generals, binaries.
/// A keyword stands at the beginning of a line. `file` is the name in messages. Each row is a step
/// of the poll; after it stopped, the result is not the model.
///
/// Throws `error` with the number of the line for anything else: sets, semi-continuous columns,
/// quadratic and logical parts, lazy rows, a column that occurs twice in a row, a text without End.
model read_lp(const std::string& text, const std::string& file, reading_poll& poll);

} // namespace zero_half
