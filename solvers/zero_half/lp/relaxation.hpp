#pragma once

#include <functional>
#include <vector>

#include <ClpEventHandler.hpp>
#include <ClpSimplex.hpp>

#include "input/model.hpp"
#include "lp/cut.hpp"

namespace zero_half {

/// The linear relaxation of a model, to which cuts are added.
class relaxation {
public:
    enum class outcome { optimal, infeasible, unbounded, stopped, error };

    /// The simplex method calls `should_stop` every few iterations and stops when it returns true.
    relaxation(const model& program, std::function<bool()> should_stop);

    /// Solves by the dual simplex method, starting from the last basis.
    outcome solve();
    void add(const std::vector<cut>& cuts);

    double bound() const { return lp_.objectiveValue(); }
    const double* point() const { return lp_.getColSolution(); }
    const ClpSimplex& solver() const { return lp_; }

private:
    /// Calls the stop predicate from inside the simplex method.
    class stop_handler : public ClpEventHandler {
    public:
        explicit stop_handler(std::function<bool()> should_stop);
        int event(Event what) override;
        ClpEventHandler* clone() const override { return new stop_handler(*this); }

    private:
        std::function<bool()> should_stop_;
        int iterations_ = 0;
    };

    void set_tolerance(double tolerance);

    ClpSimplex lp_;
};

} // namespace zero_half
