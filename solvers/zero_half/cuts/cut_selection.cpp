#include "cuts/cut_selection.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zero_half {

namespace {

/// Whether the ratio of the largest to the smallest coefficient exceeds the limit.
bool is_dynamic(const cut& candidate, double max_dynamism) {
    double least = std::numeric_limits<double>::infinity();
    double most = 0.0;
    for (const double each : candidate.coefficients) {
        least = std::min(least, std::fabs(each));
        most = std::max(most, std::fabs(each));
    }
    return most > least * max_dynamism;
}

} // namespace

bool cut_selection::is_dense(const cut& each, double max_density) const {
    constexpr std::size_t always_sparse = 50;
    const std::size_t size = each.columns.size();
    return size > always_sparse &&
           static_cast<double>(size) > max_density * static_cast<double>(dense_.size());
}

void cut_selection::load(const cut& each) {
    for (std::size_t k = 0; k < each.columns.size(); ++k) {
        dense_[static_cast<std::size_t>(each.columns[k]) - 1] = each.coefficients[k];
    }
}

void cut_selection::unload(const cut& each) {
    for (const std::int32_t j : each.columns) {
        dense_[static_cast<std::size_t>(j) - 1] = 0.0;
    }
}

double cut_selection::cosine_to(const cut& selected, const cut& loaded) const {
    double product = 0.0;
    for (std::size_t k = 0; k < selected.columns.size(); ++k) {
        product +=
            selected.coefficients[k] * dense_[static_cast<std::size_t>(selected.columns[k]) - 1];
    }
    return product / (loaded.norm * selected.norm);
}

/// Whether the selected cut implies the loaded one: no coefficient is smaller, those that are
/// larger belong to columns that are never negative, and the right-hand side is not larger.
bool cut_selection::is_dominated_by(const cut& selected, const cut& loaded) const {
    if (selected.rhs > loaded.rhs || selected.columns.size() < loaded.columns.size()) {
        return false;
    }
    std::size_t shared = 0;
    for (std::size_t k = 0; k < selected.columns.size(); ++k) {
        const auto j = static_cast<std::size_t>(selected.columns[k]) - 1;
        const double excess = selected.coefficients[k] - dense_[j];
        if (excess < 0.0 || (excess > 0.0 && model_.lower[j] < 0.0)) {
            return false;
        }
        if (dense_[j] != 0.0) {
            ++shared;
        }
    }
    return shared == loaded.columns.size();
}

/// Whether no selected cut implies the cut or is nearly parallel to it.
bool cut_selection::is_new(candidate& each, const cut& own, double max_cosine) {
    load(own);
    bool is_rejected = false;
    while (each.compared < selected_.size() && !is_rejected) {
        const cut& selected = selected_[each.compared];
        each.cosine = cosine_to(selected, own);
        each.is_settled = each.cosine <= max_cosine && is_dominated_by(selected, own);
        is_rejected = each.cosine > max_cosine || each.is_settled;
        each.compared += is_rejected ? 0 : 1;
    }
    unload(own);
    return !is_rejected;
}

/// Moves the cuts that the pass takes from `cuts` to the selected ones.
void cut_selection::run_pass(std::vector<cut>& cuts, const selection_options::pass& pass) {
    for (candidate& each : candidates_) {
        if (selected_.size() >= pass.target) {
            return;
        }
        cut& own = cuts[each.cut];
        if (each.is_settled || each.cosine > pass.max_cosine || is_dense(own, pass.max_density)) {
            continue;
        }
        if (is_new(each, own, pass.max_cosine)) {
            each.is_settled = true;
            selected_.push_back(std::move(own));
        }
    }
}

std::vector<cut> cut_selection::select(std::vector<cut> cuts) {
    candidates_.clear();
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        if (!is_dynamic(cuts[i], options_.max_dynamism)) {
            candidates_.push_back({i, cuts[i].efficacy()});
        }
    }
    std::sort(candidates_.begin(), candidates_.end(), [](const candidate& a, const candidate& b) {
        return std::pair(-a.efficacy, a.cut) < std::pair(-b.efficacy, b.cut);
    });
    selected_.clear();
    for (const selection_options::pass& pass : options_.passes) {
        run_pass(cuts, pass);
    }
    return std::move(selected_);
}

} // namespace zero_half
