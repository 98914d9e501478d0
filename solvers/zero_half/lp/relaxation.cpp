#include "lp/relaxation.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <CoinMessageHandler.hpp>
#include <Idiot.hpp>

#include "lp/proofs.hpp"

namespace zero_half {

namespace {

/// Values of ClpSimplex::status().
enum status {
    optimal = 0,
    infeasible = 1,
    unbounded = 2,
    iterations_used = 3,
    stopped_by_event = 5
};

/// Separation looks for small violations, so the point needs tighter tolerances than Clp's default.
constexpr double tight_tolerance = 1e-9;
constexpr double usual_tolerance = 1e-7;

/// Bits of the strategy of Clp's crash method, the class `Idiot`.
constexpr int scale_rows = 32;
constexpr int continue_by_simplex = 512;

/// Receives a message from the crash method after each pass and prints nothing. To end the method,
/// it sets the number of passes to 0.
class pass_listener : public CoinMessageHandler {
public:
    pass_listener(Idiot& method, const std::function<bool()>& should_stop)
        : method_(method), should_stop_(should_stop) {
        constexpr int each_pass = 1;
        setLogLevel(each_pass);
    }
    int print() override {
        if (should_stop_()) {
            method_.setMajorIterations(0);
            method_.setStrategy(method_.getStrategy() & ~continue_by_simplex);
        }
        return 0;
    }
    CoinMessageHandler* clone() const override { return new pass_listener(*this); }

private:
    Idiot& method_;
    const std::function<bool()>& should_stop_;
};

/// Solves a large program from the beginning: the crash method finds a nearly optimal point in
/// passes over the entries, and the primal simplex method continues from it. The dual
/// simplex method from the slack basis takes time that grows almost with the square of the rows.
///
/// The crash method calls `should_stop` after each pass, the simplex method calls the event handler
/// of the program. After `should_stop` returned true, the status of the program has no meaning.
void solve_by_crash(ClpSimplex& lp, const std::function<bool()>& should_stop) {
    // Among the settings tried on packing, covering and knapsack rows these need the least time.
    // Short passes make the polls frequent.
    constexpr int passes = 60;
    constexpr int steps_of_pass = 25;
    constexpr int passes_of_weight = 10;
    constexpr double first_weight = 1e3;
    Idiot method(lp);
    method.setStrategy(method.getStrategy() | scale_rows | continue_by_simplex);
    method.setStartingWeight(first_weight);
    method.setReduceIterations(passes_of_weight);
    method.setMinorIterations(steps_of_pass);
    pass_listener listener(method, should_stop);
    const CoinMessages messages = lp.messages();
    method.crash(passes, &listener, &messages, true);
}

} // namespace

relaxation::stop_handler::stop_handler(std::function<bool()> should_stop)
    : should_stop_(std::move(should_stop)) {}

/// Returns -1 to continue; any other number ends the simplex method.
int relaxation::stop_handler::event(Event what) {
    constexpr int go_on = -1;
    constexpr int stop = 0;
    return what == endOfIteration && should_stop_() ? stop : go_on;
}

relaxation::relaxation(const model& program, std::function<bool()> should_stop)
    : should_stop_(std::move(should_stop)), model_rows_(program.row_count()) {
    lp_.setLogLevel(0);
    lp_.loadProblem(program.rows, program.lower.data(), program.upper.data(),
                    program.objective.data(), program.row_lower.data(), program.row_upper.data());
    lp_.setObjectiveOffset(-program.constant);
    safe_bound_.emplace(lp_);
    const stop_handler handler(should_stop_);
    lp_.passInEventHandler(&handler);
}

void relaxation::set_tolerance(double tolerance) {
    lp_.setPrimalTolerance(tolerance);
    lp_.setDualTolerance(tolerance);
}

/// In a large program, cuts change so much of the optimum that the dual method from the last basis
/// often takes many times as long as the crash method from the beginning. So the dual method is
/// limited to a number of iterations.
void relaxation::solve_large() {
    constexpr int rows_an_iteration = 10;
    constexpr int unlimited = std::numeric_limits<int>::max();
    bool is_solved = false;
    if (!is_first_) {
        lp_.setMaximumIterations(model_rows_ / rows_an_iteration);
        lp_.dual();
        lp_.setMaximumIterations(unlimited);
        is_solved = lp_.status() != iterations_used;
    }
    if (!is_solved) {
        lp_.allSlackBasis(true);
        solve_by_crash(lp_, should_stop_);
        if (!should_stop_()) {
            lp_.dual();
        }
    }
}

/// Runs the dual method from the last basis. If its result is not proven, runs the primal method
/// from the last basis, and then from the beginning.
relaxation::outcome relaxation::solve() {
    constexpr int least_large_rows = 3000;
    set_tolerance(tight_tolerance);
    if (model_rows_ < least_large_rows) {
        lp_.dual();
    } else {
        solve_large();
    }
    is_first_ = false;
    if (should_stop_()) {
        return outcome::stopped;
    }
    if (lp_.status() == infeasible) {
        // With large numbers no point may satisfy the tight tolerance.
        set_tolerance(usual_tolerance);
        lp_.dual();
    }
    outcome result = checked_outcome();
    if (result == outcome::undecided && !should_stop_()) {
        lp_.primal();
        result = checked_outcome();
    }
    if (result == outcome::undecided && !should_stop_()) {
        solve_afresh();
        result = checked_outcome();
    }
    return result == outcome::undecided && should_stop_() ? outcome::stopped : result;
}

/// Loads the program again, without scaling, and solves it by the primal method, which starts from
/// a feasible point if there is one. Clp has been seen to call a program infeasible for which this
/// finds an optimum or a ray.
void relaxation::solve_afresh() {
    ClpSimplex fresh;
    fresh.setLogLevel(0);
    fresh.loadProblem(*lp_.matrix(), lp_.getColLower(), lp_.getColUpper(), lp_.getObjCoefficients(),
                      lp_.getRowLower(), lp_.getRowUpper());
    fresh.setObjectiveOffset(lp_.objectiveOffset());
    fresh.passInEventHandler(lp_.eventHandler());
    fresh.scaling(0);
    const std::vector<double> objective(fresh.objective(),
                                        fresh.objective() + fresh.numberColumns());
    std::fill_n(fresh.objective(), fresh.numberColumns(), 0.0);
    fresh.primal();
    std::copy(objective.begin(), objective.end(), fresh.objective());
    if (fresh.status() == optimal) {
        fresh.primal();
    }
    lp_ = fresh;
}

/// The result of the simplex method, where it is proven.
relaxation::outcome relaxation::checked_outcome() {
    switch (lp_.status()) {
    case optimal:
        return take_bound();
    case infeasible:
        return is_proven_infeasible(lp_, safe_bound_->columns(), should_stop_) ? outcome::infeasible
                                                                               : outcome::undecided;
    case unbounded:
        return has_proven_ray(lp_, should_stop_) && has_feasible_point() ? outcome::unbounded
                                                                         : outcome::undecided;
    case stopped_by_event:
        return outcome::stopped;
    default:
        return outcome::undecided;
    }
}

/// Compares the objective with the proven bound. Where a column without bounds prevents a proof,
/// the objective counts only if all numbers are moderate and no point with moderate values of these
/// columns is better: a reduced cost that the dual tolerance hides makes a program unbounded.
relaxation::outcome relaxation::take_bound() {
    const double objective = lp_.objectiveValue();
    if (!std::isfinite(objective)) {
        return outcome::undecided;
    }
    const std::optional<double> proven = safe_bound_->of(lp_);
    if (!proven && !(safe_bound_->is_moderate() && is_best_of_moderate_points(objective))) {
        return outcome::undecided;
    }
    const bool is_exact = !proven || objective - *proven <= 1e-9 * (1.0 + std::fabs(objective));
    bound_ = is_exact ? objective : *proven;
    return outcome::optimal;
}

bool relaxation::is_best_of_moderate_points(double objective) const {
    constexpr double moderate_value = 1e6;
    const std::optional<double> proven = safe_bound_->within(moderate_value, lp_);
    return proven && objective - *proven <= 1e-6 * (1.0 + std::fabs(objective));
}

/// Solves the program without its objective.
bool relaxation::has_feasible_point() const {
    ClpSimplex copy(lp_);
    const std::vector<double> no_objective(static_cast<std::size_t>(lp_.numberColumns()), 0.0);
    copy.chgObjCoefficients(no_objective.data());
    copy.primal();
    return copy.status() == optimal;
}

void relaxation::add(const row_pool& pool, std::span<const std::size_t> rows) {
    std::vector<CoinBigIndex> starts = {0};
    std::vector<int> columns;
    std::vector<double> coefficients;
    std::vector<double> rhs;
    for (const std::size_t row : rows) {
        for (const std::int32_t j : pool.columns(row)) {
            columns.push_back(j - 1);
        }
        coefficients.insert(coefficients.end(), pool.coefficients(row).begin(),
                            pool.coefficients(row).end());
        starts.push_back(static_cast<CoinBigIndex>(columns.size()));
        rhs.push_back(pool.rhs(row));
        cuts_.push_back({row, 0});
    }
    const std::vector<double> lower(rows.size(), -COIN_DBL_MAX);
    lp_.addRows(static_cast<int>(rows.size()), lower.data(), rhs.data(), starts.data(),
                columns.data(), coefficients.data());
}

void relaxation::drop_slack_cuts(int rounds) {
    std::vector<int> dropped;
    std::vector<active_cut> kept;
    for (std::size_t k = 0; k < cuts_.size(); ++k) {
        const int row = model_rows_ + static_cast<int>(k);
        const bool is_slack = lp_.getRowStatus(row) == ClpSimplex::basic;
        const int slack_rounds = is_slack ? cuts_[k].slack_rounds + 1 : 0;
        if (slack_rounds > rounds) {
            dropped.push_back(row);
        } else {
            kept.push_back({cuts_[k].pool_row, slack_rounds});
        }
    }
    if (!dropped.empty()) {
        lp_.deleteRows(static_cast<int>(dropped.size()), dropped.data());
    }
    cuts_ = std::move(kept);
}

std::vector<std::size_t> relaxation::cuts() const {
    std::vector<std::size_t> rows;
    for (const active_cut& each : cuts_) {
        rows.push_back(each.pool_row);
    }
    return rows;
}

/// By complementary slackness the optimal face consists of the feasible points in which every
/// column with a reduced cost, and every row with a dual value, stays at its bound.
std::vector<double> relaxation::another_optimum(const zktarn::random::rng_state& random) const {
    constexpr double negligible = 1e-7;
    ClpSimplex face(lp_);
    for (int j = 0; j < lp_.numberColumns(); ++j) {
        if (std::fabs(lp_.getReducedCost()[j]) > negligible) {
            face.setColBounds(j, lp_.getColSolution()[j], lp_.getColSolution()[j]);
        }
        face.setObjCoeff(j, zktarn::random::rand_number(random) - 0.5);
    }
    for (int i = 0; i < lp_.numberRows(); ++i) {
        if (std::fabs(lp_.getRowPrice()[i]) > negligible) {
            face.setRowBounds(i, lp_.getRowActivity()[i], lp_.getRowActivity()[i]);
        }
    }
    face.primal();
    if (face.status() != optimal) {
        return {};
    }
    return {face.getColSolution(), face.getColSolution() + face.numberColumns()};
}

} // namespace zero_half
