// What the stand-in prints when it ends the process after a fault, and when the process ends.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using host::qvFreeExOptim;
using host::qvMallocExOptim;

/// With the default handlers, every fault prints its sentence and ends the process.
class DefaultHandlersDeathTest : public StandinTest {
protected:
    void SetUp() override { reset(); }

    /// How a fault names the block of the next request.
    static std::string next(const std::string& size) {
        return "block " + std::to_string(requests() + 1) + " (" + size + ")";
    }

    static unsigned char* request(std::int64_t nbytes) {
        return static_cast<unsigned char*>(qvMallocExOptim(nbytes));
    }
};

TEST_F(DefaultHandlersDeathTest, ABadRequestStops) {
    EXPECT_STOP(request(-1), "a block of -1 bytes was requested; at least 1 is needed");
}

TEST_F(DefaultHandlersDeathTest, ADoubleFreeStops) {
    EXPECT_STOP(
        {
            void* const address = request(24);
            qvFreeExOptim(address);
            qvFreeExOptim(address);
        },
        next("24 bytes") + " was released twice");
}

TEST_F(DefaultHandlersDeathTest, AForeignAddressStops) {
    int local = 0;
    EXPECT_STOP(qvFreeExOptim(&local),
                "an address that the memory manager never returned was released");
    EXPECT_STOP(qvFreeExOptim(request(24) + 8),
                "an address inside " + next("24 bytes") + " was released");
}

TEST_F(DefaultHandlersDeathTest, AWritePastTheEndStops) {
    EXPECT_STOP(
        {
            unsigned char* const bytes = request(1);
            bytes[1] = 0;
            qvFreeExOptim(bytes);
        },
        next("1 byte") + " was written past its end");
    EXPECT_STOP(
        {
            request(1)[1] = 0;
            check_blocks();
        },
        next("1 byte") + " was written past its end");
}

TEST_F(DefaultHandlersDeathTest, AWriteBeforeTheStartStops) {
    EXPECT_STOP(
        {
            unsigned char* const bytes = request(8);
            *(bytes - 1) = 0;
            qvFreeExOptim(bytes);
        },
        next("8 bytes") + " was written before its start");
}

TEST_F(DefaultHandlersDeathTest, AFailedAssertionStopsWithItsNumber) {
    EXPECT_STOP(host::assertOptim(false), "an assertion of the solver failed (number 1)");
    host::assertOptim(true);
    host::assertOptim(true);
    EXPECT_STOP(host::assertOptim(false), "an assertion of the solver failed (number 3)");
}

TEST_F(DefaultHandlersDeathTest, AnEmptyHandlerRestoresTheDefault) {
    set_fault_handler([](const fault&) {});
    set_fault_handler({});
    EXPECT_STOP(request(0), "a block of 0 bytes was requested; at least 1 is needed");
    set_assertion_handler([] {});
    set_assertion_handler({});
    EXPECT_STOP(host::assertOptim(false), "an assertion of the solver failed (number 1)");
}

TEST_F(DefaultHandlersDeathTest, FlushesStandardOutputFirst) {
    EXPECT_EXIT(
        {
            keep_coverage();
            dup2(STDERR_FILENO, STDOUT_FILENO);
            std::printf("Solving.\n");
            request(0);
        },
        testing::KilledBySignal(SIGABRT),
        sentence_with_stacks(std::string(
            "Solving.\nzktarn stand-in host: a block of 0 bytes was requested; at least "
            "1 is needed\n")));
}

/// The complete report of a new process: each statement runs in its own process, in which requests
/// are numbered from 1.
class ExitDeathTest : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
    void TearDown() override { testing::FLAGS_gtest_death_test_style = "fast"; }
};

constexpr int status = 7;

[[noreturn]] void end() {
    std::exit(status);
}

void print(const std::string& text) {
    std::fputs(text.c_str(), stderr);
}

TEST_F(ExitDeathTest, TheMemoryReportOfANewProcess) {
    EXPECT_EXIT((print(memory_report()), end()), testing::ExitedWithCode(status),
                exactly("host memory: 0 requests, 0 refused, 0 blocks not released\n"));
}

TEST_F(ExitDeathTest, TheMemoryReportCountsAndListsLiveBlocksByOrderNumber) {
    EXPECT_EXIT(
        {
            report_at_exit(false);
            qvMallocExOptim(1);
            void* const second = qvMallocExOptim(8);
            fail_request(1);
            qvMallocExOptim(16);
            qvMallocExOptim(4096);
            qvMallocExOptim(0x7FFFFFFFFFFFFFFF);
            qvFreeExOptim(second);
            print(memory_report());
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 5 requests, 2 refused, 2 blocks not released\n"
                "  block 1: 1 byte\n"
                "  block 4: 4096 bytes\n"));
}

TEST_F(ExitDeathTest, ALeakIsReportedAndKeepsTheExitStatus) {
    EXPECT_EXIT(
        {
            qvFreeExOptim(qvMallocExOptim(8));
            qvMallocExOptim(24);
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 2 requests, 0 refused, 1 block not released\n"
                "  block 2: 24 bytes\n"));
}

TEST_F(ExitDeathTest, NothingIsReportedWhenEverythingWasReleased) {
    EXPECT_EXIT(
        {
            qvFreeExOptim(qvMallocExOptim(8));
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST_F(ExitDeathTest, NothingIsReportedWhenTheReportIsOff) {
    EXPECT_EXIT(
        {
            static_cast<unsigned char*>(qvMallocExOptim(8))[8] = 0;
            report_at_exit(false);
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST_F(ExitDeathTest, ResetTurnsTheReportOn) {
    EXPECT_EXIT(
        {
            report_at_exit(false);
            reset();
            qvMallocExOptim(8);
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 1 request, 0 refused, 1 block not released\n"
                "  block 1: 8 bytes\n"));
}

TEST_F(ExitDeathTest, DamageFoundAtExitStops) {
    EXPECT_STOP(
        {
            static_cast<unsigned char*>(qvMallocExOptim(8))[8] = 0;
            end();
        },
        "block 1 (8 bytes) was written past its end");
}

TEST_F(ExitDeathTest, DamageFoundAtExitReachesTheHandlerBeforeTheReport) {
    EXPECT_EXIT(
        {
            set_fault_handler([](const fault& found) { print(found.sentence + "\n"); });
            static_cast<unsigned char*>(qvMallocExOptim(8))[8] = 0;
            end();
        },
        testing::ExitedWithCode(status),
        exactly("block 1 (8 bytes) was written past its end\n"
                "host memory: 1 request, 0 refused, 1 block not released\n"
                "  block 1: 8 bytes\n"));
}

/// Releases its block when it is destroyed.
struct owner {
    void* address = nullptr;
    ~owner() { qvFreeExOptim(address); }
};

owner made_before_any_block;

TEST_F(ExitDeathTest, BlocksOfStaticObjectsAreReleasedBeforeTheReport) {
    EXPECT_EXIT(
        {
            made_before_any_block.address = qvMallocExOptim(8);
            static owner made_later;
            made_later.address = qvMallocExOptim(8);
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST(ReportAtExit, ReturnsThePreviousSetting) {
    EXPECT_TRUE(report_at_exit(false));
    EXPECT_FALSE(report_at_exit(false));
    EXPECT_FALSE(report_at_exit(true));
    EXPECT_TRUE(report_at_exit(true));
}

} // namespace

} // namespace zktarn::standin
