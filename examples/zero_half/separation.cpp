#include "separation.hpp"

#include <cmath>
#include <optional>
#include <utility>

#include "odd_walks.hpp"

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
                     const separation_options& options)
    : from_(from), options_(options), sums_(options.enough), elimination_(random),
      derivation_(from), selection_(from.column_count(), options.selection) {}

std::vector<cut> separator::find(std::span<const integral_row> pool, const double* point) {
    bounds_ = nearest_bounds(from_, point);
    system_.build(pool, bounds_, point);
    search();
    std::vector<cut> cuts = violated_cuts(pool, point);
    if (cuts.empty() && !system_.is_graph()) {
        search_harder();
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

void separator::search_harder() {
    if (system_.rows().size() <= options_.small_system) {
        descent_.find(system_, sums_);
    }
}

std::vector<cut> separator::violated_cuts(std::span<const integral_row> pool, const double* point) {
    std::vector<cut> cuts;
    sums_.sort();
    for (std::size_t i = 0; i < sums_.size() && cuts.size() < options_.most_cuts; ++i) {
        std::optional<cut> made = derivation_.cut_of(sums_.members(i), pool, bounds_);
        if (!made) {
            continue;
        }
        judge(*made, point);
        if (made->violation >= options_.least_violation) {
            cuts.push_back(std::move(*made));
        }
    }
    return cuts;
}

} // namespace zero_half
