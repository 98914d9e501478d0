#pragma once

#include <cstddef>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn_standin/control.hpp"

/// What the tests of the stand-in share.

namespace zktarn::standin {

/// Starts every test from a fresh control and a handler that collects the faults, and holds it to
/// giving back every block, array, generator and snapshot.
class StandinTest : public testing::Test {
protected:
    void SetUp() override {
        reset();
        objects_before_ = live_objects().size();
        set_fault_handler([this](const fault& found) { faults.push_back(found); });
    }

    void TearDown() override {
        const std::vector<block> left = live_blocks();
        EXPECT_EQ(left.size(), 0u) << "the test has not given all its blocks back";
        // The next test is not to suffer for it.
        set_fault_handler([](const fault&) {});
        for (const block& each : left) {
            host::qvFreeExOptim(const_cast<void*>(each.address));
        }
        EXPECT_EQ(live_objects().size(), objects_before_)
            << "the test has not given all its objects back:\n"
            << report();
        for (const live_object& each : live_objects()) {
            if (each.made_by > operation::utIsInterruptPending) {
                host::qvdestroyarray800_(each.number);
            }
        }
        reset();
    }

    /// Expects exactly one fault since the last call, with no block concerned, and forgets it.
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

/// A process that aborts takes its coverage counters with it, so where they are kept, a copy of the
/// process leaves them behind in good order. Elsewhere this does nothing.
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

/// Matches this text and no other.
inline auto exactly(std::string text) {
    return testing::Eq(std::move(text));
}

/// The same for a process that aborts: an emulator adds a line of its own.
inline auto exactly_and_aborted(std::string text) {
#ifdef ZKTARN_TEST_EMULATED
    text += "qemu: uncaught target signal 6 (Aborted) - core dumped\n";
#endif
    return exactly(std::move(text));
}

} // namespace zktarn::standin

/// Expects `statement` to abort the process with exactly this sentence on standard error.
#define EXPECT_STOP(statement, sentence)                                                           \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            zktarn::standin::keep_coverage();                                                      \
            statement;                                                                             \
        },                                                                                         \
        testing::KilledBySignal(SIGABRT),                                                          \
        zktarn::standin::exactly_and_aborted("zktarn stand-in host: " + std::string(sentence) +    \
                                             "\n"))
