#include "relaxation.hpp"

#include <cmath>
#include <utility>

namespace zero_half {

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
    lp_.setPrimalTolerance(1e-9);
    lp_.setDualTolerance(1e-9);
    const visitor handler(std::move(should_stop));
    lp_.passInEventHandler(&handler);
}

relaxation::outcome relaxation::solve() {
    constexpr int stopped_by_event = 5;
    lp_.dual();
    if (lp_.status() != 0 && lp_.status() != stopped_by_event) {
        lp_.primal();
    }
    switch (lp_.status()) {
    case 0:
        return std::isfinite(lp_.objectiveValue()) ? outcome::optimal : outcome::trouble;
    case 1:
        return outcome::infeasible;
    case 2:
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
