#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <CoinPackedVector.hpp>
#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

#include "input/error.hpp"
#include "run/run.hpp"
#include "solver/replay.hpp"
#include "support/scale.hpp"

namespace zero_half::testing {

namespace {

/// Random models of a few integer columns with small ranges, whose integer points can be
/// enumerated.
class model_generator {
public:
    explicit model_generator(unsigned seed) : random_(seed) {}

    /// The number of digits of the largest coefficient before the decimal point, at most.
    model next(int digits);

private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    double number(int digits);
    double point_activity(const std::vector<double>& row) const;

    std::mt19937 random_;
    std::vector<double> point_;
};

double model_generator::number(int digits) {
    const double sign = below(2) == 0 ? 1.0 : -1.0;
    switch (below(5)) {
    case 0:
        return sign * (1 + below(9)) / 10.0;
    case 1:
        return sign * std::pow(10.0, below(digits + 1));
    case 2:
        return sign * (1 + below(9)) * std::pow(10.0, below(digits)) / 3.0;
    default:
        return sign * (1 + below(9));
    }
}

double model_generator::point_activity(const std::vector<double>& row) const {
    double activity = 0.0;
    for (std::size_t j = 0; j < row.size(); ++j) {
        activity += row[j] * point_[j];
    }
    return activity;
}

model model_generator::next(int digits) {
    const int columns = 2 + below(4);
    const int rows = 1 + below(5);
    model program;
    program.file = "random";
    program.rows = CoinPackedMatrix(false, 0.0, 0.0);
    program.rows.setDimensions(0, columns);
    point_.clear();
    for (int j = 0; j < columns; ++j) {
        const int low = below(9) - 6;
        const int range = below(4);
        program.lower.push_back(low);
        program.upper.push_back(low + range);
        program.objective.push_back(below(6) == 0 ? 0.0 : number(digits));
        program.is_integer.push_back(1);
        point_.push_back(low + below(range + 1));
    }
    for (int i = 0; i < rows; ++i) {
        std::vector<double> row(static_cast<std::size_t>(columns), 0.0);
        CoinPackedVector entries;
        for (int j = 0; j < columns; ++j) {
            if (below(4) != 0) {
                row[static_cast<std::size_t>(j)] = number(digits);
                entries.insert(j, row[static_cast<std::size_t>(j)]);
            }
        }
        program.rows.appendRow(entries);
        const double activity = point_activity(row) + (below(3) == 0 ? number(1) : 0.0);
        const int kind = below(4);
        program.row_lower.push_back(kind == 1 || kind == 2 ? activity
                                    : kind == 3            ? activity - below(3)
                                                           : -no_bound);
        program.row_upper.push_back(kind == 1 ? no_bound : activity);
    }
    return program;
}

/// Calls the visitor with every integer point between the bounds.
template <class Visitor>
void for_each_point(const model& program, Visitor visit) {
    std::vector<double> point = program.lower;
    for (;;) {
        visit(point);
        std::size_t j = 0;
        while (j < point.size() && point[j] == program.upper[j]) {
            point[j] = program.lower[j];
            ++j;
        }
        if (j == point.size()) {
            return;
        }
        ++point[j];
    }
}

using boost::multiprecision::cpp_rational;

/// The largest distance of a double from the decimal in the file: half a unit in the last place, 0
/// for integers.
double decimal_error(double number) {
    return std::trunc(number) == number ? 0.0 : std::ldexp(std::fabs(number), -53);
}

/// Whether the point satisfies row `i` in exact arithmetic, allowing each number that is not an
/// integer its decimal error, and the sides a relative tolerance.
bool satisfies_row(const model& program, int i, const std::vector<double>& point,
                   double tolerance) {
    const int first = program.rows.getVectorFirst(i);
    cpp_rational activity = 0;
    double slip = 0.0;
    for (int k = first; k < first + program.rows.getVectorSize(i); ++k) {
        const double a = program.rows.getElements()[k];
        const double x = point[static_cast<std::size_t>(program.rows.getIndices()[k])];
        activity += cpp_rational(a) * cpp_rational(x);
        slip += decimal_error(a) * std::fabs(x);
    }
    const double lower = program.row_lower[static_cast<std::size_t>(i)];
    const double upper = program.row_upper[static_cast<std::size_t>(i)];
    const auto slip_at = [&](double side) {
        return cpp_rational(slip + decimal_error(side) +
                            tolerance * std::max(1.0, std::fabs(side)));
    };
    return activity <= cpp_rational(upper) + slip_at(upper) &&
           activity >= cpp_rational(lower) - slip_at(lower);
}

bool is_feasible(const model& program, const std::vector<double>& point, double tolerance) {
    for (int i = 0; i < program.row_count(); ++i) {
        if (!satisfies_row(program, i, point, tolerance)) {
            return false;
        }
    }
    return true;
}

std::optional<double> optimum_of(const model& program, double tolerance) {
    std::optional<double> least;
    for_each_point(program, [&](const std::vector<double>& point) {
        if (is_feasible(program, point, tolerance)) {
            double value = program.constant;
            for (std::size_t j = 0; j < point.size(); ++j) {
                value += program.objective[j] * point[j];
            }
            least = std::min(least.value_or(value), value);
        }
    });
    return least;
}

void expect_valid_cuts(const model& program, const run_result& run) {
    for_each_point(program, [&](const std::vector<double>& point) {
        if (!is_feasible(program, point, 0.0)) {
            return;
        }
        for (std::size_t row = 0; row < run.pool.size(); ++row) {
            EXPECT_GE(run.pool.slack(row, point.data()), 0.0);
        }
    });
}

void check(const model& program) {
    const std::optional<double> optimum = optimum_of(program, 0.0);
    const std::optional<double> tolerant_optimum = optimum_of(program, 1e-9);
    run_options options;
    options.show = display::off;
    try {
        const run_result run = tighten(program, options);
        expect_valid_cuts(program, run);
        if (optimum && run.bound) {
            EXPECT_LE(*run.bound, *optimum + 1e-6 * (1.0 + std::fabs(*optimum)));
        }
        EXPECT_FALSE(optimum && run.reason == ending::no_integer_point);
        if (run.reason == ending::integral) {
            // The point may violate sides by the error of their decimals, so the optimum found is
            // between the one with this tolerance and the one without.
            ASSERT_TRUE(tolerant_optimum.has_value());
            const double margin = 1e-6 * (1.0 + std::fabs(*tolerant_optimum));
            EXPECT_GE(*run.optimum, *tolerant_optimum - margin);
            EXPECT_LE(*run.optimum, optimum.value_or(*run.optimum) + margin);
        }
    } catch (const error& found) {
        const std::string sentence = found.what();
        EXPECT_EQ(sentence.find("unbounded"), std::string::npos) << "all columns are bounded";
        EXPECT_FALSE(optimum && sentence.find("no feasible point") != std::string::npos);
    }
}

} // namespace

TEST(RandomModels, HaveValidBoundsValidStatementsAndValidCuts) {
    const auto trials = static_cast<int>(zktarn::testing::scaled(6000));
    model_generator generator(20261122);
    for (int trial = 0; trial < trials; ++trial) {
        const model program = generator.next(trial % 3 == 0 ? 14 : trial % 3 == 1 ? 5 : 1);
        check(program);
        if (HasFailure()) {
            FAIL() << "trial " << trial;
        }
    }
}

namespace {

/// Small models with continuous, general integer and free columns, equations, ranges, decimals and
/// variable bounds.
class mixed_models {
public:
    explicit mixed_models(unsigned seed) : random_(seed) {}

