#pragma once

#include <functional>
#include <string>
#include <vector>

#include <ClpEventHandler.hpp>
#include <ClpSimplex.hpp>

#include "cuts/derivation.hpp"
#include "input/model.hpp"

namespace zero_half {

/// The linear relaxation of a program, which grows by cuts.
class relaxation {
public:
    enum class outcome { optimal, infeasible, unbounded, stopped, trouble };

    /// `should_stop` is asked now and then while the simplex method runs.
    relaxation(const model& of, std::function<bool()> should_stop);

    /// Solves by the dual simplex method, from where it was.
    outcome solve();
    void add(const std::vector<cut>& cuts);

    double bound() const { return lp_.objectiveValue(); }
    const double* point() const { return lp_.getColSolution(); }
    const ClpSimplex& solver() const { return lp_; }

private:
    /// Lets the caller into the simplex method.
    class visitor : public ClpEventHandler {
    public:
        explicit visitor(std::function<bool()> should_stop);
        int event(Event what) override;
        ClpEventHandler* clone() const override { return new visitor(*this); }

    private:
        std::function<bool()> should_stop_;
        int iterations_ = 0;
    };

    void set_tolerance(double each);

    ClpSimplex lp_;
};

} // namespace zero_half
