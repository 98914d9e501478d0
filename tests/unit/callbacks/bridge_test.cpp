#include "zktarn/callbacks/callbacks_util.hpp"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/host_log.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn_standin/records.hpp"

namespace {

using namespace zktarn::callbacks_util;
using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::flag;
using zktarn::standin::answer;
using zktarn::standin::fail_record;
using zktarn::standin::live_records;
using zktarn::standin::operation;
using zktarn::testing::host_call;
using zktarn::testing::host_log;
namespace standin = zktarn::standin;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

constexpr std::int32_t running = 0;
constexpr std::int32_t stopped = 3;
constexpr std::int32_t no_poll = 0;
constexpr std::int32_t polling = 1;

const host_call poll = {operation::utIsInterruptPending};
const host_call flush = {operation::ioFlushOptim};

host_call printf_of(const std::string& text) {
    return {operation::qvxprintf800_, {}, {text}};
}

class Bridge : public testing::Test {
protected:
    void SetUp() override {
        standin::set_console(standin::console::capture);
        begin_solve();
    }
    void TearDown() override {
        begin_solve();
        standin::set_console(standin::console::show);
        EXPECT_EQ(live_records(), 0);
        EXPECT_THAT(standin::live_objects(), IsEmpty());
    }

    static void begin_solve() {
        cbdata* cb = nullptr;
        cbinit(cb);
        delete cb;
    }

    /// The calls since the previous use, without addresses; clears the log.
    static std::vector<host_call> calls() {
        std::vector<host_call> all = standin::logged_calls();
        standin::clear_call_log();
        for (host_call& each : all) {
            each.addresses.clear();
        }
        return all;
    }

    /// Raises an interrupt and polls it, which sets the interrupt flag.
    static void set_interrupt_flag() {
        standin::raise_interrupt();
        EXPECT_EQ(cbhasinterrupt(running, polling), 1);
        EXPECT_THAT(calls(), ElementsAre(poll));
    }

    /// Whether an output function that returns `reply` stops the solver.
    static flag stop_for(double reply) {
        standin::set_function("tarnCallback", [=](const standin::array_value&) { return reply; });
        const array_handle structure = qvinitcbarray("root");
        flag stop = -1;
        qvcalloutputfcn(structure, stop, running, no_poll);
        zktarn::host::qvdestroyarray800_(structure);
        return stop;
    }

    host_log host;
};

/// A struct that its destructor destroys. Its creation is not in the call log.
class sample_struct {
public:
    explicit sample_struct(std::string_view phase = "root") : handle(qvinitcbarray(phase)) {
        standin::clear_call_log();
    }
    ~sample_struct() { zktarn::host::qvdestroyarray800_(handle); }
    sample_struct(const sample_struct&) = delete;
    sample_struct& operator=(const sample_struct&) = delete;

    const array_handle handle;
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
    EXPECT_THAT(host.calls(), IsEmpty());
    delete cb;
}

TEST_F(Bridge, CbinitDoesNotReleaseAnEarlierRecord) {
    cbdata* cb = nullptr;
    cbinit(cb);
    cbdata* const earlier = cb;
    cbinit(cb);
    EXPECT_NE(cb, earlier);
    EXPECT_EQ(live_records(), 2);
    delete cb;
    delete earlier;
}

TEST_F(Bridge, CbinitWithoutMemoryReturnsANullHandle) {
    cbdata here;
    cbdata* cb = &here;
    fail_record(1);
    cbinit(cb);
    fail_record(0);
    EXPECT_EQ(cb, nullptr);
}

TEST_F(Bridge, CbinitClearsTheInterruptFlag) {
    set_interrupt_flag();
    begin_solve();
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 0);
}

TEST_F(Bridge, CbinitWithoutMemoryClearsTheInterruptFlag) {
    set_interrupt_flag();
    cbdata* cb = nullptr;
    fail_record(1);
    cbinit(cb);
    fail_record(0);
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 0);
}

// The struct
// ---------------------------------------------------------------------------------------

TEST_F(Bridge, QvinitcbarrayMakesAStructWithThePhase) {
    for (const std::string phase : {"cutting  ", ""}) {
        const array_handle structure = qvinitcbarray(phase);
        const std::vector<host_call> made = calls();
        ASSERT_EQ(made.size(), 3U);
        const array_handle text = made[1].result.number;
        EXPECT_EQ(made[0],
                  (host_call{operation::qvcreatestructarray800_, {1, 1, 1, 10}, {"phase     "}}));
        EXPECT_EQ(made[0].result.number, structure);
        EXPECT_EQ(made[1], (host_call{operation::qvcreatestring800_, {}, {phase}}));
        EXPECT_EQ(made[2], (host_call{operation::qvsetfield800_, {structure, 1, text}, {"phase"}}));
        EXPECT_EQ(standin::inspect(structure).field("phase").text(), phase);
        zktarn::host::qvdestroyarray800_(structure);
        standin::clear_call_log();
    }
}

