#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cuts/cg_rounding.hpp"
#include "cuts/cut_selection.hpp"
#include "cuts/integers.hpp"
#include "cuts/row_division.hpp"

namespace zero_half::testing {

namespace {

/// A model without rows whose columns are binary.
struct columns {
    explicit columns(std::size_t n) : lower(n, 0.0), upper(n, 1.0), is_integer(n, 1) {}

    mixed_integer_rows view() const {
        mixed_integer_rows model;
        model.lower = lower;
        model.upper = upper;
        model.is_integer = is_integer;
        return model;
    }

    std::vector<double> lower;
    std::vector<double> upper;
    std::vector<char> is_integer;
};

void add_row(row_pool& pool, const std::vector<double>& dense_row, double rhs) {
    std::vector<std::int32_t> indices;
    std::vector<double> coefficients;
    for (std::size_t j = 0; j < dense_row.size(); ++j) {
        if (dense_row[j] != 0.0) {
            indices.push_back(static_cast<std::int32_t>(j) + 1);
            coefficients.push_back(dense_row[j]);
        }
    }
    pool.add(indices, coefficients, rhs, {});
}

/// Halves and rounds the sum of these rows at a point.
std::optional<cut> halved(const columns& model, const row_pool& pool,
                          const std::vector<std::int32_t>& rows,
                          const std::vector<substitution>& bounds, const std::vector<double>& point,
                          std::int32_t changed_column = 0) {
    const mixed_integer_rows view = model.view();
    cg_rounding rounding(view, pool);
    return rounding.halved_sum({0.0, rows, changed_column}, bounds, point.data());
}

/// The dense coefficients of a cut.
std::vector<double> dense(const cut& inequality, std::size_t n) {
    std::vector<double> coefficients(n, 0.0);
    for (std::size_t k = 0; k < inequality.columns.size(); ++k) {
        coefficients[static_cast<std::size_t>(inequality.columns[k]) - 1] =
            inequality.coefficients[k];
    }
    return coefficients;
}

constexpr substitution at_lower{0.0, 0.5, false};
constexpr substitution at_upper{1.0, 0.5, true};

cut cut_with(std::vector<double> coefficients, double violation) {
    cut made;
    double square = 0.0;
    for (std::size_t j = 0; j < coefficients.size(); ++j) {
        if (coefficients[j] != 0.0) {
            made.columns.push_back(static_cast<std::int32_t>(j) + 1);
            made.coefficients.push_back(coefficients[j]);
            square += coefficients[j] * coefficients[j];
        }
    }
    made.violation = violation;
    made.norm = std::sqrt(square);
    return made;
}

std::vector<cut> select(std::size_t n, const selection_options& options, std::vector<cut> cuts) {
    const columns model(n);
    const mixed_integer_rows view = model.view();
    return cut_selection(view, options).select(std::move(cuts));
}

} // namespace

TEST(Rounding, IsExactBeyond32Bits) {
    for (const double n : {0.0, 1.0, 2147483646.0, 2147483647.0, 2147483648.0, 3e9, 1e15}) {
        EXPECT_EQ(floor_of(n, 0.0), n);
        EXPECT_EQ(floor_of(-n, 0.0), -n);
        EXPECT_EQ(ceiling_of(n, 0.0), n);
        EXPECT_EQ(ceiling_of(-n, 0.0), -n);
        EXPECT_FALSE(std::signbit(ceiling_of(n, 0.0)));
    }
    for (const double n : {0.0, 2147483646.0, 2147483647.0, 3e9}) {
        EXPECT_EQ(floor_of(n + 0.5, 0.0), n);
        EXPECT_EQ(floor_of(-n - 0.5, 0.0), -n - 1.0);
        EXPECT_EQ(ceiling_of(n + 0.5, 0.0), n + 1.0);
        EXPECT_EQ(ceiling_of(-n - 0.5, 0.0), -n);
    }
}

TEST(Rounding, ReturnsAnIntegerWithinTheTolerance) {
    EXPECT_EQ(floor_of(2.75, 0.25), 3.0);
    EXPECT_EQ(floor_of(2.5, 0.25), 2.0);
    EXPECT_EQ(ceiling_of(3.25, 0.25), 3.0);
    EXPECT_EQ(ceiling_of(3.5, 0.25), 4.0);
    EXPECT_EQ(floor_of(-3000000000.0625, 0.125), -3e9);
}

TEST(CgRounding, HalvesTheSumOfATriangleIntoAnOddCycle) {
    row_pool pool;
    add_row(pool, {1, 1, 0}, 1);
    add_row(pool, {0, 1, 1}, 1);
    add_row(pool, {1, 0, 1}, 1);
    const auto made =
        halved(columns(3), pool, {0, 1, 2}, {{}, at_lower, at_lower, at_lower}, {0.5, 0.5, 0.5});
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 3), (std::vector<double>{1, 1, 1}));
    EXPECT_EQ(made->rhs, 1.0);
    EXPECT_EQ(made->violation, 0.5);
    EXPECT_EQ(made->norm, std::sqrt(3.0));
    EXPECT_EQ(made->origin.divisor, 2.0);
    ASSERT_EQ(made->origin.terms.size(), 3u);
    EXPECT_EQ(made->origin.terms[2].row, 2);
    EXPECT_FALSE(made->origin.terms[2].is_model_row);
}

