#include "cuts/separation.hpp"

#include <cmath>
#include <utility>

#include "cuts/greedy_search.hpp"
#include "cuts/odd_cycles.hpp"

namespace zero_half {

namespace {

void set_efficacy(cut& candidate, const double* point) {
    double activity = 0.0;
    double square = 0.0;
    for (std::size_t k = 0; k < candidate.columns.size(); ++k) {
        activity += candidate.coefficients[k] * point[candidate.columns[k] - 1];
        square += candidate.coefficients[k] * candidate.coefficients[k];
    }
    candidate.violation = activity - candidate.rhs;
    candidate.norm = std::sqrt(square);
}

} // namespace

separator::separator(const model& program, const zktarn::random::rng_state& random,
                     stop_predicate should_stop, const separation_options& options)
    : model_(program), should_stop_(std::move(should_stop)), options_(options),
      sums_(options.enough), elimination_(random), rounding_(program),
      selection_(program, options.selection) {}

std::vector<cut> separator::find(std::span<const integral_row> pool, const double* point) {
    bounds_ = nearest_bounds(model_, point);
    system_.build(pool, bounds_, point);
    search();
    std::vector<cut> cuts = violated_cuts(pool, point);
    if (cuts.empty() && search_harder()) {
        cuts = violated_cuts(pool, point);
    }
    found_ = cuts.size();
    return selection_.select(std::move(cuts));
}

/// Exact where every row is an edge of a graph; elsewhere several eliminations.
void separator::search() {
    sums_.reset(system_);
    for (std::size_t i = 0; i < system_.rows().size(); ++i) {
        sums_.add_if_violated(system_.rows()[i]);
    }
    if (system_.is_graph()) {
        find_odd_cycles(system_, should_stop_, sums_);
        return;
    }
    for (int i = 0; i < options_.restarts && !sums_.are_enough() && !should_stop_(); ++i) {
        elimination_.find(system_, should_stop_, sums_);
    }
}

/// Returns false without a search where the first search was exact or the system is too large.
bool separator::search_harder() {
    if (system_.is_graph() || system_.rows().size() > options_.small_system) {
        return false;
    }
    find_by_greedy_search(system_, should_stop_, sums_);
    return true;
}

/// The point may violate a row of the model after its coefficients were divided and its right-hand
/// side was rounded.
void separator::add_divided_rows(std::span<const integral_row> pool, const double* point,
                                 std::vector<cut>& cuts) const {
    for (std::size_t i = 0; i < pool.size() && pool[i].origin.model_row >= 0; ++i) {
        if (system_.slack_in_pool(i) <= -options_.least_violation) {
            add_if_violated(cg_rounding::divided_row(static_cast<int>(i), pool), point, cuts);
        }
    }
}

void separator::add_if_violated(std::optional<cut> candidate, const double* point,
                                std::vector<cut>& cuts) const {
    if (!candidate) {
        return;
    }
    set_efficacy(*candidate, point);
    if (candidate->violation >= options_.least_violation) {
        cuts.push_back(std::move(*candidate));
    }
}

std::vector<cut> separator::violated_cuts(std::span<const integral_row> pool, const double* point) {
    std::vector<cut> cuts;
    add_divided_rows(pool, point, cuts);
    sums_.sort();
    for (std::size_t i = 0; i < sums_.size() && cuts.size() < options_.most_cuts; ++i) {
        add_if_violated(rounding_.halved_sum(sums_.members(i), pool, bounds_), point, cuts);
    }
    return cuts;
}

} // namespace zero_half
