#include "integer_solver.hpp"

#include <stdexcept>

#include <CbcModel.hpp>
#include <CbcSolver.hpp>
#include <OsiClpSolverInterface.hpp>

namespace zero_half::testing {

std::optional<integer_solution> solve_by_branching(const model& of) {
    OsiClpSolverInterface relaxed;
    relaxed.messageHandler()->setLogLevel(0);
    relaxed.loadProblem(of.rows, of.lower.data(), of.upper.data(), of.objective.data(),
                        of.row_lower.data(), of.row_upper.data());
    for (int j = 0; j < of.column_count(); ++j) {
        if (of.is_integer[static_cast<std::size_t>(j)] != 0) {
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
        throw std::runtime_error(of.file + ": no integer optimum was proven");
    }
    const double* const point = search.bestSolution();
    return integer_solution{search.getObjValue() + of.constant,
                            std::vector<double>(point, point + of.column_count())};
}

} // namespace zero_half::testing
