#include "run/tightener.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "cuts/separation.hpp"
#include "lp/relaxation.hpp"

namespace zero_half {

namespace {

using clock = std::chrono::steady_clock;

double seconds_since(clock::time_point start) {
    return std::chrono::duration<double>(clock::now() - start).count();
}

bool is_integral(const model& from, const double* point) {
    constexpr double tolerance = 1e-6;
    for (int j = 0; j < from.column_count(); ++j) {
        zktarn::flag integral = 1;
        if (from.is_integer[static_cast<std::size_t>(j)] != 0) {
            zktarn::util::epsilon_is_int(point[j], tolerance, integral);
        }
        if (integral == 0) {
            return false;
        }
    }
    return true;
}

std::string line_of(const round_figures& of) {
    char gap[16] = "      -";
    if (of.gap_closed) {
        std::snprintf(gap, sizeof gap, "%7.2f", *of.gap_closed);
    }
    char line[160];
    std::snprintf(line, sizeof line, "%5d  %16.4f  %s  %6zu  %5zu  %13.1f  %8.1f", of.round,
                  of.bound, gap, of.cuts_found, of.cuts_kept, of.separation_ms, of.relaxation_ms);
    return line;
}

/// One run, from the first relaxation to the last line.
class run {
public:
    run(const model& from, const run_options& options);
    run_result finish();

private:
    void solve_first();
    bool should_stop() const {
        return host_.is_interrupted() || seconds_since(start_) >= options_.seconds;
    }
    ending stopped() const {
        return host_.is_interrupted() ? ending::interrupted : ending::time_used;
    }
    bool is_over();
    /// Why there is no further round, if so.
    std::optional<ending> reason_to_end() const;
    void one_round();
    void add(const std::vector<cut>& cuts);
    /// Takes the new bound over; false when there is none.
    bool solve();
    void note(std::size_t found, std::size_t kept, double separation_ms, double relaxation_ms);
    void end(ending how);
    /// What a relaxation that was not solved, although it had been before, says of the run.
    ending ending_of(relaxation::outcome found) const;

