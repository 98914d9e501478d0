#pragma once

#include <cstddef>
#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn_standin/control.hpp"

/// The fixture and matchers of the stand-in's tests.

namespace zktarn::standin {

/// Resets the stand-in before each test and collects its faults in `faults`. After each test,
/// expects every block, array, generator and snapshot to be released.
class StandinTest : public testing::Test {
protected:
    void SetUp() override {
        reset();
        set_console(console::show);
        objects_before_ = live_objects().size();
        set_fault_handler([this](const fault& found) { faults.push_back(found); });
    }

    void TearDown() override {
        const std::vector<block> left = live_blocks();
        EXPECT_EQ(left.size(), 0u) << "the test has not released all its blocks";
        // Releases what is left, so that the next test starts clean.
        set_fault_handler([](const fault&) {});
        for (const block& each : left) {
            host::qvFreeExOptim(const_cast<void*>(each.address));
        }
        EXPECT_EQ(live_objects().size(), objects_before_)
            << "the test has not released all its objects:\n"
            << report();
        for (const live_object& each : live_objects()) {
            if (each.made_by > operation::utIsInterruptPending) {
                host::qvdestroyarray800_(each.number);
            }
        }
        reset();
    }

    /// Expects exactly one fault since the last call, without a block, and clears the list.
    void expect_fault(fault_kind kind, const std::string& sentence) {
        ASSERT_EQ(faults.size(), 1u) << "expected: " << sentence;
        const fault found = std::exchange(faults, {})[0];
        EXPECT_EQ(found.kind, kind);
        EXPECT_EQ(found.sentence, sentence);
        EXPECT_EQ(found.concerned.address, nullptr);
        EXPECT_EQ(found.concerned.nbytes, 0);
        EXPECT_EQ(found.concerned.order, 0);
    }

    std::vector<fault> faults;

private:
    std::size_t objects_before_ = 0;
};

/// abort() loses coverage counters. In an instrumented build, a SIGABRT handler forks a copy of the
/// process whose regular exit writes them; in any other build this does nothing.
inline void keep_coverage() {
#ifdef __LLVM_INSTR_PROFILE_GENERATE
    signal(SIGABRT, [](int) {
        const pid_t copy = fork();
        if (copy == 0) {
            report_at_exit(false);
            std::exit(0);
        }
        waitpid(copy, nullptr, 0);
    });
#endif
}

/// Matches a sentence followed only by call stacks, whose lines are indented, and by qemu's
/// message.
MATCHER_P(sentence_with_stacks, sentence, "") {
    const std::string text = arg;
    if (text.rfind(sentence, 0) != 0) {
        return false;
    }
    std::istringstream rest(text.substr(std::string(sentence).size()));
    for (std::string line; std::getline(rest, line);) {
        if (line.rfind("    ", 0) != 0 && line.rfind("qemu: ", 0) != 0) {
            return false;
        }
    }
    return true;
}

/// Matches the whole text.
inline auto exactly(std::string text) {
    return testing::Eq(std::move(text));
}

} // namespace zktarn::standin

/// Expects `statement` to abort the process with this sentence on standard error, followed only by
/// call stacks and qemu's message.
#define EXPECT_STOP(statement, sentence)                                                           \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            zktarn::standin::keep_coverage();                                                      \
            statement;                                                                             \
        },                                                                                         \
        testing::KilledBySignal(SIGABRT),                                                          \
        zktarn::standin::sentence_with_stacks("zktarn stand-in host: " + std::string(sentence) +   \
                                              "\n"))
