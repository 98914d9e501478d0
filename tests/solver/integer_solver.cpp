#include "solver/integer_solver.hpp"

#include <stdexcept>

#include <CbcModel.hpp>
#include <CbcSolver.hpp>
#include <OsiClpSolverInterface.hpp>

namespace zero_half::testing {

std::optional<integer_solution> solve_by_branching(const model& program) {
    OsiClpSolverInterface relaxed;
    relaxed.messageHandler()->setLogLevel(0);
    relaxed.loadProblem(program.rows, program.lower.data(), program.upper.data(),
                        program.objective.data(), program.row_lower.data(),
                        program.row_upper.data());
    for (int j = 0; j < program.column_count(); ++j) {
        if (program.is_integer[static_cast<std::size_t>(j)] != 0) {
            relaxed.setInteger(j);
        }
    }
    CbcModel search(relaxed);
    CbcSolverUsefulData settings;
    CbcMain0(search, settings);
    const char* arguments[] = {"test",   "-log", "0",      "-ratio", "0",
                               "-allow", "0",    "-solve", "-quit"};
    CbcMain1(9, arguments, search, nullptr, settings);
    if (search.isProvenInfeasible()) {
        return std::nullopt;
    }
    if (!search.isProvenOptimal() || search.bestSolution() == nullptr) {
        throw std::runtime_error(program.file + ": no integer optimum was proven");
    }
    const double* const point = search.bestSolution();
    return integer_solution{search.getObjValue() + program.constant,
                            std::vector<double>(point, point + program.column_count())};
}

} // namespace zero_half::testing
