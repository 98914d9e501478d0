#pragma once

#include <string>
#include <vector>

namespace zero_half::testing {

/// The models that the tests solve: the project's own, and those of a folder that need not be
/// there.
std::vector<std::string> instances();

} // namespace zero_half::testing
