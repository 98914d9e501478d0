#include "lp/relaxation.hpp"

#include <cmath>
#include <utility>

namespace zero_half {

namespace {

/// What the solver calls its outcomes.
enum status { optimal = 0, infeasible = 1, unbounded = 2, stopped_by_event = 5 };

/// Cuts are looked for by small violations, so more digits are asked for than usual.
constexpr double tight = 1e-9;
constexpr double usual = 1e-7;

} // namespace

relaxation::visitor::visitor(std::function<bool()> should_stop)
    : should_stop_(std::move(should_stop)) {}

/// -1 goes on; any other number ends the method.
int relaxation::visitor::event(Event what) {
    constexpr int often = 50;
    constexpr int go_on = -1;
    constexpr int stop = 0;
    if (what != endOfIteration || ++iterations_ % often != 0) {
        return go_on;
    }
    return should_stop_() ? stop : go_on;
}

relaxation::relaxation(const model& of, std::function<bool()> should_stop) {
    lp_.setLogLevel(0);
    lp_.loadProblem(of.rows, of.lower.data(), of.upper.data(), of.objective.data(),
                    of.row_lower.data(), of.row_upper.data());
    lp_.setObjectiveOffset(-of.constant);
    const visitor handler(std::move(should_stop));
    lp_.passInEventHandler(&handler);
}

void relaxation::set_tolerance(double each) {
    lp_.setPrimalTolerance(each);
    lp_.setDualTolerance(each);
}

relaxation::outcome relaxation::solve() {
    set_tolerance(tight);
    lp_.dual();
    if (lp_.status() == infeasible) {
        // With large numbers it may be the tolerance that nothing meets.
        set_tolerance(usual);
        lp_.dual();
    } else if (lp_.status() != optimal && lp_.status() != stopped_by_event) {
        lp_.primal();
    }
    switch (lp_.status()) {
    case optimal:
        return std::isfinite(lp_.objectiveValue()) ? outcome::optimal : outcome::trouble;
    case infeasible:
        return outcome::infeasible;
    case unbounded:
        return outcome::unbounded;
    case stopped_by_event:
        return outcome::stopped;
    default:
        return outcome::trouble;
    }
}

void relaxation::add(const std::vector<cut>& cuts) {
    std::vector<int> columns;
    for (const cut& each : cuts) {
        columns.clear();
        for (const std::int32_t j : each.columns) {
            columns.push_back(j - 1);
        }
        lp_.addRow(static_cast<int>(columns.size()), columns.data(), each.coefficients.data(),
                   -COIN_DBL_MAX, each.right);
    }
}

} // namespace zero_half
