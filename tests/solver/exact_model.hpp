#pragma once

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>

/// Models in rational numbers, and what their relaxations and integer programs come to.

namespace zero_half::testing {

using rational = boost::multiprecision::number<boost::multiprecision::cpp_rational::backend_type,
                                               boost::multiprecision::et_off>;

struct exact_range {
    std::optional<rational> lower = {};
    std::optional<rational> upper = {};
};

/// A mixed-integer program in rational numbers: a range for each row and column. Columns are
/// counted from 0.
struct exact_model {
    struct row {
        std::vector<std::pair<int, rational>> entries = {};
        exact_range range = {};
    };
    std::vector<row> rows = {};
    std::vector<exact_range> columns = {};
    std::vector<char> is_integer = {};
    std::vector<rational> objective = {};
    rational constant = 0;
    bool is_maximised = false;

    int column_count() const { return static_cast<int>(columns.size()); }
};

/// What branch and bound in rational arithmetic proves about a model. Values are those of the
/// model's own objective: a maximum if it maximises.
struct exact_verdict {
    enum class state { optimal, infeasible, unbounded, unknown };
    state relaxation = state::unknown;
    rational relaxation_value = 0;
    state integer = state::unknown;
    rational integer_value = 0;
};

/// The integer program is `unknown` if it needs more than a fixed number of nodes.
exact_verdict solve_exactly(const exact_model& model);

/// Whether a point of the model violates coefficients * x <= rhs, a row with integer coefficients
/// over integer columns counted from 1. Nothing if that needs too many nodes.
std::optional<bool> is_violated(const exact_model& model, std::span<const std::int32_t> columns,
                                std::span<const double> coefficients, double rhs);

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
