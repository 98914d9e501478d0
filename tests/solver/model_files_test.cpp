// Compares what the solver states about a model file with branch and bound in rational arithmetic.
// The model is what the decimals of the file say: a statement that holds only for the doubles
// nearest to them is an error.
//
// ZKTARN_TEST_SCALE=10 ZKTARN_TEST_SEED=2 solver_model_files_test checks 10,000 other models and
// prints how often each kind occurred. A failure prints its model.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "input/error.hpp"
#include "input/read_model.hpp"
#include "run/run.hpp"
#include "solver/exact_model.hpp"
#include "solver/model_files.hpp"

namespace zero_half::testing {

namespace {

using state = exact_verdict::state;

/// How often each kind occurred, which shows that the models are of many kinds.
using counts = std::map<std::string, int>;

double value_of(const rational& number) {
    return static_cast<double>(number);
}

/// The tolerance for a proven bound, because the solver computes in floating point.
double margin(double value) {
    return 1e-7 * (1.0 + std::fabs(value));
}

/// Whether a coefficient or a side is too large for the solver.
bool has_huge_number(const exact_model& model) {
    const rational most = rational(1'000'000'000) * 1'000'000;
    const auto is_huge = [&](const std::optional<rational>& number) {
        return number && abs(*number) > most;
    };
    for (const exact_model::row& row : model.rows) {
        for (const auto& entry : row.entries) {
            if (is_huge(entry.second)) {
                return true;
            }
        }
        if (is_huge(row.range.lower) || is_huge(row.range.upper)) {
            return true;
        }
    }
    return false;
}

/// Checks that the sentence of an error is true for the model.
void check_sentence(const std::string& sentence, const exact_model& model,
                    const exact_verdict& exact, counts& seen) {
    if (sentence.find("no feasible point") != std::string::npos) {
        ++seen["error: no feasible point"];
        EXPECT_EQ(exact.relaxation, state::infeasible) << sentence;
    } else if (sentence.find("unbounded") != std::string::npos) {
        ++seen["error: unbounded"];
        EXPECT_EQ(exact.relaxation, state::unbounded) << sentence;
    } else if (sentence.find("could not be decided") != std::string::npos) {
        ++seen["error: not decided"];
    } else if (sentence.find("is beyond 1e15") != std::string::npos) {
        ++seen["error: number beyond 1e15"];
        EXPECT_TRUE(has_huge_number(model)) << sentence;
    } else {
        ADD_FAILURE() << "an unexpected sentence: " << sentence;
    }
}

void check_cuts(const exact_model& model, const run_result& run, counts& seen) {
    for (std::size_t row = 0; row < run.pool.size(); ++row) {
        const std::optional<bool> violated = is_violated(
            model, run.pool.columns(row), run.pool.coefficients(row), run.pool.rhs(row));
        ++seen[!violated ? "rows not decided" : row < run.first_cut ? "rows" : "cuts"];
        EXPECT_NE(violated, std::optional(true)) << "row " << row << " of the pool is violated";
    }
}

/// `sign` is -1 for a maximisation, whose bounds are upper bounds.
void check_values(const exact_model& model, const run_result& run, const exact_verdict& exact) {
    const double sign = model.is_maximised ? -1.0 : 1.0;
    if (run.first_bound && exact.relaxation == state::optimal) {
        const double value = value_of(exact.relaxation_value);
        EXPECT_LE(sign * *run.first_bound, sign * value + margin(value)) << "the first bound";
    }
    if (run.bound && exact.integer == state::optimal) {
        const double value = value_of(exact.integer_value);
        EXPECT_LE(sign * *run.bound, sign * value + margin(value)) << "the last bound";
        if (run.is_integral) {
            EXPECT_NEAR(*run.bound, value, 10.0 * margin(value)) << "called integral";
        }
    }
    // Any number bounds an infeasible model; no number bounds an unbounded one.
    if (run.first_bound) {
        EXPECT_NE(exact.relaxation, state::unbounded) << "bound " << *run.first_bound;
    }
    if (run.is_integral) {
        EXPECT_NE(exact.integer, state::infeasible) << "called integral";
    }
    if (run.reason == ending::no_integer_point) {
        EXPECT_NE(exact.integer, state::optimal) << "said to have no integer point";
        EXPECT_NE(exact.integer, state::unbounded) << "said to have no integer point";
    }
    EXPECT_FALSE(run.is_optimum_wrong());
}

void check(const exact_model& model, const std::string& file, counts& seen) {
    const exact_verdict exact = solve_exactly(model);
    run_options options;
    options.show = display::off;
    try {
        const run_result run = tighten(read_model(file), options);
        ++seen[std::string("end: ") + text_of(run.reason).name];
        EXPECT_EQ(run.is_maximised, model.is_maximised);
        check_values(model, run, exact);
        check_cuts(model, run, seen);
    } catch (const error& found) {
        check_sentence(found.what(), model, exact, seen);
    }
    seen["integer program not decided"] += exact.integer == state::unknown ? 1 : 0;
}

/// The best objective value of all integer points of a model.
struct enumeration {
    std::optional<rational> best;
};

bool is_within(const rational& value, const exact_range& range) {
    return (!range.lower || value >= *range.lower) && (!range.upper || value <= *range.upper);
}

bool is_feasible(const exact_model& model, const std::vector<rational>& point) {
    return std::all_of(model.rows.begin(), model.rows.end(), [&](const exact_model::row& row) {
        rational activity = 0;
        for (const auto& [j, value] : row.entries) {
            activity += value * point[static_cast<std::size_t>(j)];
        }
        return is_within(activity, row.range);
    });
}

/// Enumerates all integer points between the bounds. Nothing for a model with a continuous or
/// unbounded column, or with too many points.
std::optional<enumeration> enumerate(const exact_model& model) {
    rational points = 1;
    std::vector<rational> point;
    for (std::size_t j = 0; j < model.columns.size(); ++j) {
        const exact_range& range = model.columns[j];
        if (model.is_integer[j] == 0 || !range.lower || !range.upper) {
            return std::nullopt;
        }
        points *= *range.upper - *range.lower + 1;
        point.push_back(*range.lower);
    }
    if (points > 2000) {
        return std::nullopt;
    }
    enumeration found;
    for (std::size_t j = 0; j < point.size();) {
        rational value = model.constant;
        for (std::size_t k = 0; k < point.size(); ++k) {
            value += model.objective[k] * point[k];
        }
        const bool is_better =
            !found.best || (model.is_maximised ? value > *found.best : value < *found.best);
        if (is_better && is_feasible(model, point)) {
            found.best = value;
        }
        for (j = 0; j < point.size() && point[j] == *model.columns[j].upper; ++j) {
            point[j] = *model.columns[j].lower;
        }
        if (j < point.size()) {
            point[j] += 1;
        }
    }
    return found;
}

/// A setting of the environment, or the default.
double setting(const char* name, double usual) {
    const char* const value = std::getenv(name);
    return value == nullptr ? usual : std::atof(value);
}

class ModelFiles : public ::testing::Test {
protected:
    void SetUp() override {
        // The process number keeps two runs on one machine apart.
        name_ = ::testing::TempDir() + "zero_half_model" + std::to_string(getpid());
    }

    void check_next(model_generator& generator, int trial, counts& seen) {
        exact_model model = generator.next();
        const bool is_lp = trial % 3 == 0;
        if (is_lp) {
            make_fit_for_lp(model);
        }
        const std::string text = is_lp ? lp_text(model) : mps_text(model);
        const std::string file = name_ + (is_lp ? ".lp" : ".mps");
        std::ofstream(file) << text;
        check(model, file, seen);
        if (HasFailure()) {
            FAIL() << "trial " << trial << "\n" << text;
        }
    }

private:
    std::string name_;
};

} // namespace

TEST_F(ModelFiles, HaveOnlyValidCutsValidBoundsAndTrueMessages) {
    const int trials = static_cast<int>(1000 * setting("ZKTARN_TEST_SCALE", 1.0));
    model_generator generator(static_cast<unsigned>(setting("ZKTARN_TEST_SEED", 1.0)));
    counts seen;
    for (int trial = 0; trial < trials && !HasFailure(); ++trial) {
        check_next(generator, trial, seen);
    }
    for (const auto& [what, count] : seen) {
        std::printf("%8d  %s\n", count, what.c_str());
    }
    for (const char* what : {"cuts", "end: integral", "end: no_cut_found", "end: no_integer_point",
                             "error: no feasible point", "error: unbounded"}) {
        EXPECT_GE(seen[what], trials / 100) << what << ": too few for a test of it";
    }
    EXPECT_LE(seen["integer program not decided"], trials / 50);
    EXPECT_LE(seen["error: not decided"], trials / 50);
}

TEST(ExactSearch, AgreesWithEnumeration) {
    model_generator generator(3);
    int compared = 0;
    for (int trial = 0; trial < 400; ++trial) {
        const exact_model model = generator.next();
        const std::optional<enumeration> all = enumerate(model);
        if (!all) {
            continue;
        }
        ++compared;
        const exact_verdict verdict = solve_exactly(model);
        ASSERT_EQ(verdict.integer, all->best ? state::optimal : state::infeasible) << trial;
        if (all->best) {
            ASSERT_EQ(verdict.integer_value, *all->best) << trial;
        }
    }
    EXPECT_GE(compared, 100);
}

TEST(ExactSearch, FindsAViolatedRow) {
    exact_model model;
    model.columns = {{rational(0), rational(2)}, {rational(0), rational(2)}};
    model.is_integer = {1, 1};
    model.objective = {1, 1};
    model.rows = {{{{0, 2}, {1, 2}}, {{}, rational(5)}}};
    const std::array<std::int32_t, 2> columns = {1, 2};
    const std::array<double, 2> coefficients = {1.0, 1.0};
    EXPECT_EQ(is_violated(model, columns, coefficients, 2.0), std::optional(false));
    EXPECT_EQ(is_violated(model, columns, coefficients, 1.0), std::optional(true));
}

} // namespace zero_half::testing
