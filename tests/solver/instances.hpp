#pragma once

#include <string>
#include <vector>

namespace zero_half::testing {

/// The files that the tests and the benchmark solve: the graph problems of `instances.py`, the
/// models of the solver, and the plain MPS files of the optional folder ZKTARN_INSTANCES. Of files
/// with the same name in several folders the first is taken.
std::vector<std::string> instances();

/// The file name up to the first dot.
std::string stem_of(const std::string& file);

} // namespace zero_half::testing
