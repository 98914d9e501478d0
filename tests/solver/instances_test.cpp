#include <cmath>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "input/optima.hpp"
#include "input/read_model.hpp"
#include "output/mps_writer.hpp"
#include "run/tightener.hpp"
#include "solver/instances.hpp"
#include "solver/integer_solver.hpp"
#include "solver/replay.hpp"
#include "support/scale.hpp"
#include "zktarn_standin/control.hpp"

namespace zero_half::testing {

namespace {

/// Results of other programs for a model.
struct known_figures {
    double optimum;
    /// The required gap closed in per cent: 100 if zero-half cuts of the rows suffice, else the
    /// value that CglZeroHalf reaches.
    double closed;
};

known_figures known_of(const std::string& file) {
    static const std::map<std::string, known_figures> known = {
        {"10teams", {924.0, 100.0}},        {"lseu", {1120.0, 30.88}},
        {"p0033", {3089.0, 13.1}},          {"p0201", {7615.0, 6.7}},
        {"p0282", {258411.0, 59.47}},       {"misc03", {3360.0, 25.86}},
        {"stein27", {18.0, 0.0}},           {"mod008", {307.0, 0.08}},
        {"match_karate_w", {-49.0, 100.0}}, {"match_lesmis_w", {-154.0, 100.0}},
        {"stable_petersen", {-4.0, 100.0}}, {"tjoin_dolphins", {23.0, 100.0}},
        {"vcover_florentine", {8.0, 100.0}}};
    const auto place = known.find(stem_of(file));
    return place != known.end() ? place->second : known_figures{known_optimum(file).value(), 100.0};
}

std::string test_name(const ::testing::TestParamInfo<std::string>& info) {
    return stem_of(info.param);
}

/// Whether this build scales cases down and the test takes long for this model.
bool is_left_out(const std::string& file, const std::set<std::string>& models_that_take_long) {
    return zktarn::testing::scaled(100) < 100 && models_that_take_long.contains(stem_of(file));
}

class Instance : public ::testing::TestWithParam<std::string> {
protected:
    /// With an optimum the run ends when the bound reaches it, so it may need no cut.
    static run_result run_of(const model& program, std::optional<double> optimum) {
        run_options options;
        options.show = display::off;
        options.optimum = optimum;
        // The exact derivation of every cut of a longer run takes long.
        options.rounds = 50;
        return tighten(program, options);
    }
};

double activity(const row_pool& pool, std::size_t row, const std::vector<double>& point) {
    double sum = 0.0;
    for (std::size_t k = 0; k < pool.columns(row).size(); ++k) {
        sum += pool.coefficients(row)[k] *
               std::round(point[static_cast<std::size_t>(pool.columns(row)[k]) - 1]);
    }
    return sum;
}

} // namespace

TEST_P(Instance, HasValidCutsByExactDerivation) {
    if (is_left_out(GetParam(), {"10teams", "lseu", "misc03", "p0282"})) {
        GTEST_SKIP() << "derives many cuts in rational arithmetic";
    }
    const model program = read_model(GetParam());
    const auto best = solve_by_branching(program);
    ASSERT_TRUE(best.has_value());
    const std::size_t blocks_before = zktarn::standin::live_blocks().size();
    {
        const run_result run = run_of(program, std::nullopt);
        EXPECT_LE(*run.bound, best->value + 1e-6 * (1.0 + std::fabs(best->value)));
        const verdict exact = replay(program, run);
        EXPECT_GT(exact.cuts, 0u);
        EXPECT_EQ(exact.cuts, run.pool.size() - run.first_cut);
        EXPECT_EQ(exact.faults, std::vector<std::string>());
        for (std::size_t row = 0; row < run.pool.size(); ++row) {
            EXPECT_LE(activity(run.pool, row, best->point), run.pool.rhs(row));
        }
        RecordProperty("cuts", static_cast<int>(run.cuts.size()));
    }
    EXPECT_EQ(zktarn::standin::live_blocks().size(), blocks_before);
}

TEST_P(Instance, ClosesTheRequiredPartOfTheGap) {
    const known_figures known = known_of(GetParam());
    const run_result run = run_of(read_model(GetParam()), known.optimum);
    EXPECT_GE(*run.gap_closed(run.bound), known.closed - 1e-6);
}

TEST_P(Instance, HasTheSameOptimumWhenWrittenWithItsCuts) {
    if (is_left_out(GetParam(), {"10teams", "misc03", "stein27"})) {
        GTEST_SKIP() << "the integer solver needs many nodes";
    }
    model program = read_model(GetParam());
    run_options options;
    options.show = display::off;
    options.rounds = 5;
    run_result run = tighten(program, options);
    const solved_model solved{std::move(program), std::move(run)};
    const std::string file = ::testing::TempDir() + "zero_half_" + std::to_string(getpid()) +
                             stem_of(GetParam()) + ".mps";
    write_model(solved, file);
    const model again = read_model(file);
    std::filesystem::remove(file);
    EXPECT_EQ(again.row_count(),
              solved.program.row_count() + static_cast<int>(solved.run.cuts.size()));
    EXPECT_EQ(again.column_names, solved.program.column_names);
    EXPECT_EQ(again.is_integer, solved.program.is_integer);
    EXPECT_EQ(again.lower, solved.program.lower);
    EXPECT_EQ(again.upper, solved.program.upper);
    const auto best = solve_by_branching(again);
    ASSERT_TRUE(best.has_value());
    EXPECT_NEAR(best->value, known_of(GetParam()).optimum, 1e-6 * (1.0 + std::fabs(best->value)));
}

INSTANTIATE_TEST_SUITE_P(All, Instance, ::testing::ValuesIn(instances()), test_name);

} // namespace zero_half::testing
