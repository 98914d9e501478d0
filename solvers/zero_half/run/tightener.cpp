#include "run/run.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <new>

#include "input/error.hpp"
#include "lp/objective.hpp"
#include "lp/relaxation.hpp"
#include "run/bridge.hpp"

namespace zero_half {

namespace {

using clock = std::chrono::steady_clock;

double seconds_since(clock::time_point start) {
    return std::chrono::duration<double>(clock::now() - start).count();
}

clock::time_point started_before(double seconds) {
    return clock::now() -
           std::chrono::duration_cast<clock::duration>(std::chrono::duration<double>(seconds));
}

double cpu_seconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

constexpr const char* heading =
    "round             bound  closed %   found   kept  separation ms     LP ms";

std::string line_of(const round_figures& figures, std::optional<double> gap_closed) {
    char closed[16] = "       -";
    if (gap_closed) {
        std::snprintf(closed, sizeof closed, "%8.2f", *gap_closed);
    }
    char line[160];
    std::snprintf(line, sizeof line, "%5d  %16.4f  %s  %6zu  %5zu  %13.1f  %8.1f", figures.round,
                  figures.bound, closed, figures.cuts_found, figures.cuts_kept,
                  figures.separation_ms, figures.relaxation_ms);
    return line;
}

/// One run, from the first relaxation to the last round.
class run {
public:
    run(const model& program, const run_options& options);
    run_result execute();

private:
    /// The outcome of a step: that of the relaxation, and whether separation found a cut before it.
    struct step {
        relaxation::outcome lp = relaxation::outcome::optimal;
        bool has_cuts = true;
    };

    step solve_first();
    std::vector<std::size_t> separate();
    step execute_round();
    void take_bound();
    void take_point();
    void record_round(std::size_t cuts_kept, double separation_ms, double relaxation_ms);

    bool is_time_used() const { return seconds_since(start_) >= options_.seconds; }
    bool should_stop() const { return host_.is_interrupted() || is_time_used(); }
    /// Why the stop predicate returned true.
    ending stop_reason() const {
        return host_.is_interrupted() ? ending::interrupted : ending::time_used;
    }
    bool has_stalled() const;
    bool is_memory_used();
    std::optional<ending> reason_to_end(const step& last);

