#include "cuts/cut_selection.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace zero_half {

namespace {

bool is_wide(const cut& of, double widest) {
    const auto [least, most] =
        std::minmax_element(of.coefficients.begin(), of.coefficients.end(),
                            [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    return std::fabs(*most) > std::fabs(*least) * widest;
}

} // namespace

bool cut_selection::is_dense(const cut& of, double most_dense) const {
    constexpr std::size_t always_short = 50;
    const std::size_t size = of.columns.size();
    return size > always_short && static_cast<double>(size) > most_dense * candidate_.capacity();
}

void cut_selection::load(const cut& from) {
    candidate_.clear();
    for (std::size_t k = 0; k < from.columns.size(); ++k) {
        candidate_.set(from.columns[k], from.coefficients[k]);
    }
}

bool cut_selection::is_parallel_to(const cut& other, double norm, double most_parallel) const {
    double product = 0.0;
    for (std::size_t k = 0; k < other.columns.size(); ++k) {
        if (candidate_.has(other.columns[k])) {
            product += other.coefficients[k] * candidate_.value(other.columns[k]);
        }
    }
    return product > most_parallel * norm * other.norm;
}

/// Whether the other has no smaller coefficient, and larger ones only of columns that are never
/// negative: then whatever satisfies it satisfies the candidate.
bool cut_selection::is_dominated_by(const cut& other, const cut& candidate) const {
    std::size_t shared = 0;
    for (std::size_t k = 0; k < other.columns.size(); ++k) {
        const std::int32_t j = other.columns[k];
        const bool is_shared = candidate_.has(j);
        const double more = other.coefficients[k] - (is_shared ? candidate_.value(j) : 0.0);
        if (more < 0.0 || (more > 0.0 && from_.lower[static_cast<std::size_t>(j) - 1] < 0.0)) {
            return false;
        }
        shared += is_shared ? 1 : 0;
    }
    return shared == candidate.columns.size() && other.right <= candidate.right;
}

/// Moves cuts over, the best first.
void cut_selection::choose(std::vector<cut>& from, const selection_options::step& by) {
    for (const std::size_t i : order_) {
        cut& each = from[i];
        if (kept_.size() >= by.fewer_than) {
            return;
        }
        if (each.columns.empty() || is_dense(each, by.most_dense)) {
            continue;
        }
        load(each);
        const bool is_new = std::none_of(kept_.begin(), kept_.end(), [&](const cut& other) {
            return is_parallel_to(other, each.norm, by.most_parallel) ||
                   is_dominated_by(other, each);
        });
        if (is_new) {
            kept_.push_back(std::exchange(each, {}));
        }
    }
}

std::vector<cut> cut_selection::best_of(std::vector<cut> cuts) {
    std::erase_if(cuts, [this](const cut& each) { return is_wide(each, options_.widest); });
    order_.resize(cuts.size());
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::sort(order_.begin(), order_.end(), [&](std::size_t a, std::size_t b) {
        return std::pair(-cuts[a].distance(), a) < std::pair(-cuts[b].distance(), b);
    });
    kept_.clear();
    for (const selection_options::step& step : options_.steps) {
        choose(cuts, step);
    }
    return std::move(kept_);
}

} // namespace zero_half