TEST(CgRounding, SubstitutesTheNearestBound) {
    row_pool pool;
    add_row(pool, {3, 3}, 4);
    const std::vector<double> point = {0.5, 0.5};
    const auto lower = halved(columns(2), pool, {0}, {{}, at_lower, at_lower}, point);
    ASSERT_TRUE(lower.has_value());
    EXPECT_EQ(dense(*lower, 2), (std::vector<double>{1, 1}));
    EXPECT_EQ(lower->rhs, 2.0);
    const auto upper = halved(columns(2), pool, {0}, {{}, at_lower, at_upper}, point);
    // 3 x1 - 3 y <= 1: x1 - 2 y <= 0, which is x1 + 2 x2 <= 2.
    ASSERT_TRUE(upper.has_value());
    EXPECT_EQ(dense(*upper, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(upper->rhs, 2.0);
}

TEST(CgRounding, SubstitutesAFartherBoundToMakeTheRightHandSideOdd) {
    row_pool pool;
    add_row(pool, {3, 3}, 4);
    const auto made = halved(columns(2), pool, {0}, {{}, at_lower, at_lower}, {0.5, 0.5}, 2);
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(made->rhs, 2.0);
}

TEST(CgRounding, DividesByTheGreatestCommonDivisorAndRoundsAgain) {
    row_pool pool;
    add_row(pool, {6, 12}, 11);
    const auto made = halved(columns(2), pool, {0}, {{}, at_lower, at_lower}, {0.5, 0.5});
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(made->rhs, 1.0);
    EXPECT_EQ(made->origin.divisor, 6.0);
}

TEST(CgRounding, DoesNotRoundTheCoefficientOfAColumnWithoutBounds) {
    row_pool pool;
    add_row(pool, {1, 2}, 1);
    add_row(pool, {2, 1}, 1);
    const std::vector<substitution> bounds = {{}, substitution{}, at_lower};
    EXPECT_FALSE(halved(columns(2), pool, {0}, bounds, {0.5, 0.5}).has_value());
    EXPECT_TRUE(halved(columns(2), pool, {1}, bounds, {0.5, 0.5}).has_value());
}

TEST(CgRounding, ReturnsNoCutForCoefficientsTooLargeToBeExact) {
    const auto is_made = [](const std::vector<double>& row, double rhs,
                            const substitution& first = at_lower) {
        row_pool pool;
        add_row(pool, row, rhs);
        return halved(columns(2), pool, {0}, {{}, first, at_lower}, {0.5, 0.5}).has_value();
    };
    EXPECT_TRUE(is_made({largest_coefficient, 3}, 1));
    EXPECT_FALSE(is_made({largest_coefficient + 1, 3}, 1));
    EXPECT_TRUE(is_made({2, 3}, largest_exact));
    EXPECT_FALSE(is_made({2, 3}, largest_exact + 1));
    EXPECT_FALSE(is_made({3, 3}, 1, {1e15, 0.5, false}));
}

TEST(CgRounding, ReturnsNoCutWithoutColumns) {
    row_pool pool;
    add_row(pool, {1}, 1);
    EXPECT_FALSE(halved(columns(1), pool, {0}, {{}, at_lower}, {0.5}).has_value());
}

TEST(RowPool, KeepsRowsAndTheirOddColumns) {
    row_pool pool;
    add_row(pool, {1, 2, -3}, 4);
    add_row(pool, {0, 2, 0}, 1);
    ASSERT_EQ(pool.size(), 2u);
    EXPECT_EQ(std::vector<std::int32_t>(pool.odd_columns(0).begin(), pool.odd_columns(0).end()),
              (std::vector<std::int32_t>{1, 3}));
    EXPECT_TRUE(pool.odd_columns(1).empty());
    const std::vector<double> point = {1.0, 0.5, 1.0};
    EXPECT_EQ(pool.slack(0, point.data()), 5.0);
    pool.truncate(1);
    EXPECT_EQ(pool.size(), 1u);
    add_row(pool, {0, 0, 7}, 1);
    EXPECT_EQ(pool.columns(1)[0], 3);
    EXPECT_EQ(pool.coefficients(1)[0], 7.0);
}

TEST(CgRounding, DividesARowByAnyInteger) {
    row_pool pool;
    add_row(pool, {7, -5, 3}, 11);
    const columns model(3);
    const mixed_integer_rows view = model.view();
    const std::vector<substitution> used = {at_upper, at_lower, at_lower};
    const std::vector<double> point = {0.5, 0.5, 0.5};
    const auto made = cg_rounding(view, pool).divided_row(0, 3, used, point.data());
    ASSERT_TRUE(made.has_value());
    // 7 - 7 (1 - x1) - 5 x2 + 3 x3 <= 11 gives 3 x1 - 2 x2 + x3 <= 3 + floor(4 / 3).
    EXPECT_EQ(dense(*made, 3), (std::vector<double>{3, -2, 1}));
    EXPECT_EQ(made->rhs, 4.0);
    EXPECT_EQ(made->origin.divisor, 3.0);
}

TEST(CgRounding, NeedsABoundWhereADivisionRounds) {
    row_pool pool;
    add_row(pool, {6, 5}, 11);
    const columns model(2);
    const mixed_integer_rows view = model.view();
    const std::vector<double> point = {0.5, 0.5};
    cg_rounding rounding(view, pool);
    EXPECT_TRUE(rounding.divided_row(0, 3, std::vector<substitution>{{}, at_lower}, point.data()));
    EXPECT_FALSE(rounding.divided_row(0, 3, std::vector<substitution>{at_lower, {}}, point.data()));
}

namespace {

/// A row over columns with small bounds, and a point that satisfies it.
struct divided_problem {
    explicit divided_problem(std::mt19937& random) : model(5) {
        const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
        std::vector<double> row(5);
        double activity = 0.0;
        for (std::size_t j = 0; j < row.size(); ++j) {
            model.lower[j] = below(3) - 1;
            model.upper[j] = model.lower[j] + 1 + below(3);
            const double share = below(3) == 0 ? below(2) : below(9) / 8.0;
            point.push_back(model.lower[j] + share * (model.upper[j] - model.lower[j]));
            row[j] = (below(2) == 0 ? -1 : 1) * (1 + below(20));
            activity += row[j] * point[j];
        }
        add_row(pool, row, std::ceil(activity) + below(2));
    }

    double slack() const { return pool.slack(0, point.data()); }

    columns model;
    row_pool pool;
    std::vector<double> point;
};

/// The most violation of the cuts of the row with this divisor, over all bounds.
double most_violation(const divided_problem& problem, std::int64_t divisor) {
    const mixed_integer_rows view = problem.model.view();
    cg_rounding rounding(view, problem.pool);
    double most = -1.0;
    for (unsigned choice = 0; choice < 32; ++choice) {
        std::vector<substitution> used;
        for (std::size_t j = 0; j < 5; ++j) {
            const bool is_upper = (choice >> j & 1u) != 0;
            used.push_back({is_upper ? view.upper[j] : view.lower[j], 0.0, is_upper});
        }
        const auto made = rounding.divided_row(0, divisor, used, problem.point.data());
        most = std::max(most, made ? made->violation : -1.0);
    }
    return most;
}

/// Whether every integer point of the row satisfies the cut.
bool is_valid(const divided_problem& problem, const cut& made) {
    std::vector<double> x = problem.model.lower;
    while (true) {
        double activity = -made.rhs;
        for (std::size_t k = 0; k < made.columns.size(); ++k) {
            activity += made.coefficients[k] * x[static_cast<std::size_t>(made.columns[k]) - 1];
        }
        if (problem.pool.slack(0, x.data()) >= 0.0 && activity > 0.0) {
            return false;
        }
        std::size_t j = 0;
        while (j < x.size() && x[j] == problem.model.upper[j]) {
            x[j] = problem.model.lower[j];
            ++j;
        }
        if (j == x.size()) {
            return true;
        }
        x[j] += 1.0;
    }
}

} // namespace

TEST(RowDivision, FindsTheCoverOfAKnapsackRow) {
    row_pool pool;
    add_row(pool, {5, 5, 4, 9}, 13);
    const columns model(4);
    const mixed_integer_rows view = model.view();
    const std::vector<double> point = {1.0, 1.0, 0.75, 0.0};
    const auto found =
        row_division(view, pool)
            .best_of(0, 0.0, point.data(), nearest_bounds(view, point.data()), 8, 1e-6);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->divisor, 5);
    const auto made =
        cg_rounding(view, pool).divided_row(0, found->divisor, found->used, point.data());
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 4), (std::vector<double>{1, 1, 1, 1}));
    EXPECT_EQ(made->rhs, 2.0);
}

