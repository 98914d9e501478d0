#pragma once

#include "input/model.hpp"

namespace zero_half {

/// Checks a model from a file or from a caller's arrays, and rounds the bounds of its integer
/// columns inwards to integers. Throws `error` when a name occurs twice, a number is beyond 1e15 or
/// NaN, no column is integer, or bounds cross.
void complete(model& program);

} // namespace zero_half
