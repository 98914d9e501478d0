#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "cuts/odd_sums.hpp"
#include "cuts/parity_system.hpp"
#include "cuts/searches.hpp"
#include "zktarn/owners.hpp"

namespace zero_half::testing {

namespace {

constexpr std::size_t no_limit = 1'000'000;

int below(std::mt19937& random, int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
}

/// Rows over columns with bounds 0 and 1, and a point between them.
class problem {
public:
    problem(std::mt19937& random, int columns)
        : lower_(at(columns), 0.0), upper_(at(columns), 1.0) {
        bounds.resize(at(columns) + 1);
        for (int j = 1; j <= columns; ++j) {
            const double value = below(random, 3) == 0 ? 0.0 : below(random, 10) / 20.0;
            const bool is_upper = below(random, 2) == 1;
            bounds[at(j)] = {is_upper ? 1.0 : 0.0, value, is_upper};
            point.push_back(is_upper ? 1.0 - value : value);
        }
    }

    /// Adds a row with a slack in [0, 1].
    void add(const std::map<int, double>& row) {
        std::vector<std::int32_t> columns;
        std::vector<double> coefficients;
        double activity = 0.0;
        for (const auto& [j, value] : row) {
            columns.push_back(j);
            coefficients.push_back(value);
            activity += value * point[at(j) - 1];
        }
        pool.add(columns, coefficients, std::ceil(activity - 1e-9), {});
    }

    parity_system system() const {
        mixed_integer_rows model;
        model.lower = lower_;
        model.upper = upper_;
        std::vector<double> slacks;
        for (std::size_t i = 0; i < pool.size(); ++i) {
            slacks.push_back(pool.slack(i, point.data()));
        }
        return parity_system(model, pool, slacks, bounds);
    }

    row_pool pool;
    std::vector<substitution> bounds;
    std::vector<double> point;

private:
    static std::size_t at(int j) { return static_cast<std::size_t>(j); }

    std::vector<double> lower_;
    std::vector<double> upper_;
};

problem random_problem(std::mt19937& random, int columns, int rows, int most_entries) {
    problem made(random, columns);
    for (int i = 0; i < rows; ++i) {
        std::map<int, double> row;
        for (int k = below(random, most_entries) + 1; k > 0; --k) {
            row[below(random, columns) + 1] = 1.0 + below(random, 4);
        }
        made.add(row);
    }
    return made;
}

/// Each column is in at most two rows.
problem random_column_graph(std::mt19937& random, int columns, int rows) {
    problem made(random, columns);
    std::vector<std::map<int, double>> parts(static_cast<std::size_t>(rows));
    for (int j = 1; j <= columns; ++j) {
        for (int end = 0; end < 2; ++end) {
            parts[static_cast<std::size_t>(below(random, rows))][j] = 1.0 + below(random, 3);
        }
    }
    for (const auto& row : parts) {
        made.add(row);
    }
    return made;
}

/// The slack of the sum of these rows after the substitution, computed by definition. If the
/// right-hand side is even, one odd column is substituted by its farther bound.
double slack_of_sum(const problem& instance, const std::vector<std::int32_t>& members) {
    std::vector<double> sum(instance.bounds.size(), 0.0);
    double rhs = 0.0;
    double slack = 0.0;
    for (const std::int32_t i : members) {
        const auto row = static_cast<std::size_t>(i);
        for (std::size_t k = 0; k < instance.pool.columns(row).size(); ++k) {
            const auto j = static_cast<std::size_t>(instance.pool.columns(row)[k]);
            sum[j] += instance.pool.coefficients(row)[k];
            rhs -= instance.pool.coefficients(row)[k] * instance.bounds[j].bound;
        }
        rhs += instance.pool.rhs(row);
        slack += instance.pool.slack(row, instance.point.data());
    }
    double change = std::numeric_limits<double>::infinity();
    for (std::size_t j = 1; j < sum.size(); ++j) {
        if (std::fmod(sum[j], 2.0) != 0.0) {
            slack += instance.bounds[j].distance;
            change = std::min(change, 1.0 - 2.0 * instance.bounds[j].distance);
        }
    }
    return std::fmod(rhs, 2.0) != 0.0 ? slack : slack + change;
}

/// The least slack of all sums.
double least_slack(const problem& instance) {
    double least = std::numeric_limits<double>::infinity();
    for (unsigned subset = 1; subset < 1u << instance.pool.size(); ++subset) {
        std::vector<std::int32_t> members;
        for (unsigned i = 0; i < instance.pool.size(); ++i) {
            if ((subset >> i & 1u) != 0) {
                members.push_back(static_cast<std::int32_t>(i));
            }
        }
        least = std::min(least, slack_of_sum(instance, members));
    }
    return least;
}

/// The least slack of the sums found, all of which must be violated.
double least_of(const problem& instance, const odd_sums& found) {
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < found.size(); ++i) {
        const odd_sum sum = found[i];
        const double slack = slack_of_sum(instance, {sum.rows.begin(), sum.rows.end()});
        EXPECT_LT(slack, 1.0);
        EXPECT_NEAR(slack, sum.slack, 1e-9);
        least = std::min(least, slack);
    }
    return least;
}

bool never() {
    return false;
}

void add_rows(const parity_system& system, odd_sums& found) {
    for (std::size_t i = 0; i < system.rows(); ++i) {
        std::vector<std::int32_t> odd(system.odd_columns(i).begin(), system.odd_columns(i).end());
        odd.push_back(system.slack_of(i));
        found.add_if_violated(odd, system.is_odd(i));
    }
}

/// Whether the search found the best sum. If a violated sum exists, it must find at least one.
void expect_best(const problem& instance, const odd_sums& found, int trial, int& with_cut) {
    const double best = least_slack(instance);
    if (best < 1.0 - 1e-5) {
        ++with_cut;
        ASSERT_NEAR(least_of(instance, found), best, 1e-9) << trial;
    } else {
        ASSERT_EQ(found.size(), 0u) << trial;
    }
}

} // namespace