    const model& from_;
    const run_options& options_;
    clock::time_point start_ = clock::now();
    bridge host_;
    generator random_;
    relaxation relaxation_;
    separator separator_;
    run_result result_;
    std::vector<double> history_;
    bool ended_ = false;
};

run::run(const model& from, const run_options& options)
    : from_(from), options_(options), host_(options.show, options.has_output_function),
      random_(options.seed), relaxation_(from, [this] { return should_stop(); }),
      separator_(from, random_.state(), [this] { return should_stop(); }) {
    result_.optimum = options.optimum;
}

void run::end(ending how) {
    result_.how = how;
    ended_ = true;
}

run_result run::finish() {
    solve_first();
    result_.pool = integral_rows_of(from_);
    result_.first_cut = result_.pool.size();
    host_.print_round("round             bound    gap %   found   kept  separation ms     LP ms");
    while (!is_over()) {
        one_round();
    }
    host_.report("done", static_cast<int>(result_.rounds.size()), result_.bound.value_or(0.0),
                 history_);
    result_.seconds = seconds_since(start_);
    return std::move(result_);
}

void run::solve_first() {
    switch (relaxation_.solve()) {
    case relaxation::outcome::optimal:
        result_.first_bound = result_.bound = relaxation_.bound();
        history_.push_back(relaxation_.bound());
        return;
    case relaxation::outcome::infeasible:
        throw trouble(from_.file + ": the relaxation has no feasible point");
    case relaxation::outcome::unbounded:
        throw trouble(from_.file + ": the relaxation is unbounded");
    case relaxation::outcome::stopped:
        end(stopped());
        return;
    case relaxation::outcome::trouble:
        throw trouble(from_.file +
                      ": the relaxation cannot be solved, its numbers are too far apart");
    }
}

bool run::is_over() {
    if (ended_) {
        return true;
    }
    if (const std::optional<ending> reason = reason_to_end()) {
        end(*reason);
    }
    return ended_;
}

std::optional<ending> run::reason_to_end() const {
    if (host_.is_stopped()) {
        return ending::stopped_by_output_function;
    }
    if (host_.is_interrupted()) {
        return ending::interrupted;
    }
    if (is_integral(from_, relaxation_.point())) {
        return ending::integral;
    }
    const std::optional<double> closed = result_.gap_closed(result_.bound);
    if (closed && *closed >= options_.stop_at_gap - 1e-6) {
        return ending::gap_closed;
    }
    if (static_cast<int>(result_.rounds.size()) >= options_.rounds) {
        return ending::rounds_used;
    }
    if (seconds_since(start_) >= options_.seconds) {
        return ending::time_used;
    }
    return std::nullopt;
}

void run::one_round() {
    const clock::time_point begin = clock::now();
    const std::vector<cut> cuts = separator_.find(result_.pool, relaxation_.point());
    const double separation_ms = seconds_since(begin) * 1e3;
    if (cuts.empty()) {
        end(should_stop() ? stopped() : ending::no_cut_found);
        return;
    }
    const clock::time_point solving = clock::now();
    const std::size_t before = result_.pool.size();
    add(cuts);
    if (solve()) {
        note(separator_.found(), cuts.size(), separation_ms, seconds_since(solving) * 1e3);
    } else if (result_.how != ending::no_integer_point) {
        // A round that was not ended counts for nothing.
        result_.pool.erase(result_.pool.begin() + static_cast<std::ptrdiff_t>(before),
                           result_.pool.end());
    }
}

void run::add(const std::vector<cut>& cuts) {
    for (const cut& each : cuts) {
        result_.pool.push_back(row_of(each, from_.column_count()));
    }
    relaxation_.add(cuts);
}

bool run::solve() {
    const relaxation::outcome found = relaxation_.solve();
    if (found != relaxation::outcome::optimal) {
        end(ending_of(found));
        return false;
    }
    const double before = *result_.bound;
    // More rows can only raise the bound, up to the tolerances of the simplex method.
    zktarn::assert_mod::tarnassert(relaxation_.bound() >=
                                   before - 1e-6 * (1.0 + std::fabs(before)));
    result_.bound = std::max(before, relaxation_.bound());
    history_.push_back(*result_.bound);
    return true;
}

ending run::ending_of(relaxation::outcome found) const {
    switch (found) {
    case relaxation::outcome::infeasible:
        return ending::no_integer_point;
    case relaxation::outcome::stopped:
        return stopped();
    default:
        return ending::numeric_trouble;
    }
}

void run::note(std::size_t found, std::size_t kept, double separation_ms, double relaxation_ms) {
    const int round = static_cast<int>(result_.rounds.size()) + 1;
    result_.rounds.push_back({round, *result_.bound, result_.gap_closed(result_.bound), found, kept,
                              separation_ms, relaxation_ms, seconds_since(start_)});
    host_.print_round(line_of(result_.rounds.back()));
    host_.report("cutting", round, *result_.bound, history_);
}

struct ending_text {
    const char* name;
    const char* description;
};

ending_text text_of(ending how) {
    switch (how) {
    case ending::no_cut_found:
        return {"no_cut_found", "no violated cut was found"};
    case ending::integral:
        return {"integral", "the relaxation's optimum is integral"};
    case ending::rounds_used:
        return {"rounds_used", "all rounds were used"};
    case ending::time_used:
        return {"time_used", "the time was used"};
    case ending::gap_closed:
        return {"gap_closed", "the gap is closed as far as asked"};
    case ending::no_integer_point:
        return {"no_integer_point", "the cuts leave no point: there is no integer one"};
    case ending::stopped_by_output_function:
        return {"stopped_by_output_function", "the output function stopped it"};
    case ending::numeric_trouble:
        return {"numeric_trouble", "numeric trouble"};
    case ending::interrupted:
        break;
    }
    return {"interrupted", "it was interrupted"};
}

} // namespace

const char* description(ending how) {
    return text_of(how).description;
}

const char* name(ending how) {
    return text_of(how).name;
}

std::optional<double> run_result::gap_closed(std::optional<double> by) const {
    if (!optimum || !first_bound || !by) {
        return std::nullopt;
    }
    const double gap = *optimum - *first_bound;
    const double negligible = 1e-9 * (1.0 + std::fabs(*optimum));
    if (gap < -negligible) {
        return std::nullopt;
    }
    return gap <= negligible ? 100.0 : 100.0 * (*by - *first_bound) / gap;
}

run_result tighten(const model& from, const run_options& options) {
    return run(from, options).finish();
}

} // namespace zero_half
