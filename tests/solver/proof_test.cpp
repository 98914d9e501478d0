#include <functional>
#include <limits>
#include <optional>
#include <vector>

#include <CoinPackedVector.hpp>
#include <gtest/gtest.h>

#include "lp/objective.hpp"
#include "lp/proofs.hpp"
#include "lp/relaxation.hpp"

namespace zero_half::testing {

namespace {

constexpr double infinite = std::numeric_limits<double>::max();

bool never() {
    return false;
}
bool always() {
    return true;
}

struct row {
    std::vector<double> coefficients;
    double lower;
    double upper;
};

/// A linear program over dense rows, all columns with the same bounds.
ClpSimplex program_of(const std::vector<double>& objective, const std::vector<row>& rows,
                      double lower, double upper) {
    CoinPackedMatrix matrix(false, 0.0, 0.0);
    matrix.setDimensions(0, static_cast<int>(objective.size()));
    std::vector<double> row_lower;
    std::vector<double> row_upper;
    for (const row& each : rows) {
        CoinPackedVector entries;
        for (std::size_t j = 0; j < each.coefficients.size(); ++j) {
            if (each.coefficients[j] != 0.0) {
                entries.insert(static_cast<int>(j), each.coefficients[j]);
            }
        }
        matrix.appendRow(entries);
        row_lower.push_back(each.lower);
        row_upper.push_back(each.upper);
    }
    const std::vector<double> lowers(objective.size(), lower);
    const std::vector<double> uppers(objective.size(), upper);
    ClpSimplex lp;
    lp.setLogLevel(0);
    lp.loadProblem(matrix, lowers.data(), uppers.data(), objective.data(), row_lower.data(),
                   row_upper.data());
    return lp;
}

bool is_infeasible(const ClpSimplex& lp, const std::function<bool()>& should_stop) {
    return is_proven_infeasible(lp, safe_bound(lp).columns(), should_stop);
}

/// coefficients * x <= rhs over integer columns from 0 to 10.
model model_of(const std::vector<double>& coefficients, double rhs) {
    model program;
    const int n = static_cast<int>(coefficients.size());
    CoinPackedVector entries;
    for (int j = 0; j < n; ++j) {
        entries.insert(j, coefficients[static_cast<std::size_t>(j)]);
    }
    program.rows = CoinPackedMatrix(false, 0.0, 0.0);
    program.rows.setDimensions(0, n);
    program.rows.appendRow(entries);
    program.row_lower = {-no_bound};
    program.row_upper = {rhs};
    program.lower.assign(coefficients.size(), 0.0);
    program.upper.assign(coefficients.size(), 10.0);
    program.objective.assign(coefficients.size(), 1.0);
    program.is_integer.assign(coefficients.size(), 1);
    return program;
}

} // namespace

TEST(Certificate, ProvesContradictingRowsOverFreeColumns) {
    ClpSimplex lp =
        program_of({1, 1}, {{{1, 1}, -infinite, 1}, {{1, 1}, 2, infinite}}, -infinite, infinite);
    lp.primal();
    ASSERT_EQ(lp.status(), 1);
    EXPECT_TRUE(is_infeasible(lp, never));
}

TEST(Certificate, ProvesASumWithThirds) {
    // Three times the first row minus the second: 0 * x <= -1.
    ClpSimplex lp =
        program_of({0, 0}, {{{1, 2}, -infinite, 1}, {{3, 6}, 4, infinite}}, -infinite, infinite);
    lp.primal();
    ASSERT_EQ(lp.status(), 1);
    EXPECT_TRUE(is_infeasible(lp, never));
}

TEST(Certificate, ProvesASumWithAMultiplierThatNoDoubleIs) {
    // The first row divided by its coefficient, minus the second: 0 * x <= -1.
    ClpSimplex lp = program_of({0}, {{{30'000'000'001}, -infinite, 0}, {{1}, 1, infinite}},
                               -infinite, infinite);
    lp.primal();
    ASSERT_EQ(lp.status(), 1);
    EXPECT_TRUE(is_infeasible(lp, never));
}

TEST(Certificate, ProvesASumWhoseMultipliersAreRoundedWithBoundsThatRowsImply) {
    // The first row fixes the free column up to the others, which are from 0 to 1. The exact
    // multipliers of the others have denominators above 10^4.
    ClpSimplex lp = program_of({0, 0, 0, 0},
                               {{{30, 37, 29, 1}, 48, 48},
                                {{1, 0, 24, 6}, -infinite, 15},
                                {{32, 36, 0, 9}, -infinite, 38},
                                {{0, 0, -1, -1}, -infinite, -1},
                                {{1, 0, 4, 1}, -infinite, 3},
                                {{10, 19, 8, -6}, -infinite, 15},
                                {{4, 4, 0, 1}, -infinite, 4}},
                               0, 1);
    lp.setColBounds(3, -infinite, infinite);
    lp.dual();
    ASSERT_EQ(lp.status(), 1);
    EXPECT_TRUE(is_infeasible(lp, never));
}

TEST(Certificate, ProvesCrossedBoundsAndRowsThatTheBoundsContradict) {
    ClpSimplex crossed = program_of({1}, {{{1}, -infinite, 1}}, 1, 0);
    EXPECT_TRUE(is_infeasible(crossed, never));
    ClpSimplex contradicted = program_of({1, 1}, {{{2, 3}, 6, infinite}}, 0, 1);
    EXPECT_TRUE(is_infeasible(contradicted, never));
}

TEST(Certificate, EndsWithoutAProofWhenTheRunHasToStop) {
    ClpSimplex infeasible =
        program_of({1, 1}, {{{1, 1}, -infinite, 1}, {{1, 1}, 2, infinite}}, -infinite, infinite);
    infeasible.primal();
    EXPECT_FALSE(is_infeasible(infeasible, always));
    ClpSimplex contradicted = program_of({1, 1}, {{{2, 3}, 6, infinite}}, 0, 1);
    EXPECT_FALSE(is_infeasible(contradicted, always));
    ClpSimplex unbounded = program_of({-1, -1}, {{{1, -1}, -infinite, 1}}, 0, infinite);
    unbounded.primal();
    EXPECT_FALSE(has_proven_ray(unbounded, always));
}

TEST(Certificate, RejectsAFeasibleProgram) {
    ClpSimplex lp = program_of({1, 1}, {{{1, 1}, 1, 1}, {{1, -1}, 0, 0}}, 0, 1);
    lp.primal();
    EXPECT_FALSE(is_infeasible(lp, never));
    EXPECT_FALSE(has_proven_ray(lp, never));
}

TEST(Certificate, RejectsAContradictionWithinTheErrorOfDecimals) {
    // 0.1 + 0.2 is not 0.3 in doubles.
    ClpSimplex lp = program_of({0, 0}, {{{0.1, 0.2}, 0.3, 0.3}}, 1, 1);
    EXPECT_FALSE(is_infeasible(lp, never));
}

TEST(Certificate, ProvesARayButNotADirectionThatARowBounds) {
    ClpSimplex unbounded = program_of({-1, -1}, {{{1, -1}, -infinite, 1}}, 0, infinite);
    unbounded.primal();
    ASSERT_EQ(unbounded.status(), 2);
    EXPECT_TRUE(has_proven_ray(unbounded, never));
    ClpSimplex steep = program_of({-1, -1}, {{{30'000'000'001, -1}, 0, 0}}, 0, infinite);
    steep.primal();
    ASSERT_EQ(steep.status(), 2);
    EXPECT_TRUE(has_proven_ray(steep, never));
    ClpSimplex bounded = program_of({-1, -1}, {{{1, 1}, -infinite, 1}}, 0, infinite);
    bounded.primal();
    EXPECT_FALSE(has_proven_ray(bounded, never));
}

TEST(SafeBound, IsTheObjectiveOfASmallProgram) {
    ClpSimplex lp = program_of({1, 2}, {{{1, 1}, 1, infinite}, {{1, -1}, -infinite, 0}}, 0, 1);
    const safe_bound bound(lp);
    lp.dual();
    ASSERT_TRUE(bound.of(lp).has_value());
    EXPECT_LE(*bound.of(lp), 1.5);
    EXPECT_NEAR(*bound.of(lp), 1.5, 1e-12);
}

TEST(SafeBound, HoldsForWrongDuals) {
    ClpSimplex lp = program_of({1, 2}, {{{1, 1}, 1, infinite}, {{1, -1}, -infinite, 0}}, 0, 1);
    const safe_bound bound(lp);
    lp.dual();
    for (const double wrong : {-3.0, 0.0, 0.5, 1.4999, 7.0}) {
        lp.dualRowSolution()[0] = wrong;
        ASSERT_TRUE(bound.of(lp).has_value());
        EXPECT_LT(*bound.of(lp), 1.5);
    }
}

/// The reduced cost of the first column is 3e14, with a rounding error below half a unit in the
/// last place. Multiplied by the value of the column, -6, this error changes the bound by a tenth.
TEST(SafeBound, KeepsRoundingErrorsThatAReducedCostAbsorbs) {
    const std::vector<double> lower = {-6, -2, -1, -2, 2};
    const std::vector<double> upper = {-6, 0, 2, 0, 2};
    const std::vector<double> costs = {-0.8, 9, -0.9, -2, 0};
    CoinPackedMatrix rows(false, 0.0, 0.0);
    rows.setDimensions(0, 5);
    for (const std::vector<double>& row : {std::vector<double>{1e14, -4, 0.3, -3, -7},
                                           {0, -1e4, 0, 1e6, 0},
                                           {1e13, -1, 0, -2e13, -0.4}}) {
        CoinPackedVector entries;
        for (int j = 0; j < 5; ++j) {
            if (row[static_cast<std::size_t>(j)] != 0.0) {
                entries.insert(j, row[static_cast<std::size_t>(j)]);
            }
        }
        rows.appendRow(entries);
    }
    const std::vector<double> least = {-COIN_DBL_MAX, -990000, -40000000000001.797};
    const std::vector<double> most = {-600000000000006.75, -990000, -39999999999999.797};
    ClpSimplex lp;
    lp.setLogLevel(0);
    lp.loadProblem(rows, lower.data(), upper.data(), costs.data(), least.data(), most.data());
    lp.setDualTolerance(1e-9);
    lp.dual();
    ASSERT_EQ(lp.status(), 0);
    // The point -6, -1, 1, -1, 2 satisfies the rows up to the error of their decimals.
    const std::optional<double> bound = safe_bound(lp).of(lp);
    ASSERT_TRUE(bound.has_value());
    EXPECT_LE(*bound, 4.8 - 9 - 0.9 + 2);
}

TEST(SafeBound, DerivesBoundsOfColumnsWithoutBoundsFromRows) {
    ClpSimplex bounded = program_of({-1, -1}, {{{3, 7}, -infinite, 2}}, 0, infinite);
    const safe_bound bound(bounded);
    bounded.dual();
    ASSERT_TRUE(bound.of(bounded).has_value());
    EXPECT_NEAR(*bound.of(bounded), -2.0 / 3.0, 1e-12);
    ClpSimplex unbounded = program_of({-1, -1}, {{{3, -7}, -infinite, 2}}, 0, infinite);
    EXPECT_FALSE(safe_bound(unbounded).of(unbounded).has_value());
}

TEST(SafeBound, ShowsWithinARadiusThatAHiddenReducedCostMatters) {
    ClpSimplex lp = program_of({1, -1e-11}, {{{1, 0}, 1, infinite}}, 0, infinite);
    const safe_bound bound(lp);
    lp.dual();
    ASSERT_EQ(lp.status(), 0);
    EXPECT_FALSE(bound.of(lp).has_value());
    ASSERT_TRUE(bound.within(1e6, lp).has_value());
    EXPECT_NEAR(*bound.within(1e6, lp), 1.0 - 1e-5, 1e-12);
}

TEST(Relaxation, HasNoBoundWhereAHiddenReducedCostMakesItUnbounded) {
    model program = model_of({1, 0}, 5);
    program.lower[1] = -no_bound;
    program.objective = {-1, 1e-11};
    relaxation unbounded(program, [] { return false; });
    EXPECT_NE(unbounded.solve(), relaxation::outcome::optimal);
    program.objective = {-1, 0};
    relaxation bounded(program, [] { return false; });
    ASSERT_EQ(bounded.solve(), relaxation::outcome::optimal);
    EXPECT_EQ(bounded.bound(), -5.0);
}

TEST(SafeBound, DistinguishesModerateFromLargeNumbers) {
    EXPECT_TRUE(safe_bound(program_of({1e9}, {{{1}, -infinite, 1}}, 0, infinite)).is_moderate());
    EXPECT_FALSE(safe_bound(program_of({2e9}, {{{1}, -infinite, 1}}, 0, infinite)).is_moderate());
    EXPECT_FALSE(safe_bound(program_of({1}, {{{1e14}, -infinite, 1}}, 0, infinite)).is_moderate());
}

TEST(IntegralPoint, HasTheObjectiveOfTheRoundedPoint) {
    model program = model_of({1, 1}, 5);
    program.objective = {1e9, 1.0};
    program.constant = 0.5;
    const std::vector<double> point = {2.0 - 1e-7, 3.0 + 1e-7};
    EXPECT_EQ(integral_objective(program, point.data()), 2e9 + 3.5);
}

TEST(IntegralPoint, RefusesFractionsAndPointsThatViolateARowAfterRounding) {
    const std::vector<double> fractional = {2.0, 2.99};
    EXPECT_FALSE(integral_objective(model_of({1, 1}, 5), fractional.data()));
    // 1e8 * (2 - 1e-7) is below the right-hand side, but 2e8 is not.
    const std::vector<double> below = {2.0 - 1e-7, 0.0};
    EXPECT_FALSE(integral_objective(model_of({1e8, 1}, 2e8 - 5), below.data()));
    EXPECT_TRUE(integral_objective(model_of({1e8, 1}, 2e8), below.data()));
    EXPECT_FALSE(integral_objective(model_of({1e15, 1e15}, 1e15 - 1), below.data()));
}

TEST(IntegralPoint, ChecksRowsWithDecimalsUpToTheirRounding) {
    const std::vector<double> point = {1.0, 1.0};
    EXPECT_TRUE(integral_objective(model_of({0.1, 0.2}, 0.3), point.data()));
    EXPECT_FALSE(integral_objective(model_of({0.1, 0.2}, 0.2999), point.data()));
    // 14 above a side of 6.9e10.
    EXPECT_FALSE(integral_objective(model_of({6.9e10, 14.5}, 6.9e10 + 0.5), point.data()));
}

TEST(IntegralPoint, RefusesWhatOnlyTheUnroundedPointSatisfies) {
    // After rounding, the continuous column has to be 2 to satisfy the row.
    model program = model_of({5294, -0.001}, 5293.998);
    program.is_integer[1] = 0;
    const std::vector<double> point = {1.0 - 4e-7, 0.0};
    EXPECT_FALSE(integral_objective(program, point.data()));
    const std::vector<double> feasible = {1.0 - 4e-7, 2.0};
    EXPECT_TRUE(integral_objective(program, feasible.data()));
}

TEST(IntegralPoint, RefusesPointsOutsideOfTheBounds) {
    const std::vector<double> outside = {11.0, 0.0};
    EXPECT_FALSE(integral_objective(model_of({1, 1}, 50), outside.data()));
}

} // namespace zero_half::testing
