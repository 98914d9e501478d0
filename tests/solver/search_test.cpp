#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "cuts/elimination.hpp"
#include "cuts/greedy_search.hpp"
#include "cuts/odd_cycles.hpp"
#include "cuts/odd_sums.hpp"
#include "cuts/parity_system.hpp"

namespace zero_half::testing {

namespace {

using zktarn::vector_mod::vector_add_nz;

constexpr std::size_t no_limit = 1'000'000;

/// Rows over columns with bounds 0 and 1, and a point between them.
struct problem {
    std::vector<integral_row> pool;
    std::vector<substitution> bounds;
    std::vector<double> point;
};

/// Each row has so many coefficients, up to 4, and a slack from 0 to 1.2.
problem random_problem(std::mt19937& random, int columns, int rows, int most_entries) {
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    problem made;
    made.bounds.resize(static_cast<std::size_t>(columns) + 1);
    for (int j = 1; j <= columns; ++j) {
        const double value = below(3) == 0 ? 0.0 : below(10) / 20.0;
        const bool is_upper = below(2) == 1;
        made.bounds[static_cast<std::size_t>(j)] = {is_upper ? 1.0 : 0.0, value, is_upper};
        made.point.push_back(is_upper ? 1.0 - value : value);
    }
    for (int i = 0; i < rows; ++i) {
        zktarn::owned_vector a = new_vector(columns);
        double activity = 0.0;
        for (int k = below(most_entries) + 1; k > 0; --k) {
            const int j = below(columns) + 1;
            vector_add_nz(*a, j, 1.0 + below(4));
        }
        for (const auto [j, value] : zktarn::entries(a)) {
            activity += value * made.point[static_cast<std::size_t>(j) - 1];
        }
        made.pool.emplace_back(std::move(a), std::ceil(activity - 1e-9), row_origin{i});
    }
    return made;
}

/// The slack of the sum of these rows after the substitution, by the definition; nothing when the
/// right-hand side is even.
std::optional<double> slack_of_sum(const problem& instance, const std::vector<int>& members) {
    std::vector<double> sum(instance.bounds.size(), 0.0);
    double rhs = 0.0;
    double slack = 0.0;
    for (const int i : members) {
        const integral_row& row = instance.pool[static_cast<std::size_t>(i)];
        double activity = 0.0;
        for (const auto [index, value] : zktarn::entries(row.coefficients)) {
            const auto j = static_cast<std::size_t>(index);
            sum[j] += value;
            rhs -= value * instance.bounds[j].bound;
            activity += value * instance.point[j - 1];
        }
        rhs += row.rhs;
        slack += row.rhs - activity;
    }
    for (std::size_t j = 1; j < sum.size(); ++j) {
        slack += std::fmod(sum[j], 2.0) != 0.0 ? instance.bounds[j].distance : 0.0;
    }
    return std::fmod(rhs, 2.0) != 0.0 ? std::optional(slack) : std::nullopt;
}

/// The least slack of all sums with an odd right-hand side.
double least_slack(const problem& instance) {
    double least = std::numeric_limits<double>::infinity();
    for (unsigned subset = 1; subset < 1u << instance.pool.size(); ++subset) {
        std::vector<int> members;
        for (unsigned i = 0; i < instance.pool.size(); ++i) {
            if ((subset >> i & 1u) != 0) {
                members.push_back(static_cast<int>(i));
            }
        }
        least = std::min(least, slack_of_sum(instance, members).value_or(least));
    }
    return least;
}

/// The least slack of the sums that were found, which all have to be violated.
double least_of(const problem& instance, const odd_sums& found) {
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto members = found.members(i);
        const auto slack = slack_of_sum(instance, {members.begin(), members.end()});
        EXPECT_TRUE(slack.has_value()) << "the right-hand side is even";
        EXPECT_LT(slack.value_or(1.0), 1.0);
        least = std::min(least, slack.value_or(least));
    }
    return least;
}

parity_system system_of(const problem& instance) {
    parity_system made;
    made.build(instance.pool, instance.bounds, instance.point.data());
    return made;
}

bool never() {
    return false;
}

void add_rows(const parity_system& system, odd_sums& found) {
    found.reset(system);
    for (std::size_t i = 0; i < system.rows().size(); ++i) {
        found.add_if_violated(system.rows()[i]);
    }
}

} // namespace

TEST(OddCycles, FindTheLeastSlackWhereEveryRowHasAtMostTwoColumns) {
    std::mt19937 random(7);
    int with_cut = 0;
    for (int trial = 0; trial < 3000; ++trial) {
        const problem instance = random_problem(random, 6, 9, 2);
        const parity_system system = system_of(instance);
        ASSERT_TRUE(system.is_graph());
        odd_sums found(no_limit);
        add_rows(system, found);
        find_odd_cycles(system, never, found);
        const double best = least_slack(instance);
        if (best < 1.0 - 1e-5) {
            ++with_cut;
            ASSERT_NEAR(least_of(instance, found), best, 1e-9) << trial;
        } else {
            ASSERT_EQ(found.size(), 0u) << trial;
        }
    }
    EXPECT_GT(with_cut, 500);
}

