#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include <ClpEventHandler.hpp>
#include <ClpSimplex.hpp>

#include "cuts/row_pool.hpp"
#include "input/model.hpp"
#include "lp/proofs.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// The linear relaxation of a model, to which cuts are added.
class relaxation {
public:
    /// `infeasible` and `unbounded` are proven in exact arithmetic. `undecided`: the simplex method
    /// failed, or its result is not proven.
    enum class outcome { optimal, infeasible, unbounded, stopped, undecided };

    /// All methods call `should_stop` every few steps, the simplex method in each iteration. After
    /// it returned true, they end, and `solve` returns `stopped`.
    relaxation(const model& program, std::function<bool()> should_stop);

    /// Solves by the dual simplex method, starting from the last basis. A large program is solved
    /// by a crash method and the primal simplex method the first time, and where the dual method
    /// takes many iterations.
    outcome solve();
    /// Adds rows of the pool as cuts.
    void add(const row_pool& pool, std::span<const std::size_t> rows);
    /// Removes the cuts that were slack after each of the last `rounds` calls and this one. Call it
    /// once after each solution.
    void drop_slack_cuts(int rounds);
    /// The rows of the pool that are cuts of the relaxation.
    std::vector<std::size_t> cuts() const;

    /// Another vertex of the optimal face, the optimum of a random objective over it. Empty when
    /// the simplex method does not find it. The relaxation stays as it is.
    std::vector<double> another_optimum(const zktarn::random::rng_state& random) const;

    /// After `optimal`: a lower bound on the objective of all feasible points. It is the objective
    /// at the point when that is proven up to a relative 1e-9, and less otherwise.
    double bound() const { return bound_; }
    /// After `optimal`: a proven lower bound on the objective of all points that exceed each side
    /// of a row by at most a relative 2e-9, twice the tolerance with which points are accepted.
    /// Nothing when columns without bounds prevent the proof.
    std::optional<double> tolerant_bound() const {
        constexpr double tolerance = 2e-9;
        return safe_bound_->with_tolerance(tolerance, lp_);
    }
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
    };

    struct active_cut {
        std::size_t pool_row;
        int slack_rounds;
    };

    void set_tolerance(double tolerance);
    void solve_large();
    void solve_afresh();
    outcome checked_outcome();
    outcome take_bound();
    bool is_best_of_moderate_points(double objective) const;
    bool has_feasible_point() const;

    std::function<bool()> should_stop_;
    ClpSimplex lp_;
    std::optional<safe_bound> safe_bound_;
    double bound_ = 0.0;
    /// The rows after those of the model, in their order.
    std::vector<active_cut> cuts_;
    int model_rows_;
    /// Whether `solve` has not been called.
    bool is_first_ = true;
};

} // namespace zero_half
