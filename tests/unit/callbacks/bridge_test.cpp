#include "zktarn/callbacks/callbacks_util.hpp"

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/failing_new.hpp"
#include "support/recording_host.hpp"

namespace {

using namespace zktarn::callbacks_util;
using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::flag;
using zktarn::testing::call;
using zktarn::testing::live_objects;
using zktarn::testing::recording_host;
using zktarn::testing::refuse_new;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

constexpr std::int32_t running = 0;
constexpr std::int32_t stopped = 3;
constexpr std::int32_t no_poll = 0;
constexpr std::int32_t polling = 1;

const call poll = {"utIsInterruptPending"};
const call flush = {"ioFlushOptim"};

call printf_of(const std::string& text) {
    return {"qvxprintf800_", {}, {text}};
}

class Bridge : public testing::Test {
protected:
    void SetUp() override {
        begin_solve();
        host.answer = [this](const call& c) {
            const auto scripted = answers.find(c.operation);
            return scripted == answers.end() ? 0.0 : scripted->second;
        };
    }
    void TearDown() override {
        begin_solve();
        EXPECT_EQ(live_objects(), 0);
    }

    static void begin_solve() {
        cbdata* cb = nullptr;
        cbinit(cb);
        delete cb;
    }

    /// What has been called since the last time, without addresses.
    std::vector<call> calls() {
        std::vector<call> all;
        all.swap(host.calls);
        for (call& each : all) {
            each.address = nullptr;
        }
        return all;
    }

    /// Makes a poll see an interrupt.
    void see_interrupt() {
        host.interrupts = {true};
        EXPECT_EQ(cbhasinterrupt(running, polling), 1);
        EXPECT_THAT(calls(), ElementsAre(poll));
    }

    /// Whether an output function that answers so stops the solver.
    flag stop_for(double answer) {
        answers["qvgetpr800_"] = answer;
        flag stop = -1;
        qvcalloutputfcn(7, stop, running, no_poll);
        return stop;
    }

    recording_host host;
    std::map<std::string, double> answers;
};

// cbinit
// -------------------------------------------------------------------------------------------

TEST_F(Bridge, CbinitMakesARecordWithItsDefaults) {
    cbdata* cb = nullptr;
    cbinit(cb);
    ASSERT_NE(cb, nullptr);
    EXPECT_EQ(cb->nodes_explored, 0);
    EXPECT_EQ(cb->feasible_points, 0);
    EXPECT_EQ(cb->node, -1);
    EXPECT_EQ(cb->parent_node, -1);
    EXPECT_EQ(cb->depth, -1);
    EXPECT_EQ(cb->branching_variable, -1);
    EXPECT_EQ(cb->lower_bound, -1.7976931348623157e308);
    EXPECT_EQ(cb->upper_bound, 1.7976931348623157e308);
    EXPECT_EQ(cb->gap, 1.7976931348623157e308);
    EXPECT_EQ(cb->incumbent_node, -1);
    EXPECT_EQ(cb->cuts, 0);
    EXPECT_EQ(cb->restarts, 0);
    EXPECT_THAT(host.calls, IsEmpty());
    delete cb;
}

TEST_F(Bridge, CbinitDoesNotReleaseAnEarlierRecord) {
    cbdata* cb = nullptr;
    cbinit(cb);
    cbdata* const earlier = cb;
    cbinit(cb);
    EXPECT_NE(cb, earlier);
    EXPECT_EQ(live_objects(), 2);
    delete cb;
    delete earlier;
}

TEST_F(Bridge, CbinitLeavesANullHandleWithoutMemory) {
    cbdata here;
    cbdata* cb = &here;
    refuse_new(1);
    cbinit(cb);
    refuse_new(0);
    EXPECT_EQ(cb, nullptr);
}

TEST_F(Bridge, CbinitForgetsAnInterrupt) {
    see_interrupt();
    begin_solve();
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 0);
}

TEST_F(Bridge, CbinitForgetsAnInterruptWithoutMemoryToo) {
    see_interrupt();
    cbdata* cb = nullptr;
    refuse_new(1);
    cbinit(cb);
    refuse_new(0);
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 0);
}

// The struct
// ---------------------------------------------------------------------------------------

