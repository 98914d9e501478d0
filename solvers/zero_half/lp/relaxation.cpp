#include "lp/relaxation.hpp"

#include <cmath>
#include <utility>

namespace zero_half {

namespace {

/// Values of ClpSimplex::status().
enum status { optimal = 0, infeasible = 1, unbounded = 2, stopped_by_event = 5 };

/// Separation looks for small violations, so the point has to be more accurate than usual.
constexpr double tight_tolerance = 1e-9;
constexpr double usual_tolerance = 1e-7;

} // namespace

relaxation::stop_handler::stop_handler(std::function<bool()> should_stop)
    : should_stop_(std::move(should_stop)) {}

/// Returns -1 to go on; any other number ends the simplex method.
int relaxation::stop_handler::event(Event what) {
    constexpr int iterations_between_polls = 50;
    constexpr int go_on = -1;
    constexpr int stop = 0;
    if (what != endOfIteration || ++iterations_ % iterations_between_polls != 0) {
        return go_on;
    }
    return should_stop_() ? stop : go_on;
}

relaxation::relaxation(const model& program, std::function<bool()> should_stop) {
    lp_.setLogLevel(0);
    lp_.loadProblem(program.rows, program.lower.data(), program.upper.data(),
                    program.objective.data(), program.row_lower.data(), program.row_upper.data());
    lp_.setObjectiveOffset(-program.constant);
    const stop_handler handler(std::move(should_stop));
    lp_.passInEventHandler(&handler);
}

void relaxation::set_tolerance(double tolerance) {
    lp_.setPrimalTolerance(tolerance);
    lp_.setDualTolerance(tolerance);
}

relaxation::outcome relaxation::solve() {
    set_tolerance(tight_tolerance);
    lp_.dual();
    if (lp_.status() == infeasible) {
        // With large numbers no point may satisfy the tight tolerance.
        set_tolerance(usual_tolerance);
        lp_.dual();
    } else if (lp_.status() != optimal && lp_.status() != stopped_by_event) {
        lp_.primal();
    }
    switch (lp_.status()) {
    case optimal:
        return std::isfinite(lp_.objectiveValue()) ? outcome::optimal : outcome::error;
    case infeasible:
        return outcome::infeasible;
    case unbounded:
        return outcome::unbounded;
    case stopped_by_event:
        return outcome::stopped;
    default:
        return outcome::error;
    }
}

void relaxation::add(const std::vector<cut>& cuts) {
    std::vector<int> columns;
    for (const cut& added : cuts) {
        columns.clear();
        for (const std::int32_t j : added.columns) {
            columns.push_back(j - 1);
        }
        lp_.addRow(static_cast<int>(columns.size()), columns.data(), added.coefficients.data(),
                   -COIN_DBL_MAX, added.rhs);
    }
}

} // namespace zero_half
