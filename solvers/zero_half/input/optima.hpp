#pragma once

#include <optional>
#include <string>

namespace zero_half {

/// The integer optimum of a model as the table `optima.csv` in its folder has it, if there is one:
/// lines `file name,optimum`. What is no such line, as a heading, is passed over.
std::optional<double> known_optimum(const std::string& model_file);

} // namespace zero_half
