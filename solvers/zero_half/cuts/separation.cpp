#include "cuts/separation.hpp"

#include <array>
#include <cmath>
#include <utility>

#include "cuts/odd_walks.hpp"

namespace zero_half {

namespace {

/// Fills in how much the point violates it.
void judge(cut& of, const double* point) {
    double activity = 0.0;
    double square = 0.0;
    for (std::size_t k = 0; k < of.columns.size(); ++k) {
        activity += of.coefficients[k] * point[of.columns[k] - 1];
        square += of.coefficients[k] * of.coefficients[k];
    }
    of.violation = activity - of.right;
    of.norm = std::sqrt(square);
}

} // namespace

separator::separator(const model& from, zktarn::random::rng_state& random,
                     std::function<bool()> should_stop, const separation_options& options)
    : from_(from), options_(options), sums_(options.enough, std::move(should_stop)),
      elimination_(random), derivation_(from), selection_(from, options.selection) {}

std::vector<cut> separator::find(std::span<const integral_row> pool, const double* point) {
    bounds_ = nearest_bounds(from_, point);
    system_.build(pool, bounds_, point);
    search();
    std::vector<cut> cuts = violated_cuts(pool, point);
    if (cuts.empty() && search_harder()) {
        cuts = violated_cuts(pool, point);
    }
    found_ = cuts.size();
    return selection_.best_of(std::move(cuts));
}

/// Exactly where every row is the edge of a graph, in many orders where not.
void separator::search() {
    sums_.start(system_);
    for (std::size_t i = 0; i < system_.rows().size(); ++i) {
        sums_.note(system_.rows()[i]);
    }
    if (system_.is_graph()) {
        find_odd_walks(system_, sums_);
        return;
    }
    for (int i = 0; i < options_.restarts && !sums_.are_enough(); ++i) {
        elimination_.find(system_, sums_);
    }
}

bool separator::search_harder() {
    if (system_.is_graph() || system_.rows().size() > options_.small_system) {
        return false;
    }
    descent_.find(system_, sums_);
    return true;
}

/// A row of the model that was divided and then rounded cuts off points which the relaxation has.
void separator::add_rounded_rows(std::vector<cut>& to, std::span<const integral_row> pool,
                                 const double* point) {
    for (std::size_t i = 0; i < pool.size() && pool[i].from.model_row >= 0; ++i) {
        // Twice the row, halved, is the row itself.
        const std::array<int, 2> twice = {static_cast<int>(i), static_cast<int>(i)};
        if (system_.slack_in_pool(i) <= -options_.least_violation) {
            add_if_violated(to, derivation_.cut_of(twice, pool, bounds_), point);
        }
    }
}

void separator::add_if_violated(std::vector<cut>& to, std::optional<cut> made,
                                const double* point) const {
    if (!made) {
        return;
    }
    judge(*made, point);
    if (made->violation >= options_.least_violation) {
        to.push_back(std::move(*made));
    }
}

std::vector<cut> separator::violated_cuts(std::span<const integral_row> pool, const double* point) {
    std::vector<cut> cuts;
    add_rounded_rows(cuts, pool, point);
    sums_.sort();
    for (std::size_t i = 0; i < sums_.size() && cuts.size() < options_.most_cuts; ++i) {
        add_if_violated(cuts, derivation_.cut_of(sums_.members(i), pool, bounds_), point);
    }
    return cuts;
}

} // namespace zero_half
