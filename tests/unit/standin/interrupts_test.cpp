#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libut.hpp"

namespace zktarn::standin {

namespace {

using host::utIsInterruptPending;

volatile std::sig_atomic_t reached_previous = 0;

void on_previous(int) {
    reached_previous = reached_previous + 1;
}

/// Installs a counting SIGINT handler before each test, as a program may, and restores the original
/// one afterwards.
class Interrupts : public StandinTest {
protected:
    void SetUp() override {
        StandinTest::SetUp();
        reached_previous = 0;
        struct sigaction counting {};
        counting.sa_handler = on_previous;
        sigaction(SIGINT, &counting, &before_);
    }

    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        StandinTest::TearDown();
        sigaction(SIGINT, &before_, nullptr);
    }

    /// The results of `n` polls: '1' for each that reports an interrupt, '0' for each that does
    /// not.
    static std::string polls(int n) {
        std::string results;
        for (int i = 0; i < n; ++i) {
            results += utIsInterruptPending() ? '1' : '0';
        }
        return results;
    }

private:
    struct sigaction before_ {};
};

TEST_F(Interrupts, NoneIsInitiallyPending) {
    EXPECT_EQ(polls(3), "000");
}

TEST_F(Interrupts, ARaisedInterruptIsReportedByOnePoll) {
    raise_interrupt();
    EXPECT_EQ(polls(3), "100");
    raise_interrupt();
    raise_interrupt();
    EXPECT_EQ(polls(3), "100");
}

TEST_F(Interrupts, APlannedInterruptIsReportedByThatPoll) {
    interrupt_at_poll(1);
    EXPECT_EQ(polls(3), "100");
    interrupt_at_poll(3);
    EXPECT_EQ(polls(5), "00100");
}

TEST_F(Interrupts, APlanReplacesAnEarlierPlan) {
    interrupt_at_poll(1);
    interrupt_at_poll(2);
    EXPECT_EQ(polls(4), "0100");
    interrupt_at_poll(1);
    interrupt_at_poll(0);
    EXPECT_EQ(polls(3), "000");
    interrupt_at_poll(1);
    interrupt_at_poll(-1);
    EXPECT_EQ(polls(3), "000");
}

TEST_F(Interrupts, ARaisedInterruptDoesNotChangeThePlan) {
    interrupt_at_poll(2);
    raise_interrupt();
    EXPECT_EQ(polls(4), "1100");
}

TEST_F(Interrupts, OnePollReportsAPlannedAndARaisedInterruptTogether) {
    interrupt_at_poll(1);
    raise_interrupt();
    EXPECT_EQ(polls(3), "100");
}

TEST_F(Interrupts, ResetClearsRaisedAndPlannedInterrupts) {
    raise_interrupt();
    interrupt_at_poll(1);
    reset();
    EXPECT_EQ(polls(2), "00");
}

TEST_F(Interrupts, TheFirstPollTurnsListeningOn) {
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    EXPECT_EQ(polls(1), "0");
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    EXPECT_EQ(polls(2), "10");
    EXPECT_TRUE(listen_for_sigint(true));
}

TEST_F(Interrupts, TheFirstPollKeepsAnExplicitSetting) {
    EXPECT_FALSE(listen_for_sigint(false));
    EXPECT_EQ(polls(1), "0");
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    EXPECT_EQ(polls(1), "0");
    EXPECT_FALSE(listen_for_sigint(false));
}

TEST_F(Interrupts, ListeningCanBeTurnedOnBeforeTheFirstPoll) {
    EXPECT_FALSE(listen_for_sigint(true));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 0);
    EXPECT_EQ(polls(2), "10");
}

TEST_F(Interrupts, TurningListeningOffRestoresThePreviousHandler) {
    listen_for_sigint(true);
    EXPECT_TRUE(listen_for_sigint(false));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    EXPECT_EQ(polls(1), "0");
}

TEST_F(Interrupts, TurningListeningOnTwiceKeepsThePreviousHandler) {
    listen_for_sigint(true);
    EXPECT_TRUE(listen_for_sigint(true));
    listen_for_sigint(false);
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
}

volatile std::sig_atomic_t reached_later = 0;

void on_later(int) {
    reached_later = reached_later + 1;
}

void on_later_with_details(int, siginfo_t*, void*) {
    reached_later = reached_later + 1;
}

