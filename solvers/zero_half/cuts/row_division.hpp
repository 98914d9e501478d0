#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "cuts/mixed_integer_rows.hpp"
#include "cuts/row_pool.hpp"

namespace zero_half {

/// How a row becomes a Chvatal-Gomory cut: each column is substituted by a bound, the row is
/// divided and rounded down.
struct division {
    std::int64_t divisor = 1;
    /// For each entry of the row.
    std::vector<substitution> used = {};
    double efficacy = 0.0;
};

/// Looks for the divisor and the bounds that give the cut of greatest efficacy of a single row.
/// Extended cover inequalities of knapsack rows are such cuts: the divisor is the greatest
/// coefficient of the cover, and the columns of the cover are substituted by their upper bounds.
///
/// With divisor k, the cut is violated by f(0) - slack / k - the sum of f(j) * distance(j), where f
/// is the fractional part of a coefficient, or of the right-hand side, after the substitution and
/// the division. A column at a bound is substituted by this bound: its other one never gives a more
/// violated cut. Each of the others first takes the bound at which its term of the sum is less.
/// Then they change to their other bounds, one after the other, where the violation grows. Bounds
/// that a column does not have, and those beyond `largest_exact`, are not used.
class row_division {
public:
    row_division(const mixed_integer_rows& model, const row_pool& pool)
        : model_(model), pool_(pool) {}

    /// Tries coefficients of a row of the pool as divisors: at most `most_divisors` of columns
    /// between their bounds, and half as many of columns at a bound. Returns nothing when every cut
    /// is violated by less than `least_violation`.
    /// @param nearest  in. The substitutions of `nearest_bounds` at the point.
    ///
    /// Costs one pass over the row, and for each divisor one pass over the columns between their
    /// bounds.
    std::optional<division> best_of(std::size_t row, double slack, const double* point,
                                    const std::vector<substitution>& nearest,
                                    std::size_t most_divisors, double least_violation);

private:
    /// A column between its bounds: its place in the row, its coefficient, and both substitutions.
    struct free_column {
        std::size_t place;
        std::int64_t coefficient;
        substitution low;
        substitution up;
    };
    /// Such a column for one divisor: the residue of its coefficient, and its substitutions.
    struct term {
        std::int64_t residue;
        substitution used;
        substitution other;
        /// What a change to the other bound adds to the sum of the terms.
        double cost;
        /// What it adds to the residue of the right-hand side; 0 if it is useless or impossible.
        std::int64_t change;
    };

    bool load(std::size_t row, const double* point, const std::vector<substitution>& nearest);
    void add_divisor(std::int64_t divisor, std::size_t most);
    void collect_divisors(std::size_t most_divisors);
    bool try_divisor(std::int64_t divisor);
    bool add_term(const free_column& each);
    term* best_change();
    void improve();
    std::vector<substitution> used_bounds(std::size_t row,
                                          const std::vector<substitution>& nearest) const;
    double norm(std::size_t row, const std::vector<substitution>& used) const;

    const mixed_integer_rows& model_;
    const row_pool& pool_;
    /// The columns of the row between their bounds.
    std::vector<free_column> free_;
    /// The magnitudes of the coefficients of the columns at the bound at which they use most of the
    /// right-hand side: where the row is a knapsack, the columns of a cover.
    std::vector<std::int64_t> cover_;
    /// The right-hand side after the substitution of all columns at a bound.
    std::int64_t rhs_ = 0;
    std::vector<std::pair<double, std::int64_t>> candidates_;
    std::vector<std::int64_t> divisors_;
    /// Of the division being tried: the divisor, the columns, the residue of the right-hand side,
    /// and the sum of the terms.
    std::int64_t divisor_ = 1;
    std::vector<term> terms_;
    std::int64_t residue_ = 0;
    double cost_ = 0.0;
};

} // namespace zero_half
