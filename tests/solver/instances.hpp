#pragma once

#include <string>
#include <vector>

namespace zero_half::testing {

/// The models that the tests solve: the project's own, and those of the optional folder
/// ZKTARN_INSTANCES.
std::vector<std::string> instances();

} // namespace zero_half::testing