TEST(RowDivision, MakesValidCutsOfTheEfficacyThatItStates) {
    std::mt19937 random(20);
    int cuts = 0;
    for (int round = 0; round < 2000; ++round) {
        const divided_problem problem(random);
        const mixed_integer_rows view = problem.model.view();
        const auto nearest = nearest_bounds(view, problem.point.data());
        const auto found = row_division(view, problem.pool)
                               .best_of(0, problem.slack(), problem.point.data(), nearest, 8, 1e-6);
        if (!found) {
            continue;
        }
        ++cuts;
        const auto made = cg_rounding(view, problem.pool)
                              .divided_row(0, found->divisor, found->used, problem.point.data());
        ASSERT_TRUE(made.has_value());
        EXPECT_TRUE(is_valid(problem, *made));
        // Dividing by the common divisor of the coefficients may round the right-hand side again.
        EXPECT_GE(made->efficacy(), found->efficacy - 1e-9);
        EXPECT_LE(made->violation, most_violation(problem, found->divisor) + 1e-9);
    }
    EXPECT_GT(cuts, 500);
}

TEST(RowDivision, FindsACutOfMostRowsThatHaveOne) {
    std::mt19937 random(21);
    int possible = 0;
    int found = 0;
    for (int round = 0; round < 2000; ++round) {
        const divided_problem problem(random);
        const mixed_integer_rows view = problem.model.view();
        double most = 0.0;
        for (std::int64_t divisor = 2; divisor <= 20; ++divisor) {
            most = std::max(most, most_violation(problem, divisor));
        }
        const auto nearest = nearest_bounds(view, problem.point.data());
        const bool is_found =
            row_division(view, problem.pool)
                .best_of(0, problem.slack(), problem.point.data(), nearest, 8, 1e-6)
                .has_value();
        possible += most > 1e-6 ? 1 : 0;
        found += is_found ? 1 : 0;
        EXPECT_TRUE(!is_found || most > 1e-6);
    }
    EXPECT_GT(found, possible * 3 / 4) << possible;
}

