#include "solver/model_files.hpp"

namespace zero_half::testing {

namespace {

rational power_of_ten(int exponent) {
    rational power = 1;
    for (int k = 0; k < std::abs(exponent); ++k) {
        power *= 10;
    }
    return exponent < 0 ? rational(1 / power) : power;
}

exact_range at_most(const rational& side) {
    return {{}, side};
}

exact_range at_least(const rational& side) {
    return {side, {}};
}

} // namespace

/// A nonzero number with up to three places.
rational model_generator::decimal() {
    const rational sign = one_in(2) ? 1 : -1;
    return sign * (1 + below(one_in(4) ? 9999 : 30)) * power_of_ten(-below(4));
}

rational model_generator::large_number() {
    return (1 + below(999)) * power_of_ten(below(one_in(3) ? 12 : 6)) + below(2);
}

void model_generator::add_column(exact_model& model, bool is_integer, const exact_range& range) {
    model.columns.push_back(range);
    model.is_integer.push_back(is_integer ? 1 : 0);
}

void model_generator::add_integer_columns(exact_model& model, int count, int most_range) {
    for (int j = 0; j < count; ++j) {
        add_column(model, true, {rational(0), rational(1 + below(most_range))});
    }
}

void model_generator::add_unstructured(exact_model& model) {
    const int columns = 2 + below(6);
    const int rows = 1 + below(6);
    const bool has_decimals = one_in(2);
    add_integer_columns(model, 1, 3);
    for (int j = 1; j < columns; ++j) {
        add_column(model, !one_in(3), {rational(0), rational(1 + below(3))});
    }
    for (int i = 0; i < rows; ++i) {
        exact_model::row row;
        rational activity = 0;
        for (int j = 0; j < columns; ++j) {
            if (!one_in(3)) {
                row.entries.emplace_back(j, has_decimals ? decimal()
                                                         : rational(1 + below(6) - 7 * below(2)));
                activity += row.entries.back().second * below(3);
            }
        }
        row.range = one_in(2) ? at_most(activity) : at_least(activity);
        model.rows.push_back(row);
    }
}

/// Packing, covering or matching on a random graph: rows over edges or nodes.
void model_generator::add_graph(exact_model& model) {
    const int nodes = 4 + below(4);
    const bool is_matching = one_in(2);
    std::vector<std::pair<int, int>> edges;
    for (int a = 0; a < nodes; ++a) {
        for (int b = a + 1; b < nodes; ++b) {
            if (below(nodes) < 3) {
                edges.emplace_back(a, b);
            }
        }
    }
    const int columns = std::max(1, is_matching ? static_cast<int>(edges.size()) : nodes);
    add_integer_columns(model, columns, one_in(3) ? 3 : 1);
    const bool is_covering = one_in(3);
    for (int node = 0; is_matching && node < nodes; ++node) {
        exact_model::row row;
        for (std::size_t e = 0; e < edges.size(); ++e) {
            if (edges[e].first == node || edges[e].second == node) {
                row.entries.emplace_back(static_cast<int>(e), 1);
            }
        }
        row.range = is_covering ? at_least(1) : at_most(1 + below(2));
        model.rows.push_back(row);
    }
    for (std::size_t e = 0; !is_matching && e < edges.size(); ++e) {
        model.rows.push_back(
            {{{edges[e].first, 1}, {edges[e].second, 1}}, is_covering ? at_least(1) : at_most(1)});
    }
}

/// Parity equations: a sum of a few columns plus twice a column of the row's own is a number.
void model_generator::add_parity_equations(exact_model& model) {
    const int columns = 3 + below(4);
    const int rows = 1 + below(4);
    add_integer_columns(model, columns, 2);
    for (int i = 0; i < rows; ++i) {
        exact_model::row row;
        for (int j = 0; j < columns; ++j) {
            if (one_in(2)) {
                row.entries.emplace_back(j, 1 + 2 * below(2));
            }
        }
        row.entries.emplace_back(model.column_count(), -2);
        add_column(model, true, {rational(0), rational(4)});
        const rational side = below(3);
        row.range = {side, side};
        model.rows.push_back(row);
    }
}

void model_generator::add_knapsacks(exact_model& model, bool is_large) {
    const int columns = 3 + below(5);
    const int rows = 1 + below(4);
    add_integer_columns(model, columns, one_in(2) ? 1 : 4);
    for (int i = 0; i < rows; ++i) {
        exact_model::row row;
        rational sum = 0;
        for (int j = 0; j < columns; ++j) {
            if (!one_in(4)) {
                row.entries.emplace_back(j, is_large ? large_number() : integer_between(1, 40));
                sum +=
                    row.entries.back().second * *model.columns[static_cast<std::size_t>(j)].upper;
            }
        }
        const rational half(boost::multiprecision::cpp_int(numerator(sum) / denominator(sum) / 2));
        row.range = one_in(3) ? at_least(half) : at_most(half);
        model.rows.push_back(row);
    }
}

/// Fixed charges: binary columns open flows, whose sum has to meet a demand.
void model_generator::add_fixed_charges(exact_model& model) {
    const int arcs = 2 + below(3);
    exact_model::row demand;
    for (int a = 0; a < arcs; ++a) {
        const rational capacity = one_in(3) ? abs(decimal()) : integer_between(1, 9);
        add_column(model, true, {rational(0), rational(1 + below(3))});
        add_column(model, false, at_least(0));
        model.rows.push_back({{{2 * a + 1, 1}, {2 * a, -capacity}}, at_most(0)});
        demand.entries.emplace_back(2 * a + 1, 1);
    }
    demand.range = at_least(1 + below(6));
    model.rows.push_back(demand);
}

void model_generator::set_objective(exact_model& model) {
    const bool has_decimals = one_in(4);
    model.is_maximised = one_in(2);
    for (int j = 0; j < model.column_count(); ++j) {
        model.objective.push_back(one_in(8)      ? rational(0)
                                  : has_decimals ? decimal()
                                                 : integer_between(-3, 9));
    }
    model.constant = one_in(4) ? decimal() : rational(0);
}

/// Removes some bounds, and fixes some columns.
void model_generator::loosen_columns(exact_model& model) {
    for (exact_range& range : model.columns) {
        if (one_in(12)) {
            range.upper.reset();
        }
        if (one_in(20)) {
            range.lower.reset();
        }
        if (one_in(30) && range.lower) {
            range.upper = range.lower;
        }
    }
}

/// Replaces columns x by t + x or t - x, which hides structure behind other bounds and signs.
void model_generator::move_columns(exact_model& model) {
    for (int j = 0; j < model.column_count(); ++j) {
        if (!one_in(3)) {
            continue;
        }
        const auto at = static_cast<std::size_t>(j);
        const bool is_negated = one_in(2);
        const rational shift =
            model.is_integer[at] == 0 && one_in(2) ? decimal() : integer_between(-5, 5);
        exact_range& range = model.columns[at];
        if (is_negated) {
            std::swap(range.lower, range.upper);
        }
        for (auto* const bound : {&range.lower, &range.upper}) {
            if (*bound) {
                *bound = shift + (is_negated ? rational(-**bound) : **bound);
            }
        }
        for (exact_model::row& row : model.rows) {
            for (auto& [column, value] : row.entries) {
                value = column == j && is_negated ? rational(-value) : value;
                for (auto* const side : {&row.range.lower, &row.range.upper}) {
                    if (column == j && *side) {
                        *side = **side + value * shift;
                    }
                }
            }
        }
    }
}

void model_generator::scale_rows(exact_model& model) {
    for (exact_model::row& row : model.rows) {
        if (!one_in(4)) {
            continue;
        }
        const rational factor = one_in(2) ? abs(decimal()) : power_of_ten(below(7) - 3);
        for (auto& entry : row.entries) {
            entry.second *= factor;
        }
        for (auto* const side : {&row.range.lower, &row.range.upper}) {
            if (*side) {
                *side = **side * factor;
            }
        }
    }
}

/// Turns some rows into equations, ranges or rows without sides, and moves some sides.
void model_generator::change_sides(exact_model& model) {
    for (exact_model::row& row : model.rows) {
        auto& lower = row.range.lower;
        auto& upper = row.range.upper;
        const rational shift = one_in(2) ? integer_between(-2, 2) : decimal();
        switch (below(16)) {
        case 0:
            lower = upper = lower ? lower : upper;
            break;
        case 1:
            (lower ? upper : lower) = lower ? *lower + abs(shift) : *upper - abs(shift);
            break;
        case 2:
            upper = upper ? std::optional(rational(*upper + shift)) : upper;
            lower = lower ? std::optional(rational(*lower + shift)) : lower;
            break;
        case 3:
            lower.reset();
            break;
        default:
            break;
        }
    }
}

exact_model model_generator::next() {
    exact_model model;
    switch (below(8)) {
    case 0:
    case 1:
        add_unstructured(model);
        break;
    case 2:
    case 3:
        add_graph(model);
        break;
    case 4:
        add_parity_equations(model);
        break;
    case 5:
        add_knapsacks(model, false);
        break;
    case 6:
        add_knapsacks(model, true);
        break;
    default:
        add_fixed_charges(model);
        break;
    }
    set_objective(model);
    loosen_columns(model);
    change_sides(model);
    move_columns(model);
    scale_rows(model);
    return model;
}

} // namespace zero_half::testing
