#include "solver/exact_model.hpp"

namespace zero_half::testing {

exact_lp::exact_lp(const exact_model& model) {
    const int n = model.column_count();
    for (int j = 0; j < n; ++j) {
        const exact_range& range = model.columns[static_cast<std::size_t>(j)];
        variables_.push_back({range, range.lower ? *range.lower : range.upper.value_or(0)});
        nonbasic_.push_back(j);
    }
    for (const exact_model::row& row : model.rows) {
        std::vector<rational> coefficients(static_cast<std::size_t>(n), 0);
        rational activity = 0;
        for (const auto& [j, value] : row.entries) {
            coefficients[static_cast<std::size_t>(j)] += value;
            activity += value * at(j).value;
        }
        basic_.push_back(static_cast<int>(variables_.size()));
        variables_.push_back({row.range, activity});
        tableau_.push_back(std::move(coefficients));
    }
}

void exact_lp::set_range(int column, const exact_range& range) {
    at(column).range = range;
    for (std::size_t k = 0; k < nonbasic_.size(); ++k) {
        if (nonbasic_[k] == column && at(column).is_below()) {
            move(k, *range.lower - at(column).value);
        } else if (nonbasic_[k] == column && at(column).is_above()) {
            move(k, *range.upper - at(column).value);
        }
    }
}

/// Changes the value of nonbasic variable k.
void exact_lp::move(std::size_t k, const rational& difference) {
    at(nonbasic_[k]).value += difference;
    for (std::size_t i = 0; i < basic_.size(); ++i) {
        if (tableau_[i][k] != 0) {
            at(basic_[i]).value += tableau_[i][k] * difference;
        }
    }
}

/// Exchanges basic variable i with nonbasic variable k.
void exact_lp::pivot(std::size_t i, std::size_t k) {
    const rational inverse = 1 / tableau_[i][k];
    for (rational& each : tableau_[i]) {
        each *= -inverse;
    }
    tableau_[i][k] = inverse;
    for (std::size_t other = 0; other < basic_.size(); ++other) {
        const rational factor = tableau_[other][k];
        if (other == i || factor == 0) {
            continue;
        }
        tableau_[other][k] = 0;
        for (std::size_t each = 0; each < nonbasic_.size(); ++each) {
            tableau_[other][each] += factor * tableau_[i][each];
        }
    }
    std::swap(basic_[i], nonbasic_[k]);
}

/// The violated basic variable with the smallest number.
std::optional<std::size_t> exact_lp::violated_row() const {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < basic_.size(); ++i) {
        const variable& each = at(basic_[i]);
        if ((each.is_below() || each.is_above()) && (!found || basic_[i] < basic_[*found])) {
            found = i;
        }
    }
    return found;
}

/// The nonbasic variable with the smallest number that can move basic variable i up or down.
std::optional<std::size_t> exact_lp::helping_column(std::size_t i, bool is_rising) const {
    std::optional<std::size_t> found;
    for (std::size_t k = 0; k < nonbasic_.size(); ++k) {
        if (tableau_[i][k] == 0 || (found && nonbasic_[k] > nonbasic_[*found])) {
            continue;
        }
        const variable& each = at(nonbasic_[k]);
        if ((tableau_[i][k] > 0) == is_rising ? each.can_rise() : each.can_fall()) {
            found = k;
        }
    }
    return found;
}

bool exact_lp::make_feasible() {
    for (const variable& each : variables_) {
        if (each.range.lower && each.range.upper && *each.range.lower > *each.range.upper) {
            return false;
        }
    }
    while (const std::optional<std::size_t> i = violated_row()) {
        const variable& leaving = at(basic_[*i]);
        const bool is_rising = leaving.is_below();
        const std::optional<std::size_t> k = helping_column(*i, is_rising);
        if (!k) {
            return false;
        }
        const rational target = is_rising ? *leaving.range.lower : *leaving.range.upper;
        move(*k, (target - leaving.value) / tableau_[*i][*k]);
        pivot(*i, *k);
    }
    return true;
}

rational exact_lp::reduced_cost(std::size_t k, const std::vector<rational>& objective) const {
    const auto cost = [&](int variable_number) {
        const auto j = static_cast<std::size_t>(variable_number);
        return j < objective.size() ? objective[j] : rational(0);
    };
    rational sum = cost(nonbasic_[k]);
    for (std::size_t i = 0; i < basic_.size(); ++i) {
        sum += cost(basic_[i]) * tableau_[i][k];
    }
    return sum;
}

/// The ratio test: how far nonbasic variable k can move, and what limits it. Nothing: unbounded.
std::optional<exact_lp::step> exact_lp::longest_step(std::size_t k, bool is_rising) const {
    std::optional<step> longest;
    const exact_range& own = at(nonbasic_[k]).range;
    if (const auto& side = is_rising ? own.upper : own.lower) {
        longest = step{{}, abs(*side - at(nonbasic_[k]).value)};
    }
    int number = nonbasic_[k];
    for (std::size_t i = 0; i < basic_.size(); ++i) {
        if (tableau_[i][k] == 0) {
            continue;
        }
        const variable& each = at(basic_[i]);
        const auto& side = (tableau_[i][k] > 0) == is_rising ? each.range.upper : each.range.lower;
        if (!side) {
            continue;
        }
        const rational length = abs((*side - each.value) / tableau_[i][k]);
        if (!longest || length < longest->length ||
            (length == longest->length && basic_[i] < number)) {
            longest = step{i, length};
            number = basic_[i];
        }
    }
    return longest;
}

exact_lp::outcome exact_lp::minimise(const std::vector<rational>& objective) {
    if (!make_feasible()) {
        return outcome::infeasible;
    }
    for (;;) {
        std::optional<std::size_t> entering;
        bool is_rising = false;
        for (std::size_t k = 0; k < nonbasic_.size(); ++k) {
            if (entering && nonbasic_[k] > nonbasic_[*entering]) {
                continue;
            }
            const rational cost = reduced_cost(k, objective);
            const variable& each = at(nonbasic_[k]);
            if ((cost < 0 && each.can_rise()) || (cost > 0 && each.can_fall())) {
                entering = k;
                is_rising = cost < 0;
            }
        }
        if (!entering) {
            return outcome::optimal;
        }
        const std::optional<step> chosen = longest_step(*entering, is_rising);
        if (!chosen) {
            return outcome::unbounded;
        }
        move(*entering, is_rising ? chosen->length : rational(-chosen->length));
        if (chosen->row) {
            pivot(*chosen->row, *entering);
        }
    }
}

} // namespace zero_half::testing