TEST_F(Bridge, QvinitcbarrayReturnsTheFailureOfTheHost) {
    standin::fail_call(operation::qvcreatestructarray800_, 1);
    standin::fail_call(operation::qvcreatestring800_, 1);
    EXPECT_EQ(qvinitcbarray("root"), 0);
    EXPECT_EQ(calls()[2], (host_call{operation::qvsetfield800_, {0, 1, 0}, {"phase"}}));
}

TEST_F(Bridge, AddsAScalarInANewField) {
    const sample_struct info;
    addrealscalartoqvstruct(info.handle, "gap ", 0.125);
    const std::vector<host_call> made = calls();
    ASSERT_EQ(made.size(), 4U);
    EXPECT_EQ(made[0], (host_call{operation::qvgetfieldnumber800_, {info.handle}, {"gap "}}));
    EXPECT_EQ(made[1], (host_call{operation::qvaddfield800_, {info.handle}, {"gap "}}));
    EXPECT_EQ(made[2], (host_call{operation::qvcreatedoublescalar800_, {}, {}, {0.125}}));
    EXPECT_EQ(made[3], (host_call{operation::qvsetfieldbynumber800_,
                                  {info.handle, 1, made[1].result.number, made[2].result.number}}));
    EXPECT_EQ(standin::inspect(info.handle).field("gap").scalar(), 0.125);
}

TEST_F(Bridge, ReplacesAnExistingFieldByAScalar) {
    const sample_struct info;
    addrealscalartoqvstruct(info.handle, "gap", 1.0);
    calls();
    addrealscalartoqvstruct(info.handle, "gap", -0.0);
    const std::vector<host_call> made = calls();
    ASSERT_EQ(made.size(), 3U);
    EXPECT_EQ(made[0], (host_call{operation::qvgetfieldnumber800_, {info.handle}, {"gap"}}));
    EXPECT_EQ(made[1], (host_call{operation::qvcreatedoublescalar800_, {}, {}, {-0.0}}));
    EXPECT_TRUE(std::signbit(made[1].reals[0]));
    EXPECT_EQ(made[2], (host_call{operation::qvsetfieldbynumber800_,
                                  {info.handle, 1, 2, made[1].result.number}}));
}

TEST_F(Bridge, AddsAColumnInANewField) {
    const sample_struct info;
    const double values[] = {1.5, -2.5, 3.5};
    addrealvectoqvstruct(info.handle, "x", values, 2);
    const std::vector<host_call> made = calls();
    ASSERT_EQ(made.size(), 6U);
    const array_handle column = made[2].result.number;
    EXPECT_THAT(made, ElementsAre(host_call{operation::qvgetfieldnumber800_, {info.handle}, {"x"}},
                                  host_call{operation::qvaddfield800_, {info.handle}, {"x"}},
                                  host_call{operation::qvcreatedoublematrix800_, {2, 1, 0}},
                                  host_call{operation::qvgetpr800_, {column}},
                                  host_call{operation::qvcopyreal8toptr800_, {2}, {}, {1.5, -2.5}},
                                  host_call{operation::qvsetfieldbynumber800_,
                                            {info.handle, 1, made[1].result.number, column}}));
    EXPECT_THAT(standin::inspect(info.handle).field("x").reals(), ElementsAre(1.5, -2.5));
}

TEST_F(Bridge, ReplacesAnExistingFieldByAColumn) {
    const sample_struct info;
    const double value = 8.0;
    addrealvectoqvstruct(info.handle, "x", nullptr, 0);
    calls();
    addrealvectoqvstruct(info.handle, "x", &value, 1);
    const std::vector<host_call> made = calls();
    ASSERT_EQ(made.size(), 5U);
    const array_handle column = made[1].result.number;
    EXPECT_THAT(made, ElementsAre(host_call{operation::qvgetfieldnumber800_, {info.handle}, {"x"}},
                                  host_call{operation::qvcreatedoublematrix800_, {1, 1, 0}},
                                  host_call{operation::qvgetpr800_, {column}},
                                  host_call{operation::qvcopyreal8toptr800_, {1}, {}, {8.0}},
                                  host_call{operation::qvsetfieldbynumber800_,
                                            {info.handle, 1, 2, column}}));
}