TEST(RowDivision, FindsNothingWithoutAColumnBetweenItsBounds) {
    row_pool pool;
    add_row(pool, {5, 5, 4}, 13);
    const columns model(3);
    const mixed_integer_rows view = model.view();
    const std::vector<double> point = {1.0, 1.0, 0.0};
    EXPECT_FALSE(row_division(view, pool)
                     .best_of(0, 3.0, point.data(), nearest_bounds(view, point.data()), 8, 1e-6)
                     .has_value());
}

TEST(RowDivision, NeedsABoundOfEachColumnThatItRounds) {
    row_pool pool;
    add_row(pool, {4, 6}, 13);
    columns model(2);
    model.lower = {-1e30, -1e30};
    model.upper = {1e30, 1e30};
    const mixed_integer_rows view = model.view();
    const std::vector<double> point = {0.0625, 2.125};
    const auto nearest = nearest_bounds(view, point.data());
    const auto found = row_division(view, pool).best_of(0, 0.0, point.data(), nearest, 8, 1e-6);
    EXPECT_FALSE(found.has_value());
    model.lower[0] = 0.0;
    EXPECT_TRUE(row_division(view, pool)
                    .best_of(0, 0.0, point.data(), nearest_bounds(view, point.data()), 8, 1e-6)
                    .has_value());
}

TEST(CutSelection, SelectsTheGreatestEfficacyFirst) {
    const columns model(3);
    const mixed_integer_rows view = model.view();
    cut_selection selection(view, {});
    const auto kept = selection.select({cut_with({1, 0, 0}, 0.1), cut_with({0, 2, 0}, 0.3)});
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[0].columns, (std::vector<std::int32_t>{2}));
    EXPECT_EQ(kept[1].columns, (std::vector<std::int32_t>{1}));
}

