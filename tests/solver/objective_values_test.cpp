#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "lp/objective.hpp"

namespace zero_half::testing {

namespace {

/// A model of integer columns with these costs, without rows.
model with_costs(const std::vector<double>& costs, double constant = 0.0) {
    model program;
    program.objective = costs;
    program.is_integer.assign(costs.size(), 1);
    program.constant = constant;
    return program;
}

} // namespace

TEST(ObjectiveValues, AreMultiplesOfTheCommonDivisor) {
    const objective_values values(with_costs({6.0, -9.0, 15.0, 0.0}));
    EXPECT_EQ(values.step(), 3.0);
    EXPECT_EQ(values.round_up(3.1), 6.0);
    EXPECT_EQ(values.round_up(6.0), 6.0);
    EXPECT_EQ(values.round_up(-4.0), -3.0);
}

TEST(ObjectiveValues, AreMovedByTheConstant) {
    const objective_values values(with_costs({2.0, 4.0}, 0.5));
    EXPECT_EQ(values.round_up(0.6), 2.5);
    EXPECT_EQ(values.round_up(-1.5), -1.5);
}

TEST(ObjectiveValues, OfDecimalCostsAreMultiplesOfAFraction) {
    const objective_values values(with_costs({0.25, 1.75, 0.5}));
    EXPECT_EQ(values.step(), 0.25);
    EXPECT_EQ(values.round_up(1.01), 1.25);
    const objective_values tenths(with_costs({0.3, 0.6, 1.2}));
    EXPECT_DOUBLE_EQ(tenths.step(), 0.3);
    EXPECT_DOUBLE_EQ(tenths.round_up(0.7), 0.9);
}

TEST(ObjectiveValues, JustBelowTheBoundCountAsReached) {
    const objective_values values(with_costs({1.0}));
    EXPECT_EQ(values.round_up(7.0 + 1e-9), 7.0 + 1e-9);
    EXPECT_EQ(values.round_up(7.0 + 1e-5), 8.0);
    EXPECT_EQ(values.round_up(7.0 - 1e-9), 7.0);
}

TEST(ObjectiveValues, AreAnyWhereAContinuousColumnHasACost) {
    model program = with_costs({1.0, 2.0});
    program.is_integer[1] = 0;
    EXPECT_EQ(objective_values(program).step(), 0.0);
    EXPECT_EQ(objective_values(program).round_up(0.1), 0.1);
    program.objective[1] = 0.0;
    EXPECT_EQ(objective_values(program).round_up(0.1), 1.0);
}

TEST(ObjectiveValues, AreAnyWhereACostIsOnlyCloseToAFraction) {
    // Within the tolerance of the scale this is a third.
    EXPECT_EQ(objective_values(with_costs({1.0, 0.3333333333})).round_up(0.1), 0.1);
    EXPECT_EQ(objective_values(with_costs({1.0, std::sqrt(2.0)})).round_up(0.1), 0.1);
}

TEST(ObjectiveValues, AreAnyForAnObjectiveOfZeros) {
    EXPECT_EQ(objective_values(with_costs({0.0, 0.0})).round_up(0.1), 0.1);
}

TEST(ObjectiveValues, BeyondTheAccuracyOfTheBoundAreNotUsed) {
    const objective_values values(with_costs({1.0}));
    EXPECT_EQ(values.round_up(2e9 + 0.5), 2e9 + 0.5);
    EXPECT_EQ(values.round_up(-2e9 - 0.5), -2e9 - 0.5);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(values.round_up(infinity), infinity);
}

} // namespace zero_half::testing
