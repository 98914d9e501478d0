#pragma once

#include <deque>
#include <string>

#include "output/solved_model.hpp"

namespace zero_half {

/// Draws the bound of each model against the round and against time, by gnuplot: as PNG when the
/// name of the file ends in `.png`, as SVG otherwise. Throws `error` when there is no bound to
/// draw, gnuplot is missing or the file cannot be written.
void write_plot(const std::deque<solved_model>& models, const std::string& file);

} // namespace zero_half
