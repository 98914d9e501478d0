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

/// Starts with a handler of SIGINT that counts, as a program may have one, and leaves behind the
/// one that was there.
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

    /// The answers of `n` polls, as a text of 1 and 0.
    static std::string polls(int n) {
        std::string answers;
        for (int i = 0; i < n; ++i) {
            answers += utIsInterruptPending() ? '1' : '0';
        }
        return answers;
    }

private:
    struct sigaction before_ {};
};

TEST_F(Interrupts, ThereIsNoneAtTheBeginning) {
    EXPECT_EQ(polls(3), "000");
}

TEST_F(Interrupts, OneIsReportedByOnePoll) {
    raise_interrupt();
    EXPECT_EQ(polls(3), "100");
    raise_interrupt();
    raise_interrupt();
    EXPECT_EQ(polls(3), "100");
}

TEST_F(Interrupts, OneIsPlannedForAPoll) {
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

TEST_F(Interrupts, ARaisedOneLeavesThePlanAsItIs) {
    interrupt_at_poll(2);
    raise_interrupt();
    EXPECT_EQ(polls(4), "1100");
}

TEST_F(Interrupts, APlannedAndARaisedOneAreOneAtTheSamePoll) {
    interrupt_at_poll(1);
    raise_interrupt();
    EXPECT_EQ(polls(3), "100");
}

TEST_F(Interrupts, ResetClearsThem) {
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

TEST_F(Interrupts, TheFirstPollLeavesWhatWasChosenBefore) {
    EXPECT_FALSE(listen_for_sigint(false));
    EXPECT_EQ(polls(1), "0");
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    EXPECT_EQ(polls(1), "0");
    EXPECT_FALSE(listen_for_sigint(false));
}

TEST_F(Interrupts, ListeningNeedsNoPoll) {
    EXPECT_FALSE(listen_for_sigint(true));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 0);
    EXPECT_EQ(polls(2), "10");
}

TEST_F(Interrupts, TurningItOffRestoresThePreviousHandler) {
    listen_for_sigint(true);
    EXPECT_TRUE(listen_for_sigint(false));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    EXPECT_EQ(polls(1), "0");
}

TEST_F(Interrupts, TurningItOnTwiceKeepsThePreviousHandler) {
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

TEST_F(Interrupts, TurningItOffLeavesAHandlerThatTheProgramHasInstalledSince) {
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

TEST_F(Interrupts, TheFirstPollLeavesASignalThatIsIgnored) {
    signal(SIGINT, SIG_IGN);
    EXPECT_EQ(polls(1), "0");
    raise(SIGINT);
    EXPECT_EQ(polls(1), "0");
    // Only a call turns listening on.
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

TEST_F(Interrupts, ASecondSignalGoesToThePreviousHandlerForGood) {
    listen_for_sigint(true);
    raise(SIGINT);
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
    // The first one is still to be answered.
    EXPECT_EQ(polls(2), "10");
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 2);
    EXPECT_EQ(polls(1), "0");
    EXPECT_FALSE(listen_for_sigint(true));
}

TEST_F(Interrupts, ListeningAgainCountsSignalsFromTheStart) {
    listen_for_sigint(true);
    raise(SIGINT);
    listen_for_sigint(false);
    listen_for_sigint(true);
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 0);
}

TEST_F(Interrupts, ASecondSignalWithinTwoSecondsIsNotTooLate) {
    listen_for_sigint(true);
    raise(SIGINT);
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 1);
}

TEST_F(Interrupts, ASecondSignalAfterTwoSecondsIsAFirstOne) {
    listen_for_sigint(true);
    raise(SIGINT);
    EXPECT_EQ(polls(2), "10");
    std::this_thread::sleep_for(std::chrono::milliseconds(2050));
    raise(SIGINT);
    EXPECT_EQ(reached_previous, 0);
    EXPECT_EQ(polls(2), "10");
}

/// A solver that polls until it is ended, and tells the writing end of a pipe when it is ready and
/// when a poll has answered true.
[[noreturn]] void solve(int told) {
    signal(SIGINT, SIG_DFL);
    // Whatever goes wrong, it does not stay.
    alarm(30);
    char word = utIsInterruptPending() ? 'x' : 'r';
    while (write(told, &word, 1) == 1) {
        while (!utIsInterruptPending()) {
            usleep(1000);
        }
        word = 'i';
    }
    _exit(1);
}

/// What a process says next; 0 when it has ended.
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