TEST_F(Bridge, QvinitcbarrayMakesAStructWithThePhase) {
    answers = {{"qvcreatestructarray800_", 201}, {"qvcreatestring800_", 202}};
    EXPECT_EQ(qvinitcbarray("cutting  "), 201);
    EXPECT_THAT(calls(),
                ElementsAre(call{"qvcreatestructarray800_", {1, 1, 1, 1, 10}, {"phase     "}},
                            call{"qvcreatestring800_", {}, {"cutting  "}},
                            call{"qvsetfield800_", {201, 1, 202}, {"phase"}}));
}

TEST_F(Bridge, QvinitcbarrayTakesAnEmptyPhase) {
    answers = {{"qvcreatestructarray800_", 201}, {"qvcreatestring800_", 202}};
    EXPECT_EQ(qvinitcbarray(""), 201);
    EXPECT_EQ(calls()[1], (call{"qvcreatestring800_", {}, {""}}));
}

TEST_F(Bridge, QvinitcbarrayPassesFailuresOfTheHostOn) {
    EXPECT_EQ(qvinitcbarray("root"), 0);
    EXPECT_EQ(calls()[2], (call{"qvsetfield800_", {0, 1, 0}, {"phase"}}));
}

TEST_F(Bridge, AScalarGoesIntoANewField) {
    answers = {{"qvaddfield800_", 4}, {"qvcreatedoublescalar800_", 203}};
    addrealscalartoqvstruct(7, "gap ", 0.125);
    EXPECT_THAT(calls(), ElementsAre(call{"qvgetfieldnumber800_", {7}, {"gap "}},
                                     call{"qvaddfield800_", {7}, {"gap "}},
                                     call{"qvcreatedoublescalar800_", {}, {}, {0.125}},
                                     call{"qvsetfieldbynumber800_", {7, 1, 4, 203}}));
}

TEST_F(Bridge, AScalarGoesIntoAFieldThatIsThere) {
    answers = {{"qvgetfieldnumber800_", 3}, {"qvcreatedoublescalar800_", 203}};
    addrealscalartoqvstruct(7, "gap", -0.0);
    EXPECT_THAT(calls(), ElementsAre(call{"qvgetfieldnumber800_", {7}, {"gap"}},
                                     call{"qvcreatedoublescalar800_", {}, {}, {-0.0}},
                                     call{"qvsetfieldbynumber800_", {7, 1, 3, 203}}));
}

TEST_F(Bridge, AColumnGoesIntoANewField) {
    answers = {{"qvaddfield800_", 4}, {"qvcreatedoublematrix800_", 204}};
    const double values[] = {1.5, -2.5, 3.5};
    addrealvectoqvstruct(7, "x", values, 2);
    EXPECT_THAT(calls(),
                ElementsAre(call{"qvgetfieldnumber800_", {7}, {"x"}},
                            call{"qvaddfield800_", {7}, {"x"}},
                            call{"qvcreatedoublematrix800_", {2, 1, 0}}, call{"qvgetpr800_", {204}},
                            call{"qvcopyreal8toptr800_", {2}, {}, {1.5, -2.5}},
                            call{"qvsetfieldbynumber800_", {7, 1, 4, 204}}));
}

TEST_F(Bridge, AColumnGoesIntoAFieldThatIsThere) {
    answers = {{"qvgetfieldnumber800_", 3}, {"qvcreatedoublematrix800_", 204}};
    const double value = 8.0;
    addrealvectoqvstruct(7, "x", &value, 1);
    EXPECT_THAT(calls(),
                ElementsAre(call{"qvgetfieldnumber800_", {7}, {"x"}},
                            call{"qvcreatedoublematrix800_", {1, 1, 0}}, call{"qvgetpr800_", {204}},
                            call{"qvcopyreal8toptr800_", {1}, {}, {8.0}},
                            call{"qvsetfieldbynumber800_", {7, 1, 3, 204}}));
}

TEST_F(Bridge, AnEmptyColumnIsMadeAllTheSame) {
    answers = {{"qvgetfieldnumber800_", 3}, {"qvcreatedoublematrix800_", 204}};
    addrealvectoqvstruct(7, "x", nullptr, 0);
    EXPECT_THAT(calls(), ElementsAre(call{"qvgetfieldnumber800_", {7}, {"x"}},
                                     call{"qvcreatedoublematrix800_", {0, 1, 0}},
                                     call{"qvgetpr800_", {204}}, call{"qvcopyreal8toptr800_", {0}},
                                     call{"qvsetfieldbynumber800_", {7, 1, 3, 204}}));
}

// The output function
// ------------------------------------------------------------------------------

