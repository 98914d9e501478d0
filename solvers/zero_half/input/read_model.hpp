#pragma once

#include <functional>
#include <string>

#include "input/model.hpp"

namespace zero_half {

/// Reads an MPS file, fixed or free, or an LP file, plain or compressed by gzip. A file is an LP
/// file when its name ends in `.lp` or it begins with the sense of an objective. `-` is the
/// standard input. A maximisation is turned into a minimisation. Throws `error` when the file
/// cannot be read or is in neither format, when it has no integer column, has numbers beyond 1e15
/// or crossed bounds.
///
/// Calls `should_stop` every ten thousand lines, and while it waits for a pipe. Throws `stopped`
/// after it returned true.
model read_model(const std::string& file, const std::function<bool()>& should_stop = {});

} // namespace zero_half