    model next() {
        const int columns = 3 + below(6);
        const int rows = 2 + below(7);
        const bool has_decimals = below(3) == 0;
        model made;
        made.file = "mixed";
        made.rows = CoinPackedMatrix(false, 0, 0);
        made.rows.setDimensions(0, columns);
        for (int j = 0; j < columns; ++j) {
            add_column(made);
        }
        for (int i = 0; i < rows; ++i) {
            add_row(made, has_decimals);
        }
        return made;
    }

private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    void add_column(model& made) {
        const bool is_free = below(12) == 0;
        const double lower = below(3) == 0 ? -below(4) : 0.0;
        made.lower.push_back(is_free ? -no_bound : lower);
        made.upper.push_back(is_free || below(6) == 0 ? no_bound : lower + 1 + below(3));
        made.is_integer.push_back(below(3) == 0 ? 0 : 1);
        made.objective.push_back(below(9) - 4);
        made.column_names.push_back("x" + std::to_string(made.lower.size()));
    }

    void add_row(model& made, bool has_decimals) {
        const int columns = made.column_count();
        const int entries = below(4) == 0 ? 2 : 2 + below(columns - 1);
        std::vector<int> indices;
        std::vector<double> values;
        for (int j = 0; j < columns && static_cast<int>(indices.size()) < entries; ++j) {
            if (below(columns) < entries) {
                indices.push_back(j);
                values.push_back((below(13) - 6) / (has_decimals ? 10.0 : 1.0));
                values.back() += values.back() == 0.0 ? 1.0 : 0.0;
            }
        }
        made.rows.appendRow(static_cast<int>(indices.size()), indices.data(), values.data());
        const double side = (below(25) - 4) / (has_decimals ? 4.0 : 1.0);
        const int kind = below(6);
        made.row_lower.push_back(kind == 0 ? side : kind == 1 ? side - 2 : -no_bound);
        made.row_upper.push_back(side);
        made.row_names.push_back("r" + std::to_string(made.row_lower.size()));
    }

    std::mt19937 random_;
};

} // namespace

TEST(MixedModels, HaveOnlyCutsThatFollowExactly) {
    const auto trials = static_cast<int>(zktarn::testing::scaled(5000));
    mixed_models models(20261121);
    std::size_t cuts = 0;
    std::size_t substituted = 0;
    for (int trial = 0; trial < trials; ++trial) {
        const model program = models.next();
        run_options options;
        options.show = display::off;
        options.rounds = 8;
        try {
            const run_result run = tighten(program, options);
            const verdict exact = replay(program, run);
            ASSERT_EQ(exact.faults, std::vector<std::string>()) << "trial " << trial;
            cuts += exact.cuts;
            for (std::size_t i = 0; i < run.first_cut; ++i) {
                substituted += run.pool.origin(i).terms.size() > 1 ? 1u : 0u;
            }
        } catch (const error&) {
            // The relaxation is infeasible or unbounded.
        }
    }
    EXPECT_GT(cuts, static_cast<std::size_t>(trials) / 20);
    EXPECT_GT(substituted, static_cast<std::size_t>(trials) / 20);
}

} // namespace zero_half::testing
