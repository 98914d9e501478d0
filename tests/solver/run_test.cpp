#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "input/error.hpp"
#include "input/read_model.hpp"
#include "run/run.hpp"
#include "zktarn_standin/arrays.hpp"
#include "zktarn_standin/console.hpp"
#include "zktarn_standin/control.hpp"
#include "zktarn_standin/interrupts.hpp"

namespace zero_half::testing {

namespace {

namespace standin = zktarn::standin;

/// A run on the Petersen graph in a host whose console is captured.
class Run : public ::testing::Test {
protected:
    void SetUp() override {
        standin::reset();
        standin::set_console(standin::console::capture);
        standin::clear_console();
        options_.show = display::iter;
        options_.has_output_function = true;
        register_function(0.0);
    }
    void TearDown() override {
        EXPECT_EQ(standin::live_blocks().size(), 0u) << standin::report();
        EXPECT_EQ(standin::live_objects().size(), 0u) << standin::report();
        standin::reset();
    }

    void register_function(double result) {
        standin::set_function("tarnCallback", [this, result](const standin::array_value& info) {
            seen_.push_back(info);
            return result;
        });
    }
    /// Runs and returns the ending; everything else is destroyed on return.
    ending run_and_get_ending() {
        const run_result run = tighten(model_, options_);
        bound_ = run.bound;
        rounds_ = run.rounds.size();
        return run.reason;
    }
    static std::size_t lines() {
        const std::string text = standin::console_text();
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    model model_ = read_model(ZERO_HALF_GRAPH_INSTANCES "/petersen_stable.mps");
    run_options options_;
    std::vector<standin::array_value> seen_;
    std::optional<double> bound_;
    std::size_t rounds_ = 0;
};

} // namespace

TEST_F(Run, PrintsALineForEachRoundAndCallsTheOutputFunction) {
    EXPECT_EQ(run_and_get_ending(), ending::integral);
    ASSERT_GT(rounds_, 0u);
    EXPECT_EQ(lines(), rounds_ + 1);
    ASSERT_EQ(seen_.size(), rounds_ + 1);
    const standin::array_value& first = seen_.front();
    EXPECT_EQ(first.field("phase").text(), "cutting");
    EXPECT_EQ(first.field("round").scalar(), 1.0);
    EXPECT_EQ(first.field("history").reals().size(), 2u);
    EXPECT_EQ(first.field("history").reals().back(), first.field("bound").scalar());
    EXPECT_EQ(seen_.back().field("phase").text(), "done");
    EXPECT_EQ(seen_.back().field("bound").scalar(), *bound_);
}

TEST_F(Run, PrintsNothingWhereRoundsAreNotShown) {
    for (const display show : {display::off, display::final}) {
        options_.show = show;
        run_and_get_ending();
        EXPECT_EQ(standin::console_text(), "");
    }
}

TEST_F(Run, NeedsNoOutputFunction) {
    options_.has_output_function = false;
    standin::set_function("tarnCallback", {});
    EXPECT_EQ(run_and_get_ending(), ending::integral);
    EXPECT_TRUE(seen_.empty());
}

TEST_F(Run, EndsWhenTheOutputFunctionReturnsOne) {
    register_function(1.0);
    EXPECT_EQ(run_and_get_ending(), ending::stopped_by_output_function);
    EXPECT_EQ(rounds_, 1u);
    EXPECT_GT(*bound_, -5.0);
    // A stopped run does not report its end.
    EXPECT_EQ(seen_.size(), 1u);
}

TEST_F(Run, EndsAtWhicheverPollReportsAnInterrupt) {
    int interrupted = 0;
    for (std::int64_t k = 1; k <= 30; ++k) {
        standin::interrupt_at_poll(k);
        const ending reason = run_and_get_ending();
        standin::interrupt_at_poll(0);
        ASSERT_TRUE(reason == ending::interrupted || reason == ending::integral) << k;
        interrupted += reason == ending::interrupted ? 1 : 0;
        // Within the first relaxation there is a weaker bound only.
        if (rounds_ > 0) {
            ASSERT_GE(*bound_, -5.0 - 1e-9);
        }
    }
    EXPECT_GE(interrupted, 3);
}

TEST_F(Run, EndsWithoutRoundsOrWithoutTime) {
    options_.rounds = 0;
    EXPECT_EQ(run_and_get_ending(), ending::rounds_used);
    EXPECT_NEAR(*bound_, -5.0, 1e-9);
    options_.rounds = 50;
    options_.seconds = 0.0;
    EXPECT_EQ(run_and_get_ending(), ending::time_used);
    EXPECT_EQ(rounds_, 0u);
}

TEST_F(Run, EndsWhenTheRequestedShareOfTheGapIsClosed) {
    model_ = read_model(ZERO_HALF_MODELS "/lseu.mps");
    options_.optimum = 1120.0;
    options_.stop_at_gap = 10.0;
    EXPECT_EQ(run_and_get_ending(), ending::gap_closed);
    EXPECT_GE(rounds_, 1u);
    EXPECT_LT(rounds_, 50u);
    EXPECT_LT(*bound_, 1120.0);
}

TEST_F(Run, EndsBeforeARoundThatMayNeedMoreMemoryThanIsLeft) {
    model_ = read_model(ZERO_HALF_MODELS "/p0282.mps");
    const auto entries = static_cast<std::uint64_t>(model_.rows.getNumElements());
    // Enough for a first round, but not beside the pool that it leaves.
    options_.memory_left = [&] { return memory_for_round(entries, 2 * entries); };
    EXPECT_EQ(run_and_get_ending(), ending::memory_used);
    EXPECT_GE(rounds_, 1u);
    EXPECT_LT(rounds_, 20u);
    options_.memory_left = [] { return std::uint64_t{1000}; };
    EXPECT_EQ(run_and_get_ending(), ending::memory_used);
    EXPECT_EQ(rounds_, 0u);
    EXPECT_TRUE(bound_.has_value());
    options_.memory_left = [] { return std::nullopt; };
    EXPECT_NE(run_and_get_ending(), ending::memory_used);
}

TEST_F(Run, FindsThatThereIsNoIntegerPoint) {
    // Exactly one end of each edge is selected, which is impossible on an odd cycle.
    model_.row_lower.assign(model_.row_lower.size(), 1.0);
    EXPECT_EQ(run_and_get_ending(), ending::no_integer_point);
}

TEST_F(Run, ThrowsWhenTheRelaxationHasNoOptimum) {
    const model good = model_;
    model_.row_lower[0] = 3.0;
    model_.row_upper[0] = 3.0;
    EXPECT_THROW(run_and_get_ending(), error);
    model_ = good;
    model_.row_upper.assign(model_.row_upper.size(), no_bound);
    model_.upper.assign(model_.upper.size(), no_bound);
    EXPECT_THROW(run_and_get_ending(), error);
}

TEST_F(Run, ReturnsTheIntegralOptimumAsItsPoint) {
    const run_result run = tighten(model_, options_);
    ASSERT_TRUE(run.is_integral);
    ASSERT_EQ(run.point.size(), static_cast<std::size_t>(model_.column_count()));
    double objective = model_.constant;
    for (std::size_t j = 0; j < run.point.size(); ++j) {
        EXPECT_EQ(run.point[j], std::round(run.point[j])) << j;
        objective += model_.objective[j] * run.point[j];
    }
    EXPECT_EQ(objective, -4.0);
}

TEST_F(Run, ReturnsTheFractionalPointOfTheLastRelaxation) {
    options_.rounds = 0;
    const run_result run = tighten(model_, options_);
    EXPECT_FALSE(run.is_integral);
    // The relaxation of the stable sets has 1/2 everywhere.
    EXPECT_EQ(run.point, std::vector<double>(static_cast<std::size_t>(model_.column_count()), 0.5));
}

TEST_F(Run, IsTheSameForTheSameSeed) {
    std::vector<double> before;
    for (int i = 0; i < 2; ++i) {
        seen_.clear();
        run_and_get_ending();
        const std::vector<double> history = seen_.back().field("history").reals();
        EXPECT_TRUE(i == 0 || history == before);
        before = history;
    }
}

} // namespace zero_half::testing
