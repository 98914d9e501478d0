#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "run/tightener.hpp"
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
        answer(0.0);
    }
    void TearDown() override {
        EXPECT_EQ(standin::live_blocks().size(), 0u) << standin::report();
        EXPECT_EQ(standin::live_objects().size(), 0u) << standin::report();
        standin::reset();
    }

    void answer(double with) {
        standin::set_function("tarnCallback", [this, with](const standin::array_value& info) {
            seen_.push_back(info);
            return with;
        });
    }
    /// The ending, with everything given back by then.
    ending how_it_ends() {
        const run_result run = tighten(from_, options_);
        bound_ = run.bound;
        rounds_ = run.rounds.size();
        return run.how;
    }
    static std::size_t lines() {
        const std::string text = standin::console_text();
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    model from_ = read_model(ZERO_HALF_OWN_INSTANCES "/petersen_stable.mps");
    run_options options_;
    std::vector<standin::array_value> seen_;
    std::optional<double> bound_;
    std::size_t rounds_ = 0;
};

} // namespace

TEST_F(Run, PrintsALineARoundAndTellsTheOutputFunction) {
    EXPECT_EQ(how_it_ends(), ending::integral);
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
        how_it_ends();
        EXPECT_EQ(standin::console_text(), "");
    }
}

TEST_F(Run, NeedsNoOutputFunction) {
    options_.has_output_function = false;
    standin::set_function("tarnCallback", {});
    EXPECT_EQ(how_it_ends(), ending::integral);
    EXPECT_TRUE(seen_.empty());
}

TEST_F(Run, EndsWhenTheOutputFunctionAnswersOne) {
    answer(1.0);
    EXPECT_EQ(how_it_ends(), ending::stopped_by_output_function);
    EXPECT_EQ(rounds_, 1u);
    EXPECT_GT(*bound_, -5.0);
    // Once stopped, nothing more is told.
    EXPECT_EQ(seen_.size(), 1u);
}

TEST_F(Run, EndsAtEveryPollThatSeesAnInterrupt) {
    int interrupted = 0;
    for (std::int64_t k = 1; k <= 30; ++k) {
        standin::interrupt_at_poll(k);
        const ending how = how_it_ends();
        standin::interrupt_at_poll(0);
        ASSERT_TRUE(how == ending::interrupted || how == ending::integral) << k;
        interrupted += how == ending::interrupted ? 1 : 0;
        ASSERT_GE(*bound_, -5.0 - 1e-9);
    }
    EXPECT_GE(interrupted, 3);
}

TEST_F(Run, EndsWithoutARoundOrATimeToUse) {
    options_.rounds = 0;
    EXPECT_EQ(how_it_ends(), ending::rounds_used);
    EXPECT_NEAR(*bound_, -5.0, 1e-9);
    options_.rounds = 50;
    options_.seconds = 0.0;
    EXPECT_EQ(how_it_ends(), ending::time_used);
    EXPECT_EQ(rounds_, 0u);
}

TEST_F(Run, EndsWhenTheGapIsClosedAsFarAsAsked) {
    options_.optimum = -4.0;
    options_.stop_at_gap = 10.0;
    EXPECT_EQ(how_it_ends(), ending::gap_closed);
    EXPECT_EQ(rounds_, 1u);
}

TEST_F(Run, SaysThatThereIsNoIntegerPoint) {
    // Each edge is to have exactly one of its ends, and there are odd cycles.
    from_.row_lower.assign(from_.row_lower.size(), 1.0);
    EXPECT_EQ(how_it_ends(), ending::no_integer_point);
}

TEST_F(Run, RefusesRelaxationsWithoutAnOptimum) {
    const model good = from_;
    from_.row_lower[0] = 3.0;
    from_.row_upper[0] = 3.0;
    EXPECT_THROW(how_it_ends(), trouble);
    from_ = good;
    from_.row_upper.assign(from_.row_upper.size(), no_bound);
    from_.upper.assign(from_.upper.size(), no_bound);
    EXPECT_THROW(how_it_ends(), trouble);
}

TEST_F(Run, IsTheSameForTheSameSeed) {
    std::vector<double> before;
    for (int i = 0; i < 2; ++i) {
        seen_.clear();
        how_it_ends();
        const std::vector<double> history = seen_.back().field("history").reals();
        EXPECT_TRUE(i == 0 || history == before);
        before = history;
    }
}

} // namespace zero_half::testing
