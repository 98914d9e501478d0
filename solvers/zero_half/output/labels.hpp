#pragma once

#include <deque>
#include <string>
#include <vector>

#include "output/solved_model.hpp"

namespace zero_half {

/// A label for each model: its file name without `.mps` and the suffix of a compressed file. Where
/// files in different folders have one name, as many parent folders as tell them apart precede it.
std::vector<std::string> labels_of(const std::deque<solved_model>& models);

} // namespace zero_half
