#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "cuts/cg_rounding.hpp"
#include "cuts/cut_selection.hpp"
#include "input/rounding.hpp"

namespace zero_half::testing {

namespace {

/// A model without rows, its columns binary.
model binary_columns(int n) {
    model made;
    made.lower.assign(static_cast<std::size_t>(n), 0.0);
    made.upper.assign(static_cast<std::size_t>(n), 1.0);
    made.is_integer.assign(static_cast<std::size_t>(n), 1);
    return made;
}

integral_row row(const std::vector<double>& coefficients, double rhs) {
    zktarn::owned_vector a = new_vector(static_cast<std::int32_t>(coefficients.size()));
    for (std::size_t j = 0; j < coefficients.size(); ++j) {
        if (coefficients[j] != 0.0) {
            zktarn::vector_mod::vector_add_nz(*a, static_cast<std::int32_t>(j) + 1,
                                              coefficients[j]);
        }
    }
    return integral_row(std::move(a), rhs, row_origin{0});
}

/// The coefficients of a cut, column by column.
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
    const model program = binary_columns(3);
    std::vector<integral_row> pool;
    pool.push_back(row({1, 1, 0}, 1));
    pool.push_back(row({0, 1, 1}, 1));
    pool.push_back(row({1, 0, 1}, 1));
    const std::vector<int> all = {0, 1, 2};
    const std::vector<substitution> bounds = {{}, at_lower, at_lower, at_lower};
    const auto made = cg_rounding(program).halved_sum(all, pool, bounds);
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 3), (std::vector<double>{1, 1, 1}));
    EXPECT_EQ(made->rhs, 1.0);
    EXPECT_EQ(made->origin.summed, all);
    EXPECT_TRUE(made->origin.complemented.empty());
}

TEST(CgRounding, SubstitutesTheNearestBound) {
    const model program = binary_columns(2);
    std::vector<integral_row> pool;
    pool.push_back(row({3, 3}, 4));
    const std::vector<int> first = {0};
    const auto lower = cg_rounding(program).halved_sum(first, pool, {{}, at_lower, at_lower});
    ASSERT_TRUE(lower.has_value());
    EXPECT_EQ(dense(*lower, 2), (std::vector<double>{1, 1}));
    EXPECT_EQ(lower->rhs, 2.0);
    const auto upper = cg_rounding(program).halved_sum(first, pool, {{}, at_lower, at_upper});
    // 3 x1 - 3 y <= 1: x1 - 2 y <= 0, which is x1 + 2 x2 <= 2.
    ASSERT_TRUE(upper.has_value());
    EXPECT_EQ(dense(*upper, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(upper->rhs, 2.0);
    EXPECT_EQ(upper->origin.complemented, (std::vector<int>{2}));
}

TEST(CgRounding, DividesByTheGreatestCommonDivisorAndRoundsAgain) {
    const model program = binary_columns(2);
    std::vector<integral_row> pool;
    pool.push_back(row({6, 12}, 11));
    const std::vector<int> first = {0};
    const auto made = cg_rounding(program).halved_sum(first, pool, {{}, at_lower, at_lower});
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(made->rhs, 1.0);
}

TEST(CgRounding, DividesARowWithoutHalvingIt) {
    std::vector<integral_row> pool;
    pool.push_back(row({6, -9}, -4));
    pool.push_back(row({0, 0}, 1));
    const auto made = cg_rounding::divided_row(0, pool);
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(dense(*made, 2), (std::vector<double>{2, -3}));
    EXPECT_EQ(made->rhs, -2.0);
    EXPECT_EQ(made->origin.summed, (std::vector<int>{0, 0}));
    EXPECT_FALSE(cg_rounding::divided_row(1, pool).has_value());
}

TEST(CgRounding, DoesNotRoundTheCoefficientOfAColumnWithoutBounds) {
    model program = binary_columns(2);
    std::vector<integral_row> pool;
    pool.push_back(row({1, 2}, 1));
    pool.push_back(row({2, 1}, 1));
    const std::vector<int> first = {0};
    const std::vector<int> second = {1};
    const std::vector<substitution> bounds = {{}, substitution{}, at_lower};
    EXPECT_FALSE(cg_rounding(program).halved_sum(first, pool, bounds).has_value());
    EXPECT_TRUE(cg_rounding(program).halved_sum(second, pool, bounds).has_value());
}

TEST(CgRounding, MakesNoCutOfNumbersTooLargeToBeExact) {
    const model program = binary_columns(2);
    const std::vector<int> first = {0};
    const std::vector<substitution> bounds = {{}, at_lower, at_lower};
    std::vector<integral_row> pool;
    pool.push_back(row({largest_coefficient, 3}, 1));
    EXPECT_TRUE(cg_rounding(program).halved_sum(first, pool, bounds).has_value());
    pool[0] = row({largest_coefficient + 1, 3}, 1);
    EXPECT_FALSE(cg_rounding(program).halved_sum(first, pool, bounds).has_value());
    pool[0] = row({2, 3}, largest_exact);
    EXPECT_TRUE(cg_rounding(program).halved_sum(first, pool, bounds).has_value());
    pool[0] = row({2, 3}, largest_exact + 1);
    EXPECT_FALSE(cg_rounding(program).halved_sum(first, pool, bounds).has_value());
    pool[0] = row({3, 3}, 1);
    const std::vector<substitution> far = {{}, {1e15, 0.5, false}, at_lower};
    EXPECT_FALSE(cg_rounding(program).halved_sum(first, pool, far).has_value());
}

TEST(CgRounding, MakesNoCutWithoutColumns) {
    const model program = binary_columns(1);
    std::vector<integral_row> pool;
    pool.push_back(row({1}, 1));
    const std::vector<int> first = {0};
    EXPECT_FALSE(cg_rounding(program).halved_sum(first, pool, {{}, at_lower}).has_value());
}

TEST(CutSelection, SelectsTheGreatestEfficacyFirst) {
    const model columns = binary_columns(3);
    cut_selection selection(columns, {});
    const auto kept = selection.select({cut_with({1, 0, 0}, 0.1), cut_with({0, 2, 0}, 0.3)});
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[0].columns, (std::vector<std::int32_t>{2}));
    EXPECT_EQ(kept[1].columns, (std::vector<std::int32_t>{1}));
}

TEST(CutSelection, LeavesOutCutsThatAreParallelToABetterOne) {
    selection_options options;
    options.passes = {{{10, 0.85, 1.0}, {0, 1.0, 1.0}, {0, 1.0, 1.0}}};
    const model columns = binary_columns(3);
    cut_selection selection(columns, options);
    const auto kept = selection.select(
        {cut_with({1, 1, 0}, 0.3), cut_with({1, 1.1, 0}, 0.2), cut_with({1, 0, 1}, 0.1)});
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[1].columns, (std::vector<std::int32_t>{1, 3}));
}

