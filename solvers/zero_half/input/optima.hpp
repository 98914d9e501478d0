#pragma once

#include <optional>
#include <string>

namespace zero_half {

/// The integer optimum of a model, looked up in the table `optima.csv` in the folder of the model.
/// A line of the table is `file name,optimum`. Lines of another form, such as a heading, are
/// ignored. Returns nothing when the table has no line for the model or no finite number in it.
std::optional<double> known_optimum(const std::string& model_file);

} // namespace zero_half
