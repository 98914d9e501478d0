// Closes what CglZeroHalf closes: solver_peer MODEL ROUNDS SECONDS. Solves the relaxation, adds all
// cuts of CglZeroHalf with default settings, and repeats. Prints as one line the bound without
// cuts, the last bound, rounds, cuts, seconds of separation and all seconds, both of processor
// time.
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <CglZeroHalf.hpp>
#include <OsiClpSolverInterface.hpp>

namespace {

double cpu_seconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: solver_peer MODEL ROUNDS SECONDS\n");
        return 2;
    }
    const int most_rounds = std::atoi(argv[2]);
    const double limit = std::atof(argv[3]);
    OsiClpSolverInterface lp;
    lp.messageHandler()->setLogLevel(0);
    if (lp.readMps(argv[1], "") != 0) {
        std::fprintf(stderr, "solver_peer: %s: not a valid MPS file\n", argv[1]);
        return 1;
    }
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
    std::printf("%.10g %.10g %d %d %.4f %.4f\n", first, bound, rounds, cuts, separation,
                cpu_seconds() - start);
    return 0;
}
