#pragma once

#include <deque>
#include <string>
#include <vector>

#include "output/solved_model.hpp"

namespace zero_half {

/// A label for each model: its file name without `.mps` and the suffix of a compressed file. Where
/// files in different folders have the same name, as many parent folders precede it as distinguish
/// them.
std::vector<std::string> labels_of(const std::deque<solved_model>& models);

} // namespace zero_half
