#pragma once

#include <span>

#include "solver/exact_model.hpp"

namespace zero_half::testing {

/// What branch and bound in rational arithmetic proves about a model. Values are those of the
/// model's own objective: a maximum if it maximises.
struct exact_verdict {
    enum class state { optimal, infeasible, unbounded, unknown };
    state relaxation = state::unknown;
    rational relaxation_value = 0;
    state integer = state::unknown;
    rational integer_value = 0;
};

/// The integer program is `unknown` if it needs more than a fixed number of nodes.
exact_verdict solve_exactly(const exact_model& model);

/// Whether a point of the model violates coefficients * x <= rhs, a row with integer coefficients
/// over integer columns counted from 1. Nothing if that needs too many nodes.
std::optional<bool> is_violated(const exact_model& model, std::span<const std::int32_t> columns,
                                std::span<const double> coefficients, double rhs);

} // namespace zero_half::testing