TEST_F(Bridge, TheOutputFunctionIsCalledWithTheStruct) {
    answers = {{"qvgetpr800_", 1.0}};
    flag stop = -1;
    qvcalloutputfcn(7, stop, running, no_poll);
    EXPECT_EQ(stop, 1);
    EXPECT_THAT(calls(), ElementsAre(call{"qvxcallquarn800_", {1, 1, 7}, {"tarnCallback"}},
                                     call{"qvgetpr800_", {101}}, call{"qvcopyptrtoreal8800_", {1}},
                                     call{"qvdestroyarray800_", {101}}));
}

TEST_F(Bridge, StopMayBeTheStructItself) {
    answers = {{"qvgetpr800_", 1.0}};
    std::int64_t word = 7;
    qvcalloutputfcn(word, word, running, no_poll);
    EXPECT_EQ(word, 1);
    EXPECT_EQ(calls()[0], (call{"qvxcallquarn800_", {1, 1, 7}, {"tarnCallback"}}));
}

TEST_F(Bridge, ANumberOfRowsGoesToTheHostAsItIs) {
    for (const std::int64_t n : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        addrealvectoqvstruct(7, "x", nullptr, n);
        EXPECT_EQ(calls()[2], (call{"qvcreatedoublematrix800_", {n, 1, 0}})) << n;
    }
}

TEST_F(Bridge, AStatusOfTheCallIsIgnored) {
    answers = {{"qvxcallquarn800_", 5.0}, {"qvgetpr800_", 1.0}};
    flag stop = -1;
    qvcalloutputfcn(7, stop, running, no_poll);
    EXPECT_EQ(stop, 1);
}

TEST_F(Bridge, OneAfterTruncationStops) {
    for (const double yes : {1.0, 1.5, 1.9, 1.9999999999999998}) {
        EXPECT_EQ(stop_for(yes), 1) << yes;
    }
    for (const double no : {0.0, -0.0, 0.5, 0.999, 0.9999999999999999, 2.0, -1.0, -1.5, 3.0}) {
        EXPECT_EQ(stop_for(no), 0) << no;
    }
}

TEST_F(Bridge, EveryRealIsAnAnswer) {
    for (const double no : {nan, -nan, inf, -inf, 5e-324, 1e300, -1e300, 2147483647.0, 2147483648.0,
                            -2147483648.0, 4294967297.0, 18446744073709551617.0, -4294967295.0}) {
        EXPECT_EQ(stop_for(no), 0) << no;
    }
}

TEST_F(Bridge, TheOutputFunctionIsNotCalledOnceItHasStopped) {
    flag stop = -1;
    qvcalloutputfcn(7, stop, stopped, polling);
    EXPECT_EQ(stop, 0);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, TheOutputFunctionIsNotCalledAfterAnInterrupt) {
    see_interrupt();
    flag stop = -1;
    qvcalloutputfcn(7, stop, running, polling);
    EXPECT_EQ(stop, 0);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, TheOutputFunctionIsNotCalledWhenThePollSeesAnInterrupt) {
    host.interrupts = {true};
    flag stop = -1;
    qvcalloutputfcn(7, stop, running, polling);
    EXPECT_EQ(stop, 0);
    EXPECT_THAT(calls(), ElementsAre(poll));
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 1);
}

TEST_F(Bridge, TheOutputFunctionIsCalledWhenThePollSeesNone) {
    answers = {{"qvgetpr800_", 1.0}};
    flag stop = -1;
    qvcalloutputfcn(7, stop, running, polling);
    EXPECT_EQ(stop, 1);
    const std::vector<call> all = calls();
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(all[0], poll);
    EXPECT_EQ(all[1].operation, "qvxcallquarn800_");
}

TEST_F(Bridge, SwitchesOtherThanOneNeverPoll) {
    for (const std::int32_t other : {0, 2, -1, 257}) {
        flag stop = -1;
        qvcalloutputfcn(7, stop, running, other);
        cbprintdisplay(running, other, 2, "line");
        EXPECT_EQ(cbhasinterrupt(running, other), 0);
        for (const call& each : calls()) {
            EXPECT_NE(each, poll) << other;
        }
    }
}

// Lines
// --------------------------------------------------------------------------------------------

TEST_F(Bridge, ALineIsPrintedWithALineFeedAndFlushed) {
    cbprintdisplay(running, no_poll, 2, "  3   0.25  ");
    EXPECT_THAT(calls(), ElementsAre(printf_of("  3   0.25  \n"), flush));
}