TEST(OddCycles, FindTheLeastSlackWhereEveryRowHasAtMostTwoColumns) {
    std::mt19937 random(7);
    int with_cut = 0;
    for (int trial = 0; trial < 2000; ++trial) {
        const problem instance = random_problem(random, 6, 9, 2);
        const parity_system system = instance.system();
        odd_sums found(system, no_limit);
        add_rows(system, found);
        find_odd_cycles(system, never, found);
        expect_best(instance, found, trial, with_cut);
    }
    EXPECT_GT(with_cut, 500);
}

TEST(OddCycles, FindOnlyViolatedSumsInWeakenedRows) {
    std::mt19937 random(12);
    int found_some = 0;
    for (int trial = 0; trial < 500; ++trial) {
        const problem instance = random_problem(random, 8, 10, 5);
        const parity_system system = instance.system();
        odd_sums found(system, no_limit);
        find_odd_cycles(system, never, found);
        found_some += found.size() > 0 ? 1 : 0;
        least_of(instance, found);
    }
    EXPECT_GT(found_some, 100);
}

TEST(Blossoms, FindTheLeastSlackWhereEveryColumnIsInAtMostTwoRows) {
    std::mt19937 random(13);
    int with_cut = 0;
    for (int trial = 0; trial < 2000; ++trial) {
        const problem instance = random_column_graph(random, 12, 8);
        const parity_system system = instance.system();
        ASSERT_TRUE(is_column_graph(system));
        odd_sums found(system, no_limit);
        find_blossoms(system, never, found);
        add_rows(system, found);
        const double best = least_slack(instance);
        if (best < 1.0 - 1e-5) {
            ++with_cut;
            ASSERT_NEAR(least_of(instance, found), best, 1e-9) << trial;
        }
    }
    EXPECT_GT(with_cut, 500);
}

/// Two rows that many paths of small capacity connect, so one flow has many augmenting paths.
problem rows_with_many_paths(int paths) {
    std::mt19937 random(15);
    problem made(random, 2 * paths);
    std::map<int, double> first;
    std::map<int, double> last;
    for (int j = 1; j <= 2 * paths; ++j) {
        const auto at = static_cast<std::size_t>(j);
        made.bounds[at] = {0.0, 0.5 / paths, false};
        made.point[at - 1] = 0.5 / paths;
        (j % 2 == 1 ? first : last)[j] = 1.0;
    }
    made.add(first);
    made.add(last);
    for (int j = 1; j <= 2 * paths; j += 2) {
        made.add({{j, 1.0}, {j + 1, 1.0}});
    }
    return made;
}