TEST_F(Bridge, AddsAnEmptyColumn) {
    const sample_struct info;
    addrealvectoqvstruct(info.handle, "x", nullptr, 0);
    const std::vector<host_call> made = calls();
    ASSERT_EQ(made.size(), 6U);
    const array_handle column = made[2].result.number;
    EXPECT_EQ(made[2], (host_call{operation::qvcreatedoublematrix800_, {0, 1, 0}}));
    EXPECT_EQ(made[3], (host_call{operation::qvgetpr800_, {column}}));
    EXPECT_EQ(made[4], (host_call{operation::qvcopyreal8toptr800_, {0}}));
    EXPECT_EQ(standin::inspect(info.handle).field("x").rows, 0);
}

// The output function
// ------------------------------------------------------------------------------

TEST_F(Bridge, TheOutputFunctionIsCalledWithTheStruct) {
    standin::set_function("tarnCallback", [](const standin::array_value&) { return 1.0; });
    const sample_struct info;
    flag stop = -1;
    qvcalloutputfcn(info.handle, stop, running, no_poll);
    EXPECT_EQ(stop, 1);
    const std::vector<host_call> made = calls();
    ASSERT_EQ(made.size(), 4U);
    ASSERT_EQ(made[0].result.handles.size(), 1U);
    const array_handle output = made[0].result.handles[0];
    EXPECT_THAT(
        made,
        ElementsAre(host_call{operation::qvxcallquarn800_, {1, 1, info.handle}, {"tarnCallback"}},
                    host_call{operation::qvgetpr800_, {output}},
                    host_call{operation::qvcopyptrtoreal8800_, {1}},
                    host_call{operation::qvdestroyarray800_, {output}}));
}

TEST_F(Bridge, StopMayAliasTheHandleOfTheStruct) {
    standin::set_function("tarnCallback", [](const standin::array_value&) { return 1.0; });
    const sample_struct info;
    std::int64_t word = info.handle;
    qvcalloutputfcn(word, word, running, no_poll);
    EXPECT_EQ(word, 1);
    EXPECT_EQ(calls()[0],
              (host_call{operation::qvxcallquarn800_, {1, 1, info.handle}, {"tarnCallback"}}));
}

TEST_F(Bridge, PassesTheNumberOfRowsUnchecked) {
    standin::set_fault_handler([](const standin::fault&) {});
    for (const std::int64_t n : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        const sample_struct info;
        addrealvectoqvstruct(info.handle, "x", nullptr, n);
        EXPECT_EQ(calls()[2], (host_call{operation::qvcreatedoublematrix800_, {n, 1, 0}})) << n;
    }
}

TEST_F(Bridge, IgnoresTheStatusOfTheCall) {
    const array_handle one = zktarn::host::qvcreatedoublescalar800_(1.0);
    standin::answer_calls(operation::qvxcallquarn800_,
                          [=](const host_call&) { return answer{.number = 5, .handles = {one}}; });
    const sample_struct info;
    flag stop = -1;
    qvcalloutputfcn(info.handle, stop, running, no_poll);
    EXPECT_EQ(stop, 1);
}

TEST_F(Bridge, TheOutputFunctionStopsByAValueThatTruncatesToOne) {
    for (const double yes : {1.0, 1.5, 1.9, 1.9999999999999998}) {
        EXPECT_EQ(stop_for(yes), 1) << yes;
    }
    for (const double no : {0.0, -0.0, 0.5, 0.999, 0.9999999999999999, 2.0, -1.0, -1.5, 3.0}) {
        EXPECT_EQ(stop_for(no), 0) << no;
    }
}

TEST_F(Bridge, TheFunctionMayReturnAnyReal) {
    for (const double no : {nan, -nan, inf, -inf, 5e-324, 1e300, -1e300, 2147483647.0, 2147483648.0,
                            -2147483648.0, 4294967297.0, 18446744073709551617.0, -4294967295.0}) {
        EXPECT_EQ(stop_for(no), 0) << no;
    }
}

TEST_F(Bridge, TheOutputFunctionIsNotCalledAfterItStoppedTheSolve) {
    flag stop = -1;
    qvcalloutputfcn(0, stop, stopped, polling);
    EXPECT_EQ(stop, 0);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, TheOutputFunctionIsNotCalledAfterAnInterrupt) {
    set_interrupt_flag();
    flag stop = -1;
    qvcalloutputfcn(0, stop, running, polling);
    EXPECT_EQ(stop, 0);
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, TheOutputFunctionIsNotCalledWhenThePollReportsAnInterrupt) {
    standin::raise_interrupt();
    flag stop = -1;
    qvcalloutputfcn(0, stop, running, polling);
    EXPECT_EQ(stop, 0);
    EXPECT_THAT(calls(), ElementsAre(poll));
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 1);
}

