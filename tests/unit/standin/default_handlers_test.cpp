#include <cstdint>
#include <cstdio>
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

} // namespace

} // namespace zktarn::standin