TEST(Elimination, FindsOnlyViolatedSums) {
    std::mt19937 random(8);
    const zktarn::owned_generator own(3);
    elimination gauss(*own);
    int best_found = 0;
    int with_cut = 0;
    for (int trial = 0; trial < 1000; ++trial) {
        const problem instance = random_problem(random, 8, 10, 6);
        const parity_system system = system_of(instance);
        odd_sums found(no_limit);
        add_rows(system, found);
        for (int restart = 0; restart < 10; ++restart) {
            gauss.find(system, never, found);
        }
        const double best = least_slack(instance);
        with_cut += best < 1.0 - 1e-5 ? 1 : 0;
        best_found += std::fabs(least_of(instance, found) - best) < 1e-9 ? 1 : 0;
    }
    EXPECT_GT(with_cut, 500);
    // The method is not exact, but it rarely misses the best sum.
    EXPECT_GT(best_found, with_cut * 8 / 10);
}

TEST(GreedySearch, FindsOnlyViolatedSums) {
    std::mt19937 random(9);
    int found_some = 0;
    for (int trial = 0; trial < 300; ++trial) {
        const problem instance = random_problem(random, 8, 10, 6);
        const parity_system system = system_of(instance);
        odd_sums found(no_limit);
        found.reset(system);
        find_by_greedy_search(system, never, found);
        found_some += found.size() > 0 ? 1 : 0;
        least_of(instance, found);
    }
    EXPECT_GT(found_some, 100);
}

TEST(OddSums, KeepEachSumOnceSortedByPrice) {
    std::mt19937 random(10);
    const zktarn::owned_generator own(3);
    elimination gauss(*own);
    const problem instance = random_problem(random, 10, 14, 4);
    const parity_system system = system_of(instance);
    odd_sums found(no_limit);
    add_rows(system, found);
    gauss.find(system, never, found);
    const std::size_t once = found.size();
    ASSERT_GT(once, 2u);
    found.sort();
    std::set<std::vector<int>> members;
    double before = 0.0;
    for (std::size_t i = 0; i < once; ++i) {
        std::vector<int> each(found.members(i).begin(), found.members(i).end());
        const double price = *slack_of_sum(instance, each) + 0.2 * static_cast<double>(each.size());
        EXPECT_GE(price, before - 1e-9);
        before = price;
        std::sort(each.begin(), each.end());
        EXPECT_TRUE(members.insert(each).second);
    }
}

TEST(OddSums, AreEnoughWhenTheirNumberIsReached) {
    std::mt19937 random(11);
    const problem instance = random_problem(random, 6, 9, 2);
    const parity_system system = system_of(instance);
    odd_sums none(0);
    none.reset(system);
    EXPECT_TRUE(none.are_enough());
    odd_sums some(1);
    some.reset(system);
    EXPECT_FALSE(some.are_enough());
    find_odd_cycles(system, never, some);
    ASSERT_GT(some.size(), 0u);
    EXPECT_TRUE(some.are_enough());
}

TEST(ParitySystem, KeepsOnlyWhatCanBePartOfACut) {
    // Columns at their bounds, in the same rows, and in only one row; rows with much slack, with
    // equal odd columns, and without odd columns.
    std::vector<substitution> bounds(6);
    const std::vector<double> point = {0.0, 0.5, 0.25, 0.5, 0.125};
    for (std::size_t j = 1; j <= 5; ++j) {
        bounds[j] = {0.0, point[j - 1], false};
    }
    const auto row = [](std::vector<std::pair<int, double>> entries, double rhs) {
        zktarn::owned_vector a = new_vector(5);
        for (const auto& [j, value] : entries) {
            vector_add_nz(*a, j, value);
        }
        return integral_row(std::move(a), rhs, row_origin{0});
    };
    std::vector<integral_row> pool;
    pool.push_back(row({{1, 1.0}, {2, 1.0}, {3, 1.0}, {5, 2.0}}, 1.0)); // slack 0
    pool.push_back(row({{2, 1.0}, {3, 3.0}, {4, 1.0}}, 2.0));           // slack 0.25
    pool.push_back(row({{2, 1.0}, {3, 1.0}}, 2.0));                     // slack 1.25
    pool.push_back(row({{2, 3.0}, {3, 1.0}, {1, 3.0}}, 2.0)); // slack 0.25, equal to the second
    pool.push_back(row({{5, 2.0}}, 1.0));                     // slack 0.75, no odd column
    parity_system system;
    system.build(pool, bounds, point.data());
    // Columns 2 and 3 are merged; column 4 is added to the slack of row 1, which becomes 0.75.
    EXPECT_EQ(system.columns(), 1);
    EXPECT_DOUBLE_EQ(system.value(1), 0.75);
    ASSERT_EQ(system.rows().size(), 3u);
    EXPECT_TRUE(system.is_graph());
    EXPECT_EQ(system.pool_row(2), 0);
    EXPECT_EQ(system.pool_row(3), 3);
    EXPECT_EQ(system.pool_row(4), 4);
    EXPECT_TRUE(system.rows()[0].is_odd);
    EXPECT_FALSE(system.rows()[1].is_odd);
    EXPECT_TRUE(system.rows()[2].is_odd);
    EXPECT_DOUBLE_EQ(system.value(4), 0.75);
}

} // namespace zero_half::testing
