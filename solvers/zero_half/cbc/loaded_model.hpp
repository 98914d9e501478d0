#pragma once

#include <cstddef>

#include <OsiClpSolverInterface.hpp>

#include "input/model.hpp"

namespace zero_half {

/// The model as Cbc takes it. The objective has no constant, and is minimised.
inline OsiClpSolverInterface loaded(const model& program) {
    OsiClpSolverInterface solver;
    solver.messageHandler()->setLogLevel(0);
    solver.loadProblem(program.rows, program.lower.data(), program.upper.data(),
                       program.objective.data(), program.row_lower.data(),
                       program.row_upper.data());
    for (int j = 0; j < program.column_count(); ++j) {
        if (program.is_integer[static_cast<std::size_t>(j)] != 0) {
            solver.setInteger(j);
        }
    }
    return solver;
}

} // namespace zero_half
