#include "solver/exact_model.hpp"

namespace zero_half::testing {

namespace {

using boost::multiprecision::cpp_int;

cpp_int floor_of(const rational& value) {
    const cpp_int quotient = numerator(value) / denominator(value);
    return rational(quotient) > value ? cpp_int(quotient - 1) : quotient;
}

/// Branch and bound, depth first. Without an objective it ends at the first integer point.
class search {
public:
    search(const exact_model& model, std::vector<rational> objective)
        : model_(model), objective_(std::move(objective)) {}

    void explore(exact_lp lp) {
        constexpr int most_nodes = 2000;
        if (is_over() || (!objective_.empty() && lp.minimise(objective_) != optimal) ||
            (objective_.empty() && !lp.make_feasible())) {
            return;
        }
        if (++nodes_ > most_nodes) {
            is_complete_ = false;
            return;
        }
        const rational value = value_of(lp);
        if (best_ && value >= *best_) {
            return;
        }
        const std::optional<int> column = fractional_column(lp);
        if (!column) {
            best_ = value;
            return;
        }
        const rational below(floor_of(lp.value(*column)));
        exact_range range = lp.range(*column);
        exact_lp rising = lp;
        lp.set_range(*column, {range.lower, below});
        explore(std::move(lp));
        rising.set_range(*column, {below + 1, range.upper});
        explore(std::move(rising));
    }

    const std::optional<rational>& best() const { return best_; }
    /// Whether the result is proven.
    bool is_complete() const { return is_complete_ || (objective_.empty() && best_); }

private:
    static constexpr exact_lp::outcome optimal = exact_lp::outcome::optimal;

    bool is_over() const { return !is_complete_ || (objective_.empty() && best_); }

    rational value_of(const exact_lp& lp) const {
        rational sum = 0;
        for (std::size_t j = 0; j < objective_.size(); ++j) {
            sum += objective_[j] * lp.value(static_cast<int>(j));
        }
        return sum;
    }

    std::optional<int> fractional_column(const exact_lp& lp) const {
        for (int j = 0; j < model_.column_count(); ++j) {
            if (model_.is_integer[static_cast<std::size_t>(j)] != 0 &&
                denominator(lp.value(j)) != 1) {
                return j;
            }
        }
        return std::nullopt;
    }

    const exact_model& model_;
    std::vector<rational> objective_;
    std::optional<rational> best_;
    int nodes_ = 0;
    bool is_complete_ = true;
};

/// The objective as a minimisation.
std::vector<rational> minimised_objective(const exact_model& model) {
    std::vector<rational> objective = model.objective;
    for (rational& each : objective) {
        each = model.is_maximised ? rational(-each) : each;
    }
    return objective;
}

rational in_sense_of(const exact_model& model, const rational& value) {
    return (model.is_maximised ? rational(-value) : value) + model.constant;
}

} // namespace

exact_verdict solve_exactly(const exact_model& model) {
    using state = exact_verdict::state;
    exact_verdict verdict;
    const std::vector<rational> objective = minimised_objective(model);
    exact_lp lp(model);
    const exact_lp::outcome relaxation = lp.minimise(objective);
    if (relaxation == exact_lp::outcome::infeasible) {
        verdict.relaxation = verdict.integer = state::infeasible;
        return verdict;
    }
    const bool is_unbounded = relaxation == exact_lp::outcome::unbounded;
    verdict.relaxation = is_unbounded ? state::unbounded : state::optimal;
    if (!is_unbounded) {
        rational value = 0;
        for (std::size_t j = 0; j < objective.size(); ++j) {
            value += objective[j] * lp.value(static_cast<int>(j));
        }
        verdict.relaxation_value = in_sense_of(model, value);
    }
    // With rational data, an integer program with a point and an unbounded relaxation is unbounded.
    search found(model, is_unbounded ? std::vector<rational>() : objective);
    found.explore(std::move(lp));
    if (!found.is_complete()) {
        return verdict;
    }
    verdict.integer = !found.best()  ? state::infeasible
                      : is_unbounded ? state::unbounded
                                     : state::optimal;
    if (verdict.integer == state::optimal) {
        verdict.integer_value = in_sense_of(model, *found.best());
    }
    return verdict;
}

std::optional<bool> is_violated(const exact_model& model, std::span<const std::int32_t> columns,
                                std::span<const double> coefficients, double rhs) {
    exact_model with_row = model;
    exact_model::row beyond;
    for (std::size_t k = 0; k < columns.size(); ++k) {
        beyond.entries.emplace_back(columns[k] - 1, rational(coefficients[k]));
    }
    // The activity is an integer.
    beyond.range.lower = rational(floor_of(rational(rhs)) + 1);
    with_row.rows.push_back(std::move(beyond));
    search found(with_row, {});
    found.explore(exact_lp(with_row));
    return found.is_complete() ? std::optional(found.best().has_value()) : std::nullopt;
}

} // namespace zero_half::testing
