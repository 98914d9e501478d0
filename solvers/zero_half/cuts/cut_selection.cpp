#include "cuts/cut_selection.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace zero_half {

namespace {

using namespace zktarn::vector_mod;

/// The ratio of the largest to the smallest coefficient exceeds the limit.
bool is_dynamic(const cut& candidate, double max_dynamism) {
    const auto [least, most] =
        std::minmax_element(candidate.coefficients.begin(), candidate.coefficients.end(),
                            [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    return std::fabs(*most) > std::fabs(*least) * max_dynamism;
}

} // namespace

bool cut_selection::is_dense(const cut& candidate, double max_density) const {
    constexpr std::size_t always_sparse = 50;
    const std::size_t size = candidate.columns.size();
    return size > always_sparse && static_cast<double>(size) > max_density * capacity(candidate_);
}

void cut_selection::load(const cut& candidate) {
    vector_clear(*candidate_);
    for (std::size_t k = 0; k < candidate.columns.size(); ++k) {
        vector_add_nz(*candidate_, candidate.columns[k], candidate.coefficients[k]);
    }
}

bool cut_selection::is_parallel_to(const cut& selected, double norm, double max_cosine) const {
    double product = 0.0;
    for (std::size_t k = 0; k < selected.columns.size(); ++k) {
        product += selected.coefficients[k] * vector_get_coef(*candidate_, selected.columns[k]);
    }
    return product > max_cosine * norm * selected.norm;
}

/// Whether the selected cut implies the candidate: no coefficient is smaller, those that are larger
/// belong to columns that are never negative, and the right-hand side is not larger.
bool cut_selection::is_dominated_by(const cut& selected, const cut& candidate) const {
    std::size_t shared = 0;
    for (std::size_t k = 0; k < selected.columns.size(); ++k) {
        const std::int32_t j = selected.columns[k];
        const bool is_shared = vector_is_elm(*candidate_, j) != 0;
        const double excess =
            selected.coefficients[k] - (is_shared ? vector_get_coef(*candidate_, j) : 0.0);
        if (excess < 0.0 || (excess > 0.0 && model_.lower[static_cast<std::size_t>(j) - 1] < 0.0)) {
            return false;
        }
        shared += is_shared ? 1 : 0;
    }
    return shared == candidate.columns.size() && selected.rhs <= candidate.rhs;
}

/// Moves cuts to the selected ones and leaves empty cuts in their places.
void cut_selection::run_pass(std::vector<cut>& cuts, const selection_options::pass& pass) {
    for (const std::size_t i : order_) {
        cut& candidate = cuts[i];
        if (selected_.size() >= pass.target) {
            return;
        }
        if (candidate.columns.empty() || is_dense(candidate, pass.max_density)) {
            continue;
        }
        load(candidate);
        const bool is_new =
            std::none_of(selected_.begin(), selected_.end(), [&](const cut& selected) {
                return is_parallel_to(selected, candidate.norm, pass.max_cosine) ||
                       is_dominated_by(selected, candidate);
            });
        if (is_new) {
            selected_.push_back(std::exchange(candidate, {}));
        }
    }
}

std::vector<cut> cut_selection::select(std::vector<cut> cuts) {
    std::erase_if(cuts, [this](const cut& candidate) {
        return is_dynamic(candidate, options_.max_dynamism);
    });
    order_.resize(cuts.size());
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::sort(order_.begin(), order_.end(), [&](std::size_t a, std::size_t b) {
        return std::pair(-cuts[a].efficacy(), a) < std::pair(-cuts[b].efficacy(), b);
    });
    selected_.clear();
    for (const selection_options::pass& pass : options_.passes) {
        run_pass(cuts, pass);
    }
    return std::move(selected_);
}

} // namespace zero_half
