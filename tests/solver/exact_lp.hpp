#pragma once

#include <vector>

#include "solver/exact_model.hpp"

namespace zero_half::testing {

/// The linear relaxation of a model, solved in rational arithmetic by the simplex method with
/// Bland's rule, which rules out cycling. The tableau is dense, so models must be small.
class exact_lp {
public:
    enum class outcome { optimal, infeasible, unbounded };

    explicit exact_lp(const exact_model& model);

    void set_range(int column, const exact_range& range);
    const exact_range& range(int column) const { return at(column).range; }

    /// Finds a feasible point; false when there is none.
    bool make_feasible();
    /// Minimises, starting at the current point.
    outcome minimise(const std::vector<rational>& objective);
    const rational& value(int column) const { return at(column).value; }

private:
    /// The number of a column, or the number of columns plus that of a row, for its activity.
    struct variable {
        exact_range range;
        rational value;
        bool is_below() const { return range.lower && value < *range.lower; }
        bool is_above() const { return range.upper && value > *range.upper; }
        bool can_rise() const { return !range.upper || value < *range.upper; }
        bool can_fall() const { return !range.lower || value > *range.lower; }
    };
    struct step {
        /// The row of the tableau that limits the step; none if the variable's own range does.
        std::optional<std::size_t> row;
        rational length;
    };

    const variable& at(int k) const { return variables_[static_cast<std::size_t>(k)]; }
    variable& at(int k) { return variables_[static_cast<std::size_t>(k)]; }
    void move(std::size_t k, const rational& difference);
    void pivot(std::size_t i, std::size_t k);
    std::optional<std::size_t> violated_row() const;
    std::optional<std::size_t> helping_column(std::size_t i, bool is_rising) const;
    rational reduced_cost(std::size_t k, const std::vector<rational>& objective) const;
    std::optional<step> longest_step(std::size_t k, bool is_rising) const;

    std::vector<variable> variables_;
    /// Basic variable i is the sum of tableau_[i][k] times nonbasic variable k.
    std::vector<int> basic_;
    std::vector<int> nonbasic_;
    std::vector<std::vector<rational>> tableau_;
};

} // namespace zero_half::testing