TEST(Blossoms, StopWithinAFlow) {
    constexpr int paths = 20;
    const problem instance = rows_with_many_paths(paths);
    const parity_system system = instance.system();
    ASSERT_TRUE(is_column_graph(system));
    int polls = 0;
    odd_sums all(system, no_limit);
    find_blossoms(
        system,
        [&] {
            ++polls;
            return false;
        },
        all);
    // More than one poll for each of the paths and each of the rows.
    ASSERT_GT(polls, paths + static_cast<int>(system.rows()));
    const int needed = polls;
    for (int k = 1; k <= needed; ++k) {
        polls = 0;
        odd_sums found(system, no_limit);
        find_blossoms(
            system, [&] { return ++polls >= k; }, found);
        ASSERT_LE(polls, k + 1); // of the path and of the row
        ASSERT_LE(found.size(), all.size());
        least_of(instance, found);
    }
}

TEST(Blossoms, NeedEveryColumnInAtMostTwoRows) {
    std::mt19937 random(14);
    problem instance(random, 3);
    for (int j = 1; j <= 3; ++j) {
        instance.bounds[static_cast<std::size_t>(j)] = {0.0, 0.5, false};
        instance.point[static_cast<std::size_t>(j) - 1] = 0.5;
    }
    instance.add({{1, 1.0}, {2, 1.0}});
    instance.add({{1, 1.0}, {3, 1.0}});
    EXPECT_TRUE(is_column_graph(instance.system()));
    instance.add({{1, 1.0}, {2, 1.0}, {3, 2.0}, {1, 1.0}});
    instance.add({{2, 1.0}, {3, 1.0}, {1, 1.0}});
    EXPECT_FALSE(is_column_graph(instance.system()));
}

TEST(Elimination, FindsOnlyViolatedSums) {
    std::mt19937 random(8);
    const zktarn::owned_generator generator(3);
    int best_found = 0;
    int with_cut = 0;
    for (int trial = 0; trial < 1000; ++trial) {
        const problem instance = random_problem(random, 8, 10, 6);
        const parity_system system = instance.system();
        odd_sums found(system, no_limit);
        add_rows(system, found);
        for (int restart = 0; restart < 10; ++restart) {
            find_by_elimination(system, *generator, never, found);
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
        const parity_system system = instance.system();
        odd_sums found(system, no_limit);
        find_by_greedy_search(system, never, found);
        found_some += found.size() > 0 ? 1 : 0;
        least_of(instance, found);
    }
    EXPECT_GT(found_some, 100);
}

TEST(OddSums, StoreEachSumOnceSortedByPrice) {
    std::mt19937 random(10);
    const zktarn::owned_generator generator(3);
    const problem instance = random_problem(random, 10, 14, 4);
    const parity_system system = instance.system();
    odd_sums found(system, no_limit);
    add_rows(system, found);
    find_by_elimination(system, *generator, never, found);
    ASSERT_GT(found.size(), 2u);
    found.sort();
    std::set<std::vector<std::int32_t>> members;
    double before = 0.0;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const odd_sum sum = found[i];
        std::vector<std::int32_t> each(sum.rows.begin(), sum.rows.end());
        const double price = slack_of_sum(instance, each) + 0.2 * static_cast<double>(each.size());
        EXPECT_GE(price, before - 1e-9);
        before = price;
        std::sort(each.begin(), each.end());
        EXPECT_TRUE(members.insert(each).second);
    }
}

TEST(OddSums, AreCompleteAtTheirTargetNumber) {
    std::mt19937 random(15);
    const problem instance = random_problem(random, 6, 9, 2);
    const parity_system system = instance.system();
    EXPECT_TRUE(odd_sums(system, 0).are_enough());
    odd_sums some(system, 1);
    EXPECT_FALSE(some.are_enough());
    find_odd_cycles(system, never, some);
    ASSERT_GT(some.size(), 0u);
    EXPECT_TRUE(some.are_enough());
}

