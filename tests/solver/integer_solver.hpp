#pragma once

#include <optional>
#include <string>
#include <vector>

#include "input/model.hpp"

namespace zero_half::testing {

struct integer_solution {
    double value;
    std::vector<double> point;
};

/// A proven integer optimum by branch and cut; empty if there is no integer point.
std::optional<integer_solution> solve_by_branching(const model& program);

} // namespace zero_half::testing
