#pragma once

#include <functional>
#include <optional>
#include <string>

#include "input/model.hpp"

namespace zero_half {

/// Checks a model from a file or from a caller's arrays, and rounds the bounds of its integer
/// columns inwards to integers. Throws `error` when a name occurs twice, a number is beyond 1e15 or
/// NaN, no column is integer, or bounds cross.
void complete(model& program);

/// Reads an MPS file, fixed or free, or an LP file, plain or compressed by gzip. A file is an LP
/// file when its name ends in `.lp` or it begins with the sense of an objective. `-` is the
/// standard input. A maximisation is turned into a minimisation. Throws `error` when the file
/// cannot be read or is in neither format, when it has no integer column, has numbers beyond 1e15
/// or crossed bounds.
///
/// Calls `should_stop` every ten thousand lines, and while it waits for a pipe. Throws `stopped`
/// after it returned true.
model read_model(const std::string& file, const std::function<bool()>& should_stop = {});

/// The integer optimum of a model, looked up in the table `optima.csv` in the folder of the model.
/// A line of the table is `file name,optimum`. Lines of another form, such as a heading, are
/// ignored. Returns nothing when the table has no line for the model or no finite number in it.
std::optional<double> known_optimum(const std::string& model_file);

} // namespace zero_half
