#pragma once

#include "input/model.hpp"

namespace zero_half {

/// Throws `error` when the integral rows of the model need more memory than the machine has
/// available. Each side of a row has two vectors over all columns.
void check_memory(const model& program);

} // namespace zero_half