    const model& model_;
    const run_options& options_;
    clock::time_point start_ = started_before(options_.seconds_used);
    double cpu_start_ = cpu_seconds();
    bridge host_;
    zktarn::owned_generator random_;
    relaxation relaxation_;
    separator separator_;
    run_result result_;
    objective_values values_;
    /// The bounds as a minimisation: of the model, and of the relaxation.
    std::optional<double> lower_bound_;
    std::optional<double> relaxation_bound_;
    /// The rounds since the bound of the relaxation rose.
    int stalled_rounds_ = 0;
    /// The need for memory when it was last compared with what is left.
    std::uint64_t checked_need_ = 0;
    /// The violated cuts found in this round, selected or not.
    std::size_t cuts_found_ = 0;
    /// The bounds after each relaxation so far, of the model and of the relaxation, in the sense of
    /// the file.
    std::vector<double> history_;
    std::vector<double> relaxation_history_;
};

run::run(const model& program, const run_options& options)
    : model_(program), options_(options), host_(options.show, options.has_output_function),
      random_(options.seed), relaxation_(program, [this] { return should_stop(); }),
      separator_(
          program.rows_and_bounds(), *random_, [this] { return should_stop(); },
          options.separation),
      values_(program) {
    if (!random_) {
        throw std::bad_alloc();
    }
    result_.optimum = options.optimum;
    result_.is_maximised = program.is_maximised;
    result_.seed = options.seed;
}

run_result run::execute() {
    step last = solve_first();
    result_.first_cut = separator_.model_rows();
    host_.print_round(heading);
    std::optional<ending> reason = reason_to_end(last);
    while (!reason) {
        last = execute_round();
        reason = reason_to_end(last);
    }
    result_.reason = *reason;
    if (*reason == ending::integral && !result_.optimum) {
        result_.optimum = result_.bound;
    }
    host_.report("done", static_cast<int>(result_.rounds.size()), result_.bound.value_or(0.0),
                 history_);
    result_.pool = separator_.pool();
    result_.seconds = seconds_since(start_);
    result_.cpu_seconds = cpu_seconds() - cpu_start_;
    return std::move(result_);
}

/// Whether the bound of the relaxation has not risen for some rounds, or the last rounds
/// contributed a small share of its total rise.
bool run::has_stalled() const {
    constexpr std::size_t recent_rounds = 30;
    constexpr double least_share = 0.02;
    if (stalled_rounds_ >= options_.most_stalled_rounds) {
        return true;
    }
    const std::vector<double>& bounds = relaxation_history_;
    if (bounds.size() <= 2 * recent_rounds) {
        return false;
    }
    const double recent_rise = std::fabs(bounds.back() - bounds[bounds.size() - 1 - recent_rounds]);
    return recent_rise < least_share * std::fabs(bounds.back() - bounds.front());
}

/// The cuts of earlier rounds stay in the pool, so it grows in a long run. Asking the system takes
/// longer than a round of a small model, so it is asked only when the need has grown by a
/// twentieth.
bool run::is_memory_used() {
    const auto entries = static_cast<std::uint64_t>(model_.rows.getNumElements());
    const std::uint64_t need = memory_for_round(entries, separator_.pool().entries());
    if (need < checked_need_ + checked_need_ / 20) {
        return false;
    }
    checked_need_ = need;
    const std::optional<std::uint64_t> left = options_.memory_left();
    return left && *left < need;
}

/// Why the run ends after a step; nothing if it goes on. A first relaxation without an optimum is
/// an error of the model instead: see `solve_first`.
std::optional<ending> run::reason_to_end(const step& last) {
    switch (last.lp) {
    case relaxation::outcome::stopped:
        return stop_reason();
    case relaxation::outcome::infeasible:
        return ending::no_integer_point;
    case relaxation::outcome::unbounded:
    case relaxation::outcome::undecided:
        return ending::numeric_error;
    case relaxation::outcome::optimal:
        break;
    }
    if (host_.is_stopped()) {
        return ending::stopped_by_output_function;
    }
    if (host_.is_interrupted()) {
        return ending::interrupted;
    }
    if (result_.is_integral) {
        return ending::integral;
    }
    const std::optional<double> closed = result_.gap_closed(result_.bound);
    if (closed && *closed >= options_.stop_at_gap - 1e-6) {
        return ending::gap_closed;
    }
    if (static_cast<int>(result_.rounds.size()) >= options_.rounds) {
        return ending::rounds_used;
    }
    if (is_time_used()) {
        return ending::time_used;
    }
    if (last.has_cuts && is_memory_used()) {
        return ending::memory_used;
    }
    if (has_stalled()) {
        return ending::no_progress;
    }
    return last.has_cuts ? std::nullopt : std::optional(ending::no_cut_found);
}

run::step run::solve_first() {
    const relaxation::outcome outcome = relaxation_.solve();
    switch (outcome) {
    case relaxation::outcome::optimal:
        take_bound();
        result_.first_bound = result_.relaxation_bound;
        break;
    case relaxation::outcome::infeasible:
        throw error(model_.file + ": the relaxation has no feasible point");
    case relaxation::outcome::unbounded:
        throw error(model_.file + ": the relaxation is unbounded");
    case relaxation::outcome::undecided:
        throw error(model_.file +
                    ": the relaxation could not be decided: the result of the simplex "
                    "method could not be proved");
    case relaxation::outcome::stopped:
        break;
    }
    return {outcome};
}

/// Returns the rows of the pool to be added. The search is thorough if the last cuts did not raise
/// the bound. If the vertex gives no cut, or the bound has not risen for some rounds, the vertex
/// may be one of many with the same objective, so others are separated too.
std::vector<std::size_t> run::separate() {
    constexpr int rounds_until_stall = 3;
    const effort wanted = stalled_rounds_ > 0 ? effort::thorough : effort::normal;
    std::vector<std::size_t> rows = separator_.find(relaxation_.point(), wanted);
    if (rows.empty() && wanted == effort::normal) {
        rows = separator_.find(relaxation_.point(), effort::thorough);
    }
    cuts_found_ = separator_.found();
    bool is_wanted = rows.empty() || stalled_rounds_ >= rounds_until_stall;
    for (int i = 0; i < options_.most_other_points && is_wanted && !should_stop(); ++i) {
        const std::vector<double> point = relaxation_.another_optimum(*random_);
        if (point.empty()) {
            break;
        }
        const std::vector<std::size_t> further = separator_.find(point.data(), effort::thorough);
        cuts_found_ += separator_.found();
        for (const std::size_t row : further) {
            if (std::find(rows.begin(), rows.end(), row) == rows.end()) {
                rows.push_back(row);
            }
        }
        is_wanted = rows.empty();
    }
    return rows;
}

/// Separates the point and solves the relaxation with the cuts. If the relaxation is infeasible,
/// the cuts stay in the pool as a proof; if it cannot be solved, they are removed.
run::step run::execute_round() {
    const double separation_start = cpu_seconds();
    const std::size_t pool_size = separator_.pool().size();
    const std::vector<std::size_t> rows = separate();
    const double separation_ms = (cpu_seconds() - separation_start) * 1e3;
    if (rows.empty()) {
        return {relaxation::outcome::optimal, false};
    }
    const double relaxation_start = cpu_seconds();
    relaxation_.drop_slack_cuts(options_.most_slack_rounds);
    relaxation_.add(separator_.pool(), rows);
    const relaxation::outcome outcome = relaxation_.solve();
    if (outcome == relaxation::outcome::optimal) {
        take_bound();
        record_round(rows.size(), separation_ms, (cpu_seconds() - relaxation_start) * 1e3);
    } else if (outcome != relaxation::outcome::infeasible) {
        separator_.truncate(pool_size);
        return {outcome};
    }
    result_.cuts = relaxation_.cuts();
    return {outcome};
}

/// Further rows cannot lower the bound. So where it is lower, that is a rounding error, and the
/// last bound remains. The bound of the model is the least value of the objective that is not below
/// the proven bound of the relaxation. No bound is above the objective of an integer point.
void run::take_bound() {
    const std::optional<double> last = relaxation_bound_;
    relaxation_bound_ = std::max(last.value_or(relaxation_.bound()), relaxation_.bound());
    const double tolerance = 1e-6 * (1.0 + std::fabs(*relaxation_bound_));
    stalled_rounds_ = !last || *relaxation_bound_ > *last + tolerance ? 0 : stalled_rounds_ + 1;
    double bound = *relaxation_bound_;
    if (const std::optional<double> proven = relaxation_.tolerant_bound()) {
        bound = std::max(bound, values_.round_up(*proven));
    }
    const double last_bound = lower_bound_.value_or(bound);
    bound = std::max(bound, last_bound);
    const std::optional<double> objective = integral_objective(model_, relaxation_.point());
    result_.is_integral = objective && *objective <= bound + 1e-6 * (1.0 + std::fabs(bound));
    if (objective) {
        bound = std::min(bound, *objective);
    }
    zktarn::assert_mod::tarnassert(bound >= last_bound - 1e-6 * (1.0 + std::fabs(bound)));
    lower_bound_ = bound;
    result_.bound = model_.in_sense_of_file(bound);
    result_.relaxation_bound = model_.in_sense_of_file(std::min(*relaxation_bound_, bound));
    history_.push_back(*result_.bound);
    relaxation_history_.push_back(*result_.relaxation_bound);
    take_point();
}

void run::take_point() {
    result_.point.assign(relaxation_.point(), relaxation_.point() + model_.column_count());
    for (std::size_t j = 0; result_.is_integral && j < result_.point.size(); ++j) {
        if (model_.is_integer[j] != 0) {
            result_.point[j] = std::round(result_.point[j]);
        }
    }
}

void run::record_round(std::size_t cuts_kept, double separation_ms, double relaxation_ms) {
    const int round = static_cast<int>(result_.rounds.size()) + 1;
    result_.rounds.push_back({round, *result_.bound, *result_.relaxation_bound, cuts_found_,
                              cuts_kept, separation_ms, relaxation_ms, seconds_since(start_)});
    host_.print_round(line_of(result_.rounds.back(), result_.gap_closed(result_.bound)));
    host_.report("cutting", round, *result_.bound, history_);
}

} // namespace

run_result tighten(const model& program, const run_options& options) {
    return run(program, options).execute();
}

} // namespace zero_half