TEST(CutSelection, RejectsCutsParallelToABetterOne) {
    selection_options options;
    options.passes = {{{10, 0.85, 1.0}, {0, 1.0, 1.0}, {0, 1.0, 1.0}}};
    const columns model(3);
    const mixed_integer_rows view = model.view();
    cut_selection selection(view, options);
    const auto kept = selection.select(
        {cut_with({1, 1, 0}, 0.3), cut_with({1, 1.1, 0}, 0.2), cut_with({1, 0, 1}, 0.1)});
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[1].columns, (std::vector<std::int32_t>{1, 3}));
}

TEST(CutSelection, RejectsCutsImpliedByASelectedOne) {
    columns model(3);
    const auto kept = [&](double larger, double rhs) {
        cut better = cut_with({1, 1, larger}, 1.0);
        cut worse = cut_with({1, 1, 0}, 0.1);
        better.rhs = 1.0;
        worse.rhs = rhs;
        const mixed_integer_rows view = model.view();
        return cut_selection(view, {}).select({better, worse}).size();
    };
    EXPECT_EQ(kept(5, 1), 1u);
    EXPECT_EQ(kept(5, 2), 1u);
    EXPECT_EQ(kept(5, 0), 2u) << "a smaller right-hand side";
    EXPECT_EQ(kept(-5, 1), 2u) << "a smaller coefficient";
    model.lower[2] = -1.0;
    EXPECT_EQ(kept(5, 1), 2u) << "a column that may be negative";
    model.lower[2] = 0.0;
    model.lower[0] = -1.0;
    EXPECT_EQ(kept(5, 1), 1u) << "a column with equal coefficients";
}

TEST(CutSelection, SelectsParallelCutsIfThereAreFewOthers) {
    selection_options options;
    options.passes = {{{10, 0.85, 1.0}, {2, 0.9999, 1.0}, {0, 1.0, 1.0}}};
    const columns model(3);
    const mixed_integer_rows view = model.view();
    cut_selection selection(view, options);
    const std::vector<cut> three = {cut_with({1, 1, 0}, 0.3), cut_with({1, 1.1, 0}, 0.2),
                                    cut_with({1, 1.2, 0}, 0.1)};
    EXPECT_EQ(selection.select(three).size(), 2u);
    EXPECT_EQ(selection.select({three[0], three[0]}).size(), 1u);
}

TEST(CutSelection, SelectsNoMoreThanTheTarget) {
    selection_options options;
    options.passes = {{{2, 0.85, 1.0}, {0, 1.0, 1.0}, {0, 1.0, 1.0}}};
    const columns model(3);
    const mixed_integer_rows view = model.view();
    cut_selection selection(view, options);
    EXPECT_EQ(
        selection
            .select({cut_with({1, 0, 0}, 0.1), cut_with({0, 1, 0}, 0.1), cut_with({0, 0, 1}, 0.1)})
            .size(),
        2u);
}

TEST(CutSelection, RejectsDenseCutsUnlessTheyAreShortOrFew) {
    const std::vector<double> all(60, 1.0);
    selection_options options;
    options.passes = {{{10, 0.85, 0.8}, {0, 1.0, 0.8}, {0, 1.0, 1.0}}};
    EXPECT_TRUE(select(60, options, {cut_with(all, 0.1)}).empty());
    EXPECT_EQ(select(75, options, {cut_with(all, 0.1)}).size(), 1u);
    options.passes[2] = {1, 1.0, 1.0};
    EXPECT_EQ(select(60, options, {cut_with(all, 0.1)}).size(), 1u);
    const std::vector<double> few(50, 1.0);
    options.passes[2] = {0, 1.0, 1.0};
    EXPECT_EQ(select(50, options, {cut_with(few, 0.1)}).size(), 1u);
}

TEST(CutSelection, RejectsCutsWithALargeDynamicRange) {
    const columns model(2);
    const mixed_integer_rows view = model.view();
    cut_selection selection(view, {});
    EXPECT_EQ(selection.select({cut_with({1, -1e6}, 0.1)}).size(), 1u);
    EXPECT_TRUE(selection.select({cut_with({1, -1.1e6}, 0.1)}).empty());
}

} // namespace zero_half::testing
