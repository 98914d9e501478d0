#pragma once

#include <random>
#include <string>

#include "solver/exact_model.hpp"

namespace zero_half::testing {

/// Small random models of many kinds: odd structures on graphs, knapsacks, fixed charges, parity
/// equations, and unstructured rows. They have integer, continuous and free columns, negative
/// bounds, equations, ranges, decimals, large numbers and maximisation; some have no feasible
/// point, no integer point, or are unbounded. Every number is a decimal of a few digits.
class model_generator {
public:
    explicit model_generator(unsigned seed) : random_(seed) {}
    exact_model next();

private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    bool one_in(int n) { return below(n) == 0; }
    rational integer_between(int low, int high) { return low + below(high - low + 1); }
    rational decimal();
    rational large_number();

    void add_column(exact_model& model, bool is_integer, const exact_range& range);
    void add_integer_columns(exact_model& model, int count, int most_range);
    void add_unstructured(exact_model& model);
    void add_graph(exact_model& model);
    void add_parity_equations(exact_model& model);
    void add_knapsacks(exact_model& model, bool is_large);
    void add_fixed_charges(exact_model& model);

    void set_objective(exact_model& model);
    void loosen_columns(exact_model& model);
    void move_columns(exact_model& model);
    void scale_rows(exact_model& model);
    void change_sides(exact_model& model);

    std::mt19937 random_;
};

/// The model as a text in free MPS.
std::string mps_text(const exact_model& model);
/// Removes what the LP format cannot express: a constant of the objective, rows without entries.
void make_fit_for_lp(exact_model& model);
/// The model as a text in the LP format. A range is written as two rows.
std::string lp_text(const exact_model& model);

} // namespace zero_half::testing
