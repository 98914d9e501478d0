#pragma once

#include <string>
#include <vector>

namespace zero_half::testing {

/// The models that the tests and the benchmark solve: the graph problems of `instances.py`, the
/// models of the solver, and the uncompressed MPS files of the optional folder ZKTARN_INSTANCES. If
/// several folders have a file of the same name, the first one counts.
std::vector<std::string> instances();

/// The file name up to the first dot.
std::string stem_of(const std::string& file);

} // namespace zero_half::testing