TEST_F(Bridge, TheOutputFunctionIsCalledWhenThePollReportsNone) {
    standin::set_function("tarnCallback", [](const standin::array_value&) { return 1.0; });
    const sample_struct info;
    flag stop = -1;
    qvcalloutputfcn(info.handle, stop, running, polling);
    EXPECT_EQ(stop, 1);
    const std::vector<host_call> all = calls();
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(all[0], poll);
    EXPECT_EQ(all[1].what, operation::qvxcallquarn800_);
}

TEST_F(Bridge, SwitchesOtherThanOneNeverPoll) {
    standin::set_function("tarnCallback", [](const standin::array_value&) { return 0.0; });
    const sample_struct info;
    for (const std::int32_t other : {0, 2, -1, 257}) {
        flag stop = -1;
        qvcalloutputfcn(info.handle, stop, running, other);
        cbprintdisplay(running, other, 2, "line");
        EXPECT_EQ(cbhasinterrupt(running, other), 0);
        for (const host_call& each : calls()) {
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

TEST_F(Bridge, DisplayOffDoesNotPoll) {
    standin::raise_interrupt();
    cbprintdisplay(running, polling, 0, "x");
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 0);
}

TEST_F(Bridge, NothingIsPrintedAfterAnInterrupt) {
    set_interrupt_flag();
    cbprintdisplay(running, polling, 2, "x");
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, NothingIsPrintedAfterTheOutputFunctionStoppedTheSolve) {
    cbprintdisplay(stopped, polling, 2, "x");
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Bridge, NothingIsPrintedWhenThePollReportsAnInterrupt) {
    standin::raise_interrupt();
    cbprintdisplay(running, polling, 2, "x");
    EXPECT_THAT(calls(), ElementsAre(poll));
    EXPECT_EQ(cbhasinterrupt(running, no_poll), 1);
}

TEST_F(Bridge, ALineIsPrintedWhenThePollReportsNone) {
    cbprintdisplay(running, polling, 2, "x");
    EXPECT_THAT(calls(), ElementsAre(poll, printf_of("x\n"), flush));
}

TEST_F(Bridge, LinesOfAnyLengthArePrintedInOnePiece) {
    for (const std::size_t length : std::vector<std::size_t>{510, 511, 512, 513, 1024, 100'000}) {
        const std::string line(length, 'x');
        cbprintdisplay(running, no_poll, 2, line);
        EXPECT_THAT(calls(), ElementsAre(printf_of(line + "\n"), flush)) << length;
        EXPECT_EQ(live_records(), 0);
    }
}

TEST_F(Bridge, ALongLineIsPrintedInPiecesWithoutMemory) {
    for (const std::size_t length : std::vector<std::size_t>{512, 513, 1023, 1024, 5000}) {
        std::string line(length, ' ');
        for (std::size_t i = 0; i < length; ++i) {
            line[i] = static_cast<char>('a' + i % 26);
        }
        fail_record(1);
        cbprintdisplay(running, no_poll, 2, line);
        fail_record(0);
        const std::vector<host_call> all = calls();
        std::string printed;
        for (const host_call& each : all) {
            if (&each != &all.back()) {
                ASSERT_EQ(each.what, operation::qvxprintf800_);
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
    fail_record(1);
    cbprintdisplay(running, no_poll, 2, line);
    fail_record(0);
    EXPECT_THAT(calls(), ElementsAre(printf_of(line + "\n"), flush));
}

// Interrupts
// --------------------------------------------------------------------------------------

TEST_F(Bridge, StatusThreeDoesNotSetTheInterruptFlag) {
    EXPECT_EQ(cbhasinterrupt(stopped, polling), 1);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(cbhasinterrupt(running, polling), 0);
    EXPECT_THAT(calls(), ElementsAre(poll));
}

TEST_F(Bridge, APollWithoutAnInterruptReturnsZero) {
    EXPECT_EQ(cbhasinterrupt(running, polling), 0);
    EXPECT_EQ(cbhasinterrupt(running, polling), 0);
    EXPECT_THAT(calls(), ElementsAre(poll, poll));
}

TEST_F(Bridge, TheInterruptFlagStaysSetUntilTheNextSolve) {
    set_interrupt_flag();
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
