// Complete solves on the stand-in host: structs, output function, display and interrupts.
#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zktarn/callbacks/callbacks_util.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn::callbacks_util;
using testing::ElementsAre;
using zktarn::flag;
namespace standin = zktarn::standin;
using standin::operation;

constexpr std::int32_t poll_on = 1;
constexpr std::int32_t every_line = 2;

/// A solver that only reports, for at most five rounds.
struct solver {
    std::int32_t status = 0;
    int rounds = 0;

    void run() {
        cbdata* cb = nullptr;
        cbinit(cb);
        status = 0;
        for (rounds = 0; rounds < 5 && cbhasinterrupt(status, poll_on) == 0; ++rounds) {
            report(rounds);
            cbprintdisplay(status, poll_on, every_line, "round " + std::to_string(rounds + 1));
        }
        cbprintdisplay(status, poll_on, every_line, "done");
        delete cb;
    }

    void report(int round) {
        const array_handle info = qvinitcbarray(round == 0 ? "root" : "tree");
        addrealscalartoqvstruct(info, "round", round);
        addrealscalartoqvstruct(info, "round", round + 1);
        const double x[] = {0.5, 1.0 * round};
        addrealvectoqvstruct(info, "x", x, 2);
        flag stop = 0;
        qvcalloutputfcn(info, stop, status, poll_on);
        if (stop != 0) {
            status = code::stopped_by_output_function;
        }
        zktarn::host::qvdestroyarray800_(info);
    }
};

class Solve : public testing::Test {
protected:
    void SetUp() override {
        standin::reset();
        standin::set_console(standin::console::capture);
        standin::set_function("tarnCallback", [this](const standin::array_value& input) {
            inputs.push_back(input);
            return static_cast<int>(inputs.size()) == stop_at ? result : standin::reply(0.0);
        });
    }
    void TearDown() override {
        EXPECT_THAT(standin::live_objects(), testing::IsEmpty());
        standin::reset();
    }

    solver solve;
    std::vector<standin::array_value> inputs;
    int stop_at = 0;
    standin::reply result = 1.0;
};

TEST_F(Solve, ReportsToTheOutputFunction) {
    solve.run();
    ASSERT_EQ(inputs.size(), 5u);
    const standin::array_value& last = inputs.back();
    EXPECT_THAT(last.field_names(), ElementsAre("phase", "round", "x"));
    EXPECT_EQ(last.field("phase").text(), "tree");
    EXPECT_EQ(last.field("round").scalar(), 5.0);
    EXPECT_THAT(last.field("x").reals(), ElementsAre(0.5, 4.0));
    EXPECT_EQ(last.field("x").rows, 2);
    EXPECT_EQ(last.field("x").columns, 1);
    EXPECT_EQ(standin::console_text(), "round 1\nround 2\nround 3\nround 4\nround 5\ndone\n");
    EXPECT_EQ(standin::flushed_console_text(), standin::console_text());
}

TEST_F(Solve, IsStoppedByTheOutputFunction) {
    stop_at = 2;
    result = 1.5;
    solve.run();
    EXPECT_EQ(cbstopfromoutputfcn(solve.status), 1);
    EXPECT_EQ(solve.rounds, 2);
    EXPECT_EQ(standin::console_text(), "round 1\n");
    EXPECT_EQ(inputs.size(), 2u);
}

TEST_F(Solve, IsStoppedByAColumnThatBeginsWithOne) {
    stop_at = 1;
    result = std::vector<double>{1.0, 0.0};
    solve.run();
    EXPECT_EQ(solve.rounds, 1);
}

TEST_F(Solve, AnInterruptEndsOneSolveAndTheNextOneStartsAgain) {
    standin::raise_interrupt();
    solve.run();
    EXPECT_EQ(solve.rounds, 0);
    EXPECT_EQ(standin::console_text(), "");
    EXPECT_EQ(cbhasinterrupt(0, 0), 1);
    solve.run();
    EXPECT_EQ(solve.rounds, 5);
    EXPECT_EQ(cbhasinterrupt(0, 0), 0);
}

TEST_F(Solve, IsInterruptedAtEveryPoll) {
    solve.run();
    const std::int64_t polls = standin::calls(operation::utIsInterruptPending);
    EXPECT_EQ(polls, 5 * 3 + 1);
    for (std::int64_t k = 1; k <= polls; ++k) {
        standin::interrupt_at_poll(k);
        const std::int64_t before = standin::calls(operation::utIsInterruptPending);
        solve.run();
        EXPECT_EQ(standin::calls(operation::utIsInterruptPending) - before, k);
        EXPECT_EQ(solve.rounds, k == polls ? 5 : static_cast<int>((k + 1) / 3));
    }
}

/// Solves three times, the second time under Ctrl-C, and exits with the three numbers of rounds as
/// decimal digits, less 400.
[[noreturn]] void solve_under_ctrl_c() {
    // A shell starts programs in the background with SIGINT ignored, and the host respects that.
    std::signal(SIGINT, SIG_DFL);
    solver child;
    child.run();
    int rounds = child.rounds; // 5; its first poll installs the handler of SIGINT
    std::raise(SIGINT);        // returns after the handler
    child.run();
    rounds = 10 * rounds + child.rounds; // 0
    child.run();
    std::_Exit(10 * rounds + child.rounds - 400); // 505 - 400
}

TEST_F(Solve, IsInterruptedByCtrlC) {
    const pid_t child = fork();
    if (child == 0) {
        solve_under_ctrl_c();
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 105);
}

// For every failure that a host operation can report: the solve continues and releases everything.
TEST_F(Solve, SurvivesEveryFailureOfTheHost) {
    std::int64_t failures = 0;
    for (const operation what :
         {operation::qvcreatestructarray800_, operation::qvcreatestring800_,
          operation::qvcreatedoublescalar800_, operation::qvcreatedoublematrix800_,
          operation::qvaddfield800_, operation::qvgetpr800_, operation::qvxcallquarn800_,
          operation::qvxprintf800_}) {
        standin::reset();
        standin::set_console(standin::console::capture);
        standin::set_function("tarnCallback", [](const standin::array_value&) { return 0.0; });
        solve.run();
        const std::int64_t calls = standin::calls(what);
        ASSERT_GT(calls, 0) << standin::name(what);
        for (std::int64_t k = 1; k <= calls; ++k, ++failures) {
            standin::fail_call(what, k);
            solve.run();
            EXPECT_EQ(solve.rounds, 5) << standin::name(what) << " " << k;
            EXPECT_THAT(standin::live_objects(), testing::IsEmpty())
                << standin::name(what) << " " << k << ":\n"
                << standin::report();
        }
    }
    EXPECT_GT(failures, 50);
}

TEST_F(Solve, AnEmptyResultIsPassedToTheHost) {
    std::vector<std::string> sentences;
    standin::set_fault_handler(
        [&](const standin::fault& found) { sentences.push_back(found.sentence); });
    stop_at = 1;
    result = std::vector<double>{};
    solve.run();
    EXPECT_EQ(solve.rounds, 5);
    ASSERT_EQ(sentences.size(), 1u);
    EXPECT_THAT(sentences[0], testing::HasSubstr("has 0 numbers from that address on, not 1"));
}

} // namespace
