#pragma once

#include <string>

#include "input/model.hpp"

namespace zero_half {

/// Reads an MPS file, fixed or free, plain or compressed by gzip, or, when its name ends in `.lp`,
/// an LP file. `-` is the standard input. A maximisation is turned into a minimisation. Throws
/// `error` when the file cannot be read or is in neither format, when it has no integer column, has
/// numbers beyond 1e15 or crossed bounds.
model read_model(const std::string& file);

} // namespace zero_half
