// solver_peer MODEL ROUNDS SECONDS: the peer of the solver. Solves the relaxation, adds all cuts of
// CglZeroHalf with default settings, and repeats. Prints one line: the bound without cuts, the last
// bound moved to the next value of the objective at integer points, rounds, cuts, seconds of
// separation and all seconds, both of processor time.
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <CglZeroHalf.hpp>
#include <OsiClpSolverInterface.hpp>

#include "input/error.hpp"
#include "input/read_model.hpp"
#include "lp/objective.hpp"

namespace {

double cpu_seconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void load(const zero_half::model& program, OsiClpSolverInterface& lp) {
    lp.messageHandler()->setLogLevel(0);
    lp.loadProblem(program.rows, program.lower.data(), program.upper.data(),
                   program.objective.data(), program.row_lower.data(), program.row_upper.data());
    for (int j = 0; j < program.column_count(); ++j) {
        if (program.is_integer[static_cast<std::size_t>(j)] != 0) {
            lp.setInteger(j);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: solver_peer MODEL ROUNDS SECONDS\n");
        return 2;
    }
    const int most_rounds = std::atoi(argv[2]);
    const double limit = std::atof(argv[3]);
    zero_half::model program;
    try {
        program = zero_half::read_model(argv[1]);
    } catch (const zero_half::error& found) {
        std::fprintf(stderr, "solver_peer: %s\n", found.what());
        return 1;
    }
    const auto in_file = [&](double value) {
        return program.in_sense_of_file(value + program.constant);
    };
    OsiClpSolverInterface lp;
    load(program, lp);
    const double start = cpu_seconds();
    lp.initialSolve();
    const double first = lp.getObjValue();
    double bound = first;
    double separation = 0.0;
    int rounds = 0;
    int cuts = 0;
    while (rounds < most_rounds && cpu_seconds() - start < limit) {
        CglZeroHalf peer;
        peer.refreshSolver(&lp);
        OsiCuts found;
        const double before = cpu_seconds();
        peer.generateCuts(lp, found);
        separation += cpu_seconds() - before;
        if (found.sizeRowCuts() == 0) {
            break;
        }
        lp.applyCuts(found);
        lp.resolve();
        if (!lp.isProvenOptimal()) {
            break;
        }
        bound = lp.getObjValue();
        cuts += found.sizeRowCuts();
        ++rounds;
    }
    const double rounded =
        zero_half::objective_values(program).round_up(bound + program.constant) - program.constant;
    std::printf("%.10g %.10g %d %d %.4f %.4f\n", in_file(first), in_file(rounded), rounds, cuts,
                separation, cpu_seconds() - start);
    return 0;
}