TEST_F(Bridge, EveryDisplayButZeroPrints) {
    for (const std::int32_t display : {1, 2, -1, 256}) {
        cbprintdisplay(running, no_poll, display, "x");
        EXPECT_THAT(calls(), ElementsAre(printf_of("x\n"), flush)) << display;
    }
}

TEST_F(Bridge, AnEmptyLineIsALineFeed) {
    cbprintdisplay(running, no_poll, 2, "");
    EXPECT_THAT(calls(), ElementsAre(printf_of("\n"), flush));
}

TEST_F(Bridge, WithDisplayOffThereIsNoPollEither) {
    host.interrupts = {true};
    cbprintdisplay(running, polling, 0, "x");
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 0);
}

TEST_F(Bridge, NothingIsPrintedAfterAnInterrupt) {
    see_interrupt();
    cbprintdisplay(running, polling, 2, "x");
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, NothingIsPrintedOnceTheOutputFunctionHasStopped) {
    cbprintdisplay(stopped, polling, 2, "x");
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, NothingIsPrintedWhenThePollSeesAnInterrupt) {
    host.interrupts = {true};
    cbprintdisplay(running, polling, 2, "x");
    EXPECT_THAT(calls(), ElementsAre(poll));
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 1);
}

TEST_F(Bridge, ALineIsPrintedWhenThePollSeesNone) {
    cbprintdisplay(running, polling, 2, "x");
    EXPECT_THAT(calls(), ElementsAre(poll, printf_of("x\n"), flush));
}

TEST_F(Bridge, LinesOfAnyLengthArePrintedInOnePiece) {
    for (const std::size_t length : std::vector<std::size_t>{510, 511, 512, 513, 1024, 100'000}) {
        const std::string line(length, 'x');
        cbprintdisplay(running, no_poll, 2, line);
        EXPECT_THAT(calls(), ElementsAre(printf_of(line + "\n"), flush)) << length;
        EXPECT_EQ(live_objects(), 0);
    }
}

TEST_F(Bridge, ALongLineIsPrintedInPiecesWhenThereIsNoMemory) {
    for (const std::size_t length : std::vector<std::size_t>{512, 513, 1023, 1024, 5000}) {
        std::string line(length, ' ');
        for (std::size_t i = 0; i < length; ++i) {
            line[i] = static_cast<char>('a' + i % 26);
        }
        refuse_new(1);
        cbprintdisplay(running, no_poll, 2, line);
        refuse_new(0);
        const std::vector<call> all = calls();
        std::string printed;
        for (const call& each : all) {
            if (&each != &all.back()) {
                ASSERT_EQ(each.operation, "qvxprintf800_");
                EXPECT_LE(each.texts.at(0).size(), 512u);
                printed += each.texts.at(0);
            }
        }
        EXPECT_EQ(printed, line + "\n") << length;
        EXPECT_EQ(all.back(), flush);
        EXPECT_EQ(all.size(), length / 512 + 2);
    }
}

TEST_F(Bridge, AShortLineNeedsNoMemory) {
    const std::string line(511, 'x');
    refuse_new(1);
    cbprintdisplay(running, no_poll, 2, line);
    refuse_new(0);
    EXPECT_THAT(calls(), ElementsAre(printf_of(line + "\n"), flush));
}

// Interrupts
// --------------------------------------------------------------------------------------

TEST_F(Bridge, StatusThreeIsAnInterruptThatIsNotRemembered) {
    EXPECT_EQ(cbhasinterrupt(stopped, polling), 1);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(cbhasinterrupt(running, polling), 0);
    EXPECT_THAT(calls(), ElementsAre(poll));
}

TEST_F(Bridge, APollThatSeesNoneAnswersSo) {
    EXPECT_EQ(cbhasinterrupt(running, polling), 0);
    EXPECT_EQ(cbhasinterrupt(running, polling), 0);
    EXPECT_THAT(calls(), ElementsAre(poll, poll));
}

TEST_F(Bridge, AnInterruptIsRememberedUntilTheNextSolve) {
    see_interrupt();
    host.interrupts = {false, false};
    for (const std::int32_t ctrlc : {polling, no_poll}) {
        EXPECT_EQ(cbhasinterrupt(running, ctrlc), 1);
        EXPECT_EQ(cbhasinterrupt(stopped, ctrlc), 1);
    }
    EXPECT_THAT(calls(), IsEmpty());
    begin_solve();
    EXPECT_EQ(cbhasinterrupt(running, polling), 0);
    EXPECT_THAT(calls(), ElementsAre(poll));
}

} // namespace
