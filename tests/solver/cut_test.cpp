#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "cuts/cut_selection.hpp"
#include "cuts/derivation.hpp"
#include "cuts/rounding.hpp"

namespace zero_half::testing {

namespace {

model of_columns(int n) {
    model made;
    made.lower.assign(static_cast<std::size_t>(n), 0.0);
    made.upper.assign(static_cast<std::size_t>(n), 1.0);
    made.is_integer.assign(static_cast<std::size_t>(n), 1);
    return made;
}

integral_row row(const std::vector<double>& coefficients, double right) {
    sparse_vector a(static_cast<std::int32_t>(coefficients.size()));
    for (std::size_t j = 0; j < coefficients.size(); ++j) {
        if (coefficients[j] != 0.0) {
            a.set(static_cast<std::int32_t>(j) + 1, coefficients[j]);
        }
    }
    return integral_row(std::move(a), right, origin{0});
}

/// The coefficients of a cut, column by column.
std::vector<double> dense(const cut& of, std::size_t n) {
    std::vector<double> made(n, 0.0);
    for (std::size_t k = 0; k < of.columns.size(); ++k) {
        made[static_cast<std::size_t>(of.columns[k]) - 1] = of.coefficients[k];
    }
    return made;
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

TEST(Rounding, TakesAnIntegerWithinTheTolerance) {
    EXPECT_EQ(floor_of(2.75, 0.25), 3.0);
    EXPECT_EQ(floor_of(2.5, 0.25), 2.0);
    EXPECT_EQ(ceiling_of(3.25, 0.25), 3.0);
    EXPECT_EQ(ceiling_of(3.5, 0.25), 4.0);
    EXPECT_EQ(floor_of(-3000000000.0625, 0.125), -3e9);
}

TEST(Derivation, HalvesTheSumOfATriangleIntoAnOddCycle) {
    const model from = of_columns(3);
    std::vector<integral_row> pool;
    pool.push_back(row({1, 1, 0}, 1));
    pool.push_back(row({0, 1, 1}, 1));
    pool.push_back(row({1, 0, 1}, 1));
    const std::vector<int> all = {0, 1, 2};
    const std::vector<substitution> bounds = {{}, at_lower, at_lower, at_lower};
    const auto made = derivation(from).cut_of(all, pool, bounds);
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 3), (std::vector<double>{1, 1, 1}));
    EXPECT_EQ(made->right, 1.0);
    EXPECT_EQ(made->from.summed, all);
    EXPECT_TRUE(made->from.complemented.empty());
}

TEST(Derivation, SubstitutesTheBoundThatIsNearest) {
    const model from = of_columns(2);
    std::vector<integral_row> pool;
    pool.push_back(row({3, 3}, 4));
    const std::vector<int> first = {0};
    const auto lower = derivation(from).cut_of(first, pool, {{}, at_lower, at_lower});
    ASSERT_TRUE(lower.has_value());
    EXPECT_EQ(dense(*lower, 2), (std::vector<double>{1, 1}));
    EXPECT_EQ(lower->right, 2.0);
    const auto upper = derivation(from).cut_of(first, pool, {{}, at_lower, at_upper});
    // 3 x1 - 3 y <= 1: x1 - 2 y <= 0, which is x1 + 2 x2 <= 2.
    ASSERT_TRUE(upper.has_value());
    EXPECT_EQ(dense(*upper, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(upper->right, 2.0);
    EXPECT_EQ(upper->from.complemented, (std::vector<int>{2}));
}

TEST(Derivation, DividesByTheGreatestCommonDivisorAndRoundsAgain) {
    const model from = of_columns(2);
    std::vector<integral_row> pool;
    pool.push_back(row({6, 12}, 11));
    const std::vector<int> first = {0};
    const auto made = derivation(from).cut_of(first, pool, {{}, at_lower, at_lower});
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(made->right, 1.0);
}

TEST(Derivation, RoundsNothingWhereThereIsNoBound) {
    model from = of_columns(2);
    std::vector<integral_row> pool;
    pool.push_back(row({1, 2}, 1));
    pool.push_back(row({2, 1}, 1));
    const std::vector<int> first = {0};
    const std::vector<int> second = {1};
    const std::vector<substitution> bounds = {{}, substitution{}, at_lower};
    EXPECT_FALSE(derivation(from).cut_of(first, pool, bounds).has_value());
    EXPECT_TRUE(derivation(from).cut_of(second, pool, bounds).has_value());
}

TEST(Derivation, RefusesNumbersThatAreTooLargeToBeExact) {
    const model from = of_columns(2);
    const std::vector<int> first = {0};
    const std::vector<substitution> bounds = {{}, at_lower, at_lower};
    std::vector<integral_row> pool;
    pool.push_back(row({largest_coefficient, 3}, 1));
    EXPECT_TRUE(derivation(from).cut_of(first, pool, bounds).has_value());
    pool[0] = row({largest_coefficient + 1, 3}, 1);
    EXPECT_FALSE(derivation(from).cut_of(first, pool, bounds).has_value());
    pool[0] = row({2, 3}, largest_exact);
    EXPECT_TRUE(derivation(from).cut_of(first, pool, bounds).has_value());
    pool[0] = row({2, 3}, largest_exact + 1);
    EXPECT_FALSE(derivation(from).cut_of(first, pool, bounds).has_value());
    pool[0] = row({3, 3}, 1);
    const std::vector<substitution> far = {{}, {1e15, 0.5, false}, at_lower};
    EXPECT_FALSE(derivation(from).cut_of(first, pool, far).has_value());
}

TEST(Derivation, RefusesACutWithoutColumns) {
    const model from = of_columns(1);
    std::vector<integral_row> pool;
    pool.push_back(row({1}, 1));
    const std::vector<int> first = {0};
    EXPECT_FALSE(derivation(from).cut_of(first, pool, {{}, at_lower}).has_value());
}

TEST(CutSelection, TakesTheFarthestFirst) {
    const model columns = of_columns(3);
    cut_selection selection(columns, {});
    const auto kept = selection.best_of({cut_with({1, 0, 0}, 0.1), cut_with({0, 2, 0}, 0.3)});
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[0].columns, (std::vector<std::int32_t>{2}));
    EXPECT_EQ(kept[1].columns, (std::vector<std::int32_t>{1}));
}

TEST(CutSelection, PassesByWhatIsParallelToABetterOne) {
    selection_options options;
    options.steps = {{{10, 0.85, 1.0}, {0, 1.0, 1.0}, {0, 1.0, 1.0}}};
    const model columns = of_columns(3);
    cut_selection selection(columns, options);
    const auto kept = selection.best_of(
        {cut_with({1, 1, 0}, 0.3), cut_with({1, 1.1, 0}, 0.2), cut_with({1, 0, 1}, 0.1)});
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[1].columns, (std::vector<std::int32_t>{1, 3}));
}

TEST(CutSelection, PassesByWhatAnotherOneSaysAlready) {
    model columns = of_columns(3);
    const auto kept = [&](double larger, double right) {
        cut better = cut_with({1, 1, larger}, 1.0);
        cut worse = cut_with({1, 1, 0}, 0.1);
        better.right = 1.0;
        worse.right = right;
        return cut_selection(columns, {}).best_of({better, worse}).size();
    };
    EXPECT_EQ(kept(5, 1), 1u);
    EXPECT_EQ(kept(5, 2), 1u);
    EXPECT_EQ(kept(5, 0), 2u) << "a smaller right-hand side";
    EXPECT_EQ(kept(-5, 1), 2u) << "a smaller coefficient";
    columns.lower[2] = -1.0;
    EXPECT_EQ(kept(5, 1), 2u) << "a column that may be negative";
    columns.lower[2] = 0.0;
    columns.lower[0] = -1.0;
    EXPECT_EQ(kept(5, 1), 1u) << "of which it has as much";
}

TEST(CutSelection, TakesParallelOnesWhereThereAreFew) {
    selection_options options;
    options.steps = {{{10, 0.85, 1.0}, {2, 0.9999, 1.0}, {0, 1.0, 1.0}}};
    const model columns = of_columns(3);
    cut_selection selection(columns, options);
    const std::vector<cut> three = {cut_with({1, 1, 0}, 0.3), cut_with({1, 1.1, 0}, 0.2),
                                    cut_with({1, 1.2, 0}, 0.1)};
    EXPECT_EQ(selection.best_of(three).size(), 2u);
    EXPECT_EQ(selection.best_of({three[0], three[0]}).size(), 1u);
}

TEST(CutSelection, TakesSoManyAtMost) {
    selection_options options;
    options.steps = {{{2, 0.85, 1.0}, {0, 1.0, 1.0}, {0, 1.0, 1.0}}};
    const model columns = of_columns(3);
    cut_selection selection(columns, options);
    EXPECT_EQ(
        selection
            .best_of({cut_with({1, 0, 0}, 0.1), cut_with({0, 1, 0}, 0.1), cut_with({0, 0, 1}, 0.1)})
            .size(),
        2u);
}

TEST(CutSelection, RefusesDenseOnesUnlessTheyAreShortOrFew) {
    const std::vector<double> all(60, 1.0);
    selection_options options;
    options.steps = {{{10, 0.85, 0.8}, {0, 1.0, 0.8}, {0, 1.0, 1.0}}};
    EXPECT_TRUE(cut_selection(of_columns(60), options).best_of({cut_with(all, 0.1)}).empty());
    EXPECT_EQ(cut_selection(of_columns(75), options).best_of({cut_with(all, 0.1)}).size(), 1u);
    options.steps[2] = {1, 1.0, 1.0};
    EXPECT_EQ(cut_selection(of_columns(60), options).best_of({cut_with(all, 0.1)}).size(), 1u);
    const std::vector<double> few(50, 1.0);
    options.steps[2] = {0, 1.0, 1.0};
    EXPECT_EQ(cut_selection(of_columns(50), options).best_of({cut_with(few, 0.1)}).size(), 1u);
}

TEST(CutSelection, RefusesCoefficientsThatAreFarApart) {
    const model columns = of_columns(2);
    cut_selection selection(columns, {});
    EXPECT_EQ(selection.best_of({cut_with({1, -1e6}, 0.1)}).size(), 1u);
    EXPECT_TRUE(selection.best_of({cut_with({1, -1.1e6}, 0.1)}).empty());
}

} // namespace zero_half::testing
