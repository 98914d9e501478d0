#pragma once

#include <deque>
#include <string>

#include "output/solved_model.hpp"

namespace zero_half {

/// Writes one JSON object with an array `models`. Throws `error` when the file cannot be written.
void write_json(const std::deque<solved_model>& models, const std::string& file);

} // namespace zero_half
