#pragma once

#include <span>

#include "solver/exact_model.hpp"

namespace zero_half::testing {

/// What branch and bound in rational arithmetic proves of a model. Values are as the model counts
/// them, a maximum for a maximisation.
struct exact_verdict {
    enum class state { optimal, infeasible, unbounded, unknown };
    state relaxation = state::unknown;
    rational relaxation_value = 0;
    state integer = state::unknown;
    rational integer_value = 0;
};

/// `unknown` for the integer program when it takes more than a fixed number of nodes.
exact_verdict solve_exactly(const exact_model& model);

/// Whether a point of the model violates coefficients * x <= rhs, a row with integer coefficients
/// over integer columns counted from 1. Nothing when that takes too many nodes.
std::optional<bool> is_violated(const exact_model& model, std::span<const std::int32_t> columns,
                                std::span<const double> coefficients, double rhs);

} // namespace zero_half::testing
