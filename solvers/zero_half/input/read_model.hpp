#pragma once

#include <string>

#include "input/model.hpp"

namespace zero_half {

/// Reads an MPS file: fixed or free, plain or compressed by gzip. Throws `error` when the file
/// cannot be read, is not an MPS file, has no integer column, or has numbers beyond 1e15.
model read_model(const std::string& file);

} // namespace zero_half
