// tarnassert, and the checks of preconditions, which report violations through it. Built twice:
// with the checks, and without.
#include "zktarn/check.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/host_log.hpp"
#include "zktarn/assert/assert_mod.hpp"
#include "zktarn/callbacks/callbacks_util.hpp"
#include "zktarn/types.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using zktarn::testing::assert_of;
using zktarn::testing::host_call;
using zktarn::testing::host_log;
using zktarn::testing::operation;

#ifdef ZKTARN_CHECKED
constexpr bool checked = true;
#else
constexpr bool checked = false;
#endif

/// The calls of the host's operations that `run` causes.
template <class Run>
std::vector<host_call> calls_of(Run run) {
    const host_log host;
    zktarn::standin::set_console(zktarn::standin::console::capture);
    zktarn::standin::set_assertion_handler([] {});
    run();
    zktarn::standin::set_console(zktarn::standin::console::show);
    return host_log::calls();
}

std::vector<host_call> calls_of_assert(zktarn::flag condition) {
    return calls_of([&] { zktarn::assert_mod::tarnassert(condition); });
}

TEST(Tarnassert, PassesATrueConditionToTheHostOnce) {
    EXPECT_THAT(calls_of_assert(1), ElementsAre(assert_of(true)));
}

TEST(Tarnassert, PassesAFalseConditionToTheHostOnce) {
    EXPECT_THAT(calls_of_assert(0), ElementsAre(assert_of(false)));
}

TEST(Tarnassert, ConvertsTheLowestByteOfTheConditionOnly) {
    EXPECT_THAT(calls_of_assert(2), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_of_assert(0x80), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_of_assert(0xFF), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_of_assert(-1), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_of_assert(0x100), ElementsAre(assert_of(false)));
    EXPECT_THAT(calls_of_assert(0x101), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_of_assert(-256), ElementsAre(assert_of(false)));
}

/// Matches the printed line of a violation, with any line number.
auto prints(const std::string& condition, const std::string& procedure, const std::string& file) {
    return testing::ResultOf(
        [](const host_call& call) { return call.texts.empty() ? "" : call.texts[0]; },
        MatchesRegex("violated: " + condition + ", in " + procedure + " \\(zktarn/" + file +
                     ":[0-9]+\\)\n"));
}

const host_call flushes{operation::ioFlushOptim};

#define EXPECT_REPORTED(access)                                                                    \
    if (checked) {                                                                                 \
        EXPECT_THAT(calls_of([&] { access; }), ElementsAre(prints("present\\(\\) && .*extent.*",   \
                                                                  "operator\\(\\)", "types.hpp"),  \
                                                           flushes, assert_of(false)));            \
    } else {                                                                                       \
        EXPECT_THAT(calls_of([&] { access; }), IsEmpty());                                         \
    }

// The arrays are parts of this block, so that an access outside of an array stays inside the block.
double room[20] = {};

TEST(Check, ReportsAPositionOutsideOfAnArray) {
    const zktarn::array_1d<double> array{room + 8, {3}, {1}};
    EXPECT_REPORTED(static_cast<void>(array(0)));
    EXPECT_REPORTED(static_cast<void>(array(4)));
    EXPECT_THAT(calls_of([&] { array(1) = array(3); }), IsEmpty());
}

TEST(Check, ReportsAPositionOutsideOfAMatrix) {
    const zktarn::array_2d<double> array{room + 8, {2, 3}, {1, 1}};
    EXPECT_REPORTED(static_cast<void>(array(0, 1)));
    EXPECT_REPORTED(static_cast<void>(array(3, 1)));
    EXPECT_REPORTED(static_cast<void>(array(1, 0)));
    EXPECT_REPORTED(static_cast<void>(array(1, 4)));
    EXPECT_THAT(calls_of([&] { array(1, 1) = array(2, 3); }), IsEmpty());
}

#ifdef ZKTARN_CHECKED

/// The text of the line that a violation prints.
template <class Violation>
std::string line_of(Violation violation) {
    const std::vector<host_call> all = calls_of(violation);
    return all.empty() || all[0].texts.empty() ? "" : all[0].texts[0];
}

TEST(Check, PrintsTheConditionTheProcedureAndTheLine) {
    const auto procedure = [] {
        ZKTARN_CHECK(1 + 1 == 3);
        return __LINE__ - 1;
    };
    int line = 0;
    EXPECT_THAT(line_of([&] { line = procedure(); }),
                testing::HasSubstr("violated: 1 + 1 == 3, in "));
    EXPECT_THAT(line_of([&] { procedure(); }),
                testing::EndsWith("check_test.cpp:" + std::to_string(line) + ")\n"));
}

TEST(Check, TruncatesALongLine) {
    const std::string procedure(1000, 'p');
    const auto violate = [&] {
        zktarn::detail::report_violation("k <= n", procedure.c_str(), "/usr/zktarn/x.hpp", 7);
    };
    EXPECT_EQ(line_of(violate), "violated: k <= n, in " + procedure.substr(0, 490) + "\n");
}

TEST(Check, ReportsAlsoAfterAnInterruptWithoutPrinting) {
    const auto violate = [] {
        zktarn::standin::raise_interrupt();
        EXPECT_EQ(zktarn::callbacks_util::cbhasinterrupt(0, 1), 1);
        zktarn::standin::clear_call_log();
        ZKTARN_CHECK(false);
    };
    EXPECT_THAT(calls_of(violate), ElementsAre(assert_of(false)));
    zktarn::callbacks_util::cbdata* cb = nullptr;
    zktarn::callbacks_util::cbinit(cb);
    delete cb;
}

#endif

TEST(Check, EvaluatesItsConditionInACheckedBuildOnly) {
    int evaluations = 0;
    const auto condition = [&] { return ++evaluations == 1; };
    static_cast<void>(condition);
    ZKTARN_CHECK(condition());
    EXPECT_EQ(evaluations, checked ? 1 : 0);
}

} // namespace