TEST(ParitySystem, KeepsOnlyRowsAndColumnsOfPossibleCuts) {
    // The columns include one at its bounds, two in the same rows, and one in a single row. The
    // rows include one with a large slack, two with equal odd columns, and one without odd columns.
    const std::vector<double> point = {0.0, 0.5, 0.25, 0.5, 0.125};
    const std::vector<double> lower(5, 0.0);
    const std::vector<double> upper = {2.0, 2.0, 2.0, 2.0, 2.0};
    mixed_integer_rows model;
    model.lower = lower;
    model.upper = upper;
    std::vector<substitution> bounds(6);
    for (std::size_t j = 1; j <= 5; ++j) {
        bounds[j] = {0.0, point[j - 1], false};
    }
    row_pool pool;
    std::vector<double> slacks;
    const auto add = [&](const std::vector<std::int32_t>& columns,
                         const std::vector<double>& coefficients, double rhs) {
        pool.add(columns, coefficients, rhs, {});
        slacks.push_back(pool.slack(pool.size() - 1, point.data()));
    };
    add({1, 2, 3, 5}, {1, 1, 1, 2}, 1); // slack 0
    add({2, 3, 4}, {1, 3, 1}, 2);       // slack 0.25
    add({2, 3}, {1, 1}, 2);             // slack 1.25
    add({2, 3, 1}, {3, 1, 3}, 2);       // slack 0.25, equal to the second
    add({5}, {2}, 1);                   // slack 0.75, no odd column
    const parity_system system(model, pool, slacks, bounds);
    // Columns 2 and 3 are merged; column 4 is added to the slack of row 1, which becomes 0.75.
    EXPECT_EQ(system.columns(), 1);
    EXPECT_DOUBLE_EQ(system.value(1), 0.75);
    ASSERT_EQ(system.rows(), 3u);
    EXPECT_EQ(system.pool_row(0), 0);
    EXPECT_EQ(system.pool_row(1), 3);
    EXPECT_EQ(system.pool_row(2), 4);
    EXPECT_TRUE(system.is_odd(0));
    EXPECT_FALSE(system.is_odd(1));
    EXPECT_TRUE(system.is_odd(2));
    EXPECT_DOUBLE_EQ(system.value(system.slack_of(2)), 0.75);
    // Bounds that differ by an even number change no parity.
    EXPECT_EQ(system.change(1).column, 0);
}

TEST(ParityReduction, KeepsASumWithTheLeastSlack) {
    std::mt19937 random(21);
    int with_cut = 0;
    int reduced = 0;
    for (int trial = 0; trial < 1000; ++trial) {
        const problem instance = random_problem(random, 8, 9, 5);
        const parity_system system = instance.system();
        reduced += system.rows() < instance.pool.size() ? 1 : 0;
        const double best = least_slack(instance);
        double kept = std::numeric_limits<double>::infinity();
        for (unsigned subset = 1; subset < 1u << system.rows(); ++subset) {
            std::vector<std::int32_t> members;
            for (unsigned i = 0; i < system.rows(); ++i) {
                if ((subset >> i & 1u) != 0) {
                    members.push_back(system.pool_row(i));
                }
            }
            kept = std::min(kept, slack_of_sum(instance, members));
        }
        if (best < slack_limit) {
            ++with_cut;
            ASSERT_NEAR(kept, best, 1e-9) << trial;
        }
    }
    EXPECT_GT(with_cut, 500);
    EXPECT_GT(reduced, 500);
}

TEST(ParityReduction, LeavesOutRowsOneAfterAnother) {
    // Row i contains columns i, i + 1 and the last one, and has a slack of 0.5. Column 1 is in row
    // 1 alone, which makes its slack 1; without row 1 the same is true of column 2, and so on.
    constexpr int rows = 5;
    std::mt19937 random(22);
    problem chain(random, rows + 1);
    for (std::size_t j = 1; j <= rows + 1; ++j) {
        chain.bounds[j] = {0.0, 0.5, false};
        chain.point[j - 1] = 0.5;
    }
    for (int i = 1; i <= rows; ++i) {
        chain.add({{i, 1.0}, {i + 1, 1.0}, {rows + 1, 1.0}});
    }
    EXPECT_EQ(chain.system().rows(), 0u);
    // Without its end the chain is a cycle.
    chain.add({{1, 1.0}, {rows, 1.0}});
    EXPECT_GT(chain.system().rows(), 0u);
}

} // namespace zero_half::testing