TEST(CutSelection, LeavesOutCutsThatASelectedOneImplies) {
    model columns = binary_columns(3);
    const auto kept = [&](double larger, double rhs) {
        cut better = cut_with({1, 1, larger}, 1.0);
        cut worse = cut_with({1, 1, 0}, 0.1);
        better.rhs = 1.0;
        worse.rhs = rhs;
        return cut_selection(columns, {}).select({better, worse}).size();
    };
    EXPECT_EQ(kept(5, 1), 1u);
    EXPECT_EQ(kept(5, 2), 1u);
    EXPECT_EQ(kept(5, 0), 2u) << "a smaller right-hand side";
    EXPECT_EQ(kept(-5, 1), 2u) << "a smaller coefficient";
    columns.lower[2] = -1.0;
    EXPECT_EQ(kept(5, 1), 2u) << "a column that may be negative";
    columns.lower[2] = 0.0;
    columns.lower[0] = -1.0;
    EXPECT_EQ(kept(5, 1), 1u) << "a column with equal coefficients";
}

TEST(CutSelection, SelectsParallelCutsWhereThereAreFewOthers) {
    selection_options options;
    options.passes = {{{10, 0.85, 1.0}, {2, 0.9999, 1.0}, {0, 1.0, 1.0}}};
    const model columns = binary_columns(3);
    cut_selection selection(columns, options);
    const std::vector<cut> three = {cut_with({1, 1, 0}, 0.3), cut_with({1, 1.1, 0}, 0.2),
                                    cut_with({1, 1.2, 0}, 0.1)};
    EXPECT_EQ(selection.select(three).size(), 2u);
    EXPECT_EQ(selection.select({three[0], three[0]}).size(), 1u);
}

TEST(CutSelection, SelectsNoMoreThanTheTarget) {
    selection_options options;
    options.passes = {{{2, 0.85, 1.0}, {0, 1.0, 1.0}, {0, 1.0, 1.0}}};
    const model columns = binary_columns(3);
    cut_selection selection(columns, options);
    EXPECT_EQ(
        selection
            .select({cut_with({1, 0, 0}, 0.1), cut_with({0, 1, 0}, 0.1), cut_with({0, 0, 1}, 0.1)})
            .size(),
        2u);
}

TEST(CutSelection, LeavesOutDenseCutsUnlessTheyAreShortOrFew) {
    const std::vector<double> all(60, 1.0);
    selection_options options;
    options.passes = {{{10, 0.85, 0.8}, {0, 1.0, 0.8}, {0, 1.0, 1.0}}};
    EXPECT_TRUE(cut_selection(binary_columns(60), options).select({cut_with(all, 0.1)}).empty());
    EXPECT_EQ(cut_selection(binary_columns(75), options).select({cut_with(all, 0.1)}).size(), 1u);
    options.passes[2] = {1, 1.0, 1.0};
    EXPECT_EQ(cut_selection(binary_columns(60), options).select({cut_with(all, 0.1)}).size(), 1u);
    const std::vector<double> few(50, 1.0);
    options.passes[2] = {0, 1.0, 1.0};
    EXPECT_EQ(cut_selection(binary_columns(50), options).select({cut_with(few, 0.1)}).size(), 1u);
}

TEST(CutSelection, LeavesOutCutsWithALargeDynamicRange) {
    const model columns = binary_columns(2);
    cut_selection selection(columns, {});
    EXPECT_EQ(selection.select({cut_with({1, -1e6}, 0.1)}).size(), 1u);
    EXPECT_TRUE(selection.select({cut_with({1, -1.1e6}, 0.1)}).empty());
}

} // namespace zero_half::testing
