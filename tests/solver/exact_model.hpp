#pragma once

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>

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

} // namespace zero_half::testing