TEST_F(Interrupts, TurningListeningOffKeepsAHandlerThatTheProgramInstalledLater) {
    struct sigaction later = {};
    later.sa_handler = on_later;
    struct sigaction detailed = {};
    detailed.sa_sigaction = on_later_with_details;
    detailed.sa_flags = SA_SIGINFO;
    for (const struct sigaction& each : {later, detailed}) {
        reached_later = 0;
        signal(SIGINT, on_previous);
        listen_for_sigint(true);
        sigaction(SIGINT, &each, nullptr);
        EXPECT_TRUE(listen_for_sigint(false));
        raise(SIGINT);
        EXPECT_EQ(reached_later, 1);
        EXPECT_EQ(reached_previous, 0);
    }
}

TEST_F(Interrupts, TheFirstPollKeepsAnIgnoredSignalIgnored) {
    signal(SIGINT, SIG_IGN);
    EXPECT_EQ(polls(1), "0");
    raise(SIGINT);
    EXPECT_EQ(polls(1), "0");
    // Only an explicit call turns listening on.
    EXPECT_FALSE(listen_for_sigint(true));
    raise(SIGINT);
    EXPECT_EQ(polls(1), "1");
    listen_for_sigint(false);
    raise(SIGINT);
    EXPECT_EQ(polls(1), "0");
}

TEST_F(Interrupts, ResetRestoresThePreviousHandlerAndListensAgainAtThePoll) {
    polls(1);
    reset();
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    polls(1);
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    EXPECT_EQ(polls(1), "1");
}

TEST_F(Interrupts, ASecondSignalGoesToThePreviousHandlerAndEndsListening) {
    listen_for_sigint(true);
    raise(SIGINT);
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    // The first signal is still pending.
    EXPECT_EQ(polls(2), "10");
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 2);
    EXPECT_EQ(polls(1), "0");
    EXPECT_FALSE(listen_for_sigint(true));
}

TEST_F(Interrupts, ListeningAgainStartsANewCountOfSignals) {
    listen_for_sigint(true);
    raise(SIGINT);
    listen_for_sigint(false);
    listen_for_sigint(true);
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 0);
}

/// Tests that wait for the time limit of two seconds. `ctest -L unit` leaves them out.
using WaitingInterrupts = Interrupts;

TEST_F(WaitingInterrupts, ASecondSignalWithinTwoSecondsGoesToThePreviousHandler) {
    listen_for_sigint(true);
    raise(SIGINT);
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
}

TEST_F(WaitingInterrupts, ASignalAfterTwoSecondsIsReportedLikeAFirstOne) {
    listen_for_sigint(true);
    raise(SIGINT);
    EXPECT_EQ(polls(2), "10");
    std::this_thread::sleep_for(std::chrono::milliseconds(2050));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 0);
    EXPECT_EQ(polls(2), "10");
}

/// A solver that polls until a signal ends it. It writes 'r' to the pipe when it is ready, and 'i'
/// whenever a poll reports an interrupt.
[[noreturn]] void solve(int pipe_end) {
    signal(SIGINT, SIG_DFL);
    // Ends this process if the test fails and sends no signal.
    alarm(30);
    char word = utIsInterruptPending() ? 'x' : 'r';
    while (write(pipe_end, &word, 1) == 1) {
        while (!utIsInterruptPending()) {
            usleep(1000);
        }
        word = 'i';
    }
    _exit(1);
}

/// The next character of the pipe; 0 when the writing process has ended.
char next_word(int pipe_end) {
    char word = 0;
    return read(pipe_end, &word, 1) == 1 ? word : '\0';
}

TEST_F(Interrupts, CtrlCIsReportedByAPollAndEndsTheProcessTheSecondTime) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    const pid_t solver = fork();
    ASSERT_GE(solver, 0);
    if (solver == 0) {
        close(ends[0]);
        solve(ends[1]);
    }
    close(ends[1]);
    EXPECT_EQ(next_word(ends[0]), 'r');
    EXPECT_EQ(kill(solver, SIGINT), 0);
    EXPECT_EQ(next_word(ends[0]), 'i');
    EXPECT_EQ(kill(solver, SIGINT), 0);
    EXPECT_EQ(next_word(ends[0]), '\0');
    close(ends[0]);
    int status = 0;
    ASSERT_EQ(waitpid(solver, &status, 0), solver);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGINT);
}

} // namespace

} // namespace zktarn::standin
