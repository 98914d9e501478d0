#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using host::qvFreeExOptim;
using host::qvMallocExOptim;

// The system maps a block this large separately and reuses its pages for the next request of that
// size. The address of a small block depends on its neighbours.
constexpr std::int64_t large = 100'000'000;

class Faults : public StandinTest {
protected:
    /// The bytes of a new block. The tests also write outside of its bounds.
    static unsigned char* request(std::int64_t nbytes) {
        return static_cast<unsigned char*>(qvMallocExOptim(nbytes));
    }

    /// Expects exactly one fault since the last call, and clears the list.
    void expect_fault(fault_kind kind, const block& concerned, const std::string& sentence) {
        ASSERT_EQ(faults.size(), 1u);
        const fault found = faults[0];
        faults.clear();
        EXPECT_EQ(found.kind, kind);
        EXPECT_EQ(found.concerned.address, concerned.address);
        EXPECT_EQ(found.concerned.nbytes, concerned.nbytes);
        EXPECT_EQ(found.concerned.order, concerned.order);
        EXPECT_EQ(found.sentence, sentence);
    }

    /// The name of the last requested block in the sentence of a fault.
    static std::string last(const std::string& size) {
        return "block " + std::to_string(requests()) + " (" + size + ")";
    }
};

TEST_F(Faults, ARequestForLessThanOneByteIsAFault) {
    const std::int64_t before = requests();
    EXPECT_EQ(qvMallocExOptim(0), nullptr);
    expect_fault(fault_kind::bad_request, {},
                 "a block of 0 bytes was requested; at least 1 is needed");
    EXPECT_EQ(qvMallocExOptim(-8), nullptr);
    expect_fault(fault_kind::bad_request, {},
                 "a block of -8 bytes was requested; at least 1 is needed");
    EXPECT_EQ(requests(), before);
}

TEST_F(Faults, ARequestForLessThanOneByteDoesNotCountForAPlannedFailure) {
    fail_request(1);
    EXPECT_EQ(qvMallocExOptim(0), nullptr);
    EXPECT_EQ(faults.size(), 1u);
    EXPECT_EQ(qvMallocExOptim(8), nullptr);
    EXPECT_EQ(faults.size(), 1u);
}

TEST_F(Faults, ABlockReleasedTwiceIsReportedWithSizeAndNumber) {
    void* const address = request(24);
    const std::int64_t order = requests();
    qvFreeExOptim(address);
    EXPECT_TRUE(faults.empty());
    qvFreeExOptim(address);
    expect_fault(fault_kind::double_free, {address, 24, order},
                 last("24 bytes") + " was released twice");
    qvFreeExOptim(address);
    expect_fault(fault_kind::double_free, {address, 24, order},
                 last("24 bytes") + " was released twice");
}

TEST_F(Faults, ABlockReleasedTwiceIsDetectedAfterOtherRequestsToo) {
    void* const address = request(24);
    const block first = {address, 24, requests()};
    const std::string first_name = last("24 bytes");
    qvFreeExOptim(address);
    // The released memory is too small for this block, so the allocator returns another address.
    void* const other = request(large);
    ASSERT_NE(other, address);
    qvFreeExOptim(address);
    expect_fault(fault_kind::double_free, first, first_name + " was released twice");
    qvFreeExOptim(other);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Faults, TheSentenceAboutOneByteUsesTheSingular) {
    void* const address = request(1);
    const std::int64_t order = requests();
    qvFreeExOptim(address);
    qvFreeExOptim(address);
    expect_fault(fault_kind::double_free, {address, 1, order},
                 last("1 byte") + " was released twice");
}

/// A new block at `address`, where a block of the same size was released; null when 100 requests
/// return other addresses.
void* request_again(void* address, std::int64_t nbytes) {
    std::vector<void*> others;
    void* again = qvMallocExOptim(nbytes);
    while (again != address && others.size() < 100) {
        others.push_back(again);
        again = qvMallocExOptim(nbytes);
    }
    for (void* const other : others) {
        qvFreeExOptim(other);
    }
    return again == address ? again : nullptr;
}

TEST_F(Faults, AReusedAddressCanBeReleasedAgain) {
#ifdef ZKTARN_TEST_EMULATED
    GTEST_SKIP() << "the emulator gives every large block new pages";
#endif
    void* const address = request(large);
    qvFreeExOptim(address);
    ASSERT_EQ(request_again(address, large), address);
    const std::int64_t order = live_blocks()[0].order;

    qvFreeExOptim(address);
    EXPECT_TRUE(faults.empty());
    qvFreeExOptim(address);
    expect_fault(fault_kind::double_free, {address, large, order},
                 "block " + std::to_string(order) + " (100000000 bytes) was released twice");
}

TEST_F(Faults, AnAddressOfTheStackIsForeign) {
    int local = 0;
    qvFreeExOptim(&local);
    expect_fault(fault_kind::foreign_free, {&local, 0, 0},
                 "an address that the memory manager never returned was released");
}

// Blocks begin at multiples of 64 bytes. The addresses in the next two tests are not multiples, so
// none of them is the address of an earlier block.

TEST_F(Faults, AnAddressInsideABlockIsForeignAndNamesTheBlock) {
    unsigned char* const other = request(8);
    unsigned char* const bytes = request(100);
    const block whole = {bytes, 100, requests()};
    for (const int offset : {1, 63, 99}) {
        qvFreeExOptim(bytes + offset);
        expect_fault(fault_kind::foreign_free, whole,
                     "an address inside " + last("100 bytes") + " was released");
    }
    EXPECT_EQ(live_blocks().size(), 2u);
    qvFreeExOptim(bytes);
    qvFreeExOptim(other);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Faults, AnAddressJustOutsideABlockIsForeignAndNamesNone) {
    unsigned char* const bytes = request(100);
    for (const int offset : {-63, -1, 100, 163}) {
        qvFreeExOptim(bytes + offset);
        expect_fault(fault_kind::foreign_free, {bytes + offset, 0, 0},
                     "an address that the memory manager never returned was released");
    }
    qvFreeExOptim(bytes);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Faults, AWriteUpTo64BytesPastTheEndIsDetectedAtTheRelease) {
    for (const std::int64_t nbytes : {1, 24, 63, 64, 65}) {
        for (const int distance : {0, 1, 63}) {
            unsigned char* const bytes = request(nbytes);
            const block damaged = {bytes, nbytes, requests()};
            bytes[nbytes + distance] = 0;
            qvFreeExOptim(bytes);
            expect_fault(fault_kind::write_past_end, damaged,
                         last(nbytes == 1 ? "1 byte" : std::to_string(nbytes) + " bytes") +
                             " was written past its end");
        }
    }
}

TEST_F(Faults, AWriteUpTo64BytesBeforeTheStartIsDetectedAtTheRelease) {
    for (const int distance : {1, 2, 64}) {
        unsigned char* const bytes = request(16);
        const block damaged = {bytes, 16, requests()};
        *(bytes - distance) = 0;
        qvFreeExOptim(bytes);
        expect_fault(fault_kind::write_before_start, damaged,
                     last("16 bytes") + " was written before its start");
    }
}

TEST_F(Faults, DamageThatCheckBlocksReportedIsNotReportedAgain) {
    unsigned char* const sound = request(8);
    unsigned char* const past = request(8);
    const block past_block = {past, 8, requests()};
    const std::string past_name = last("8 bytes");
    past[8] = 0;
    EXPECT_EQ(check_blocks(), 1);
    expect_fault(fault_kind::write_past_end, past_block, past_name + " was written past its end");
    EXPECT_EQ(check_blocks(), 0);

    *(past - 1) = 0;
    EXPECT_EQ(check_blocks(), 1);
    expect_fault(fault_kind::write_before_start, past_block,
                 past_name + " was written before its start");
    EXPECT_EQ(check_blocks(), 0);

    qvFreeExOptim(past);
    qvFreeExOptim(sound);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Faults, CheckBlocksReportsDamagedBlocksByOrderNumber) {
    std::vector<unsigned char*> blocks;
    for (int i = 0; i < 20; ++i) {
        blocks.push_back(request(8));
        blocks.back()[8] = 0;
    }
    EXPECT_EQ(check_blocks(), 20);
    ASSERT_EQ(faults.size(), 20u);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(faults[i].concerned.address, blocks[i]);
        qvFreeExOptim(blocks[i]);
    }
    EXPECT_EQ(faults.size(), 20u);
}

TEST_F(Faults, ABlockDamagedAtBothEndsIsReportedOnce) {
    unsigned char* const bytes = request(8);
    bytes[8] = 0;
    *(bytes - 1) = 0;
    EXPECT_EQ(check_blocks(), 1);
    EXPECT_EQ(faults.size(), 1u);
    EXPECT_EQ(check_blocks(), 0);
    qvFreeExOptim(bytes);
    EXPECT_EQ(faults.size(), 1u);
}

class Handlers : public StandinTest {};

TEST_F(Handlers, SetFaultHandlerReturnsThePreviousOne) {
    int calls = 0;
    set_fault_handler([&](const fault&) { calls += 1; });
    const fault_handler previous = set_fault_handler([&](const fault&) { calls += 10; });
    qvMallocExOptim(0);
    EXPECT_EQ(calls, 10);
    ASSERT_TRUE(previous);
    previous({});
    EXPECT_EQ(calls, 11);
    set_fault_handler({});
    EXPECT_FALSE(set_fault_handler({}));
}

TEST_F(Handlers, SetAssertionHandlerReturnsThePreviousOne) {
    int calls = 0;
    EXPECT_FALSE(set_assertion_handler([&] { calls += 1; }));
    const assertion_handler previous = set_assertion_handler([&] { calls += 10; });
    host::assertOptim(false);
    EXPECT_EQ(calls, 10);
    ASSERT_TRUE(previous);
    previous();
    EXPECT_EQ(calls, 11);
    set_assertion_handler({});
    EXPECT_FALSE(set_assertion_handler({}));
}

TEST_F(Handlers, OnlyFailedAssertionsReachTheHandler) {
    int calls = 0;
    set_assertion_handler([&] { ++calls; });
    host::assertOptim(true);
    EXPECT_EQ(calls, 0);
    host::assertOptim(false);
    host::assertOptim(false);
    EXPECT_EQ(calls, 2);
}

TEST_F(Handlers, AHandlerMayCallTheControlAndTheHost) {
    std::int64_t live = -1;
    set_fault_handler([&](const fault&) {
        qvFreeExOptim(qvMallocExOptim(8));
        live = static_cast<std::int64_t>(live_blocks().size());
        check_blocks();
        set_fault_handler({});
    });
    int local = 0;
    qvFreeExOptim(&local);
    EXPECT_EQ(live, 0);
    EXPECT_FALSE(set_fault_handler({}));
}

TEST_F(Handlers, ResetRestoresTheDefaults) {
    set_assertion_handler([] {});
    reset();
    EXPECT_FALSE(set_fault_handler({}));
    EXPECT_FALSE(set_assertion_handler({}));
}

TEST_F(Handlers, MayHaveStateThatLastsFromCallToCall) {
    int calls = 0;
    set_fault_handler([&calls, count = 0](const fault&) mutable { calls = ++count; });
    qvMallocExOptim(0);
    qvMallocExOptim(0);
    EXPECT_EQ(calls, 2);
    const fault_handler previous = set_fault_handler([](const fault&) {});
    previous({fault_kind::bad_request, {}, ""});
    EXPECT_EQ(calls, 3);

    int failures = 0;
    set_assertion_handler([&failures, count = 0]() mutable { failures = ++count; });
    host::assertOptim(false);
    host::assertOptim(false);
    EXPECT_EQ(failures, 2);
}

/// With the default handlers, every fault prints its sentence and aborts the process.
class DefaultHandlersDeathTest : public StandinTest {
protected:
    void SetUp() override { reset(); }

    /// The name of the next requested block in the sentence of a fault.
    static std::string next(const std::string& size) {
        return "block " + std::to_string(requests() + 1) + " (" + size + ")";
    }

    static unsigned char* request(std::int64_t nbytes) {
        return static_cast<unsigned char*>(qvMallocExOptim(nbytes));
    }
};

TEST_F(DefaultHandlersDeathTest, ABadRequestAborts) {
    EXPECT_ABORT(request(-1), "a block of -1 bytes was requested; at least 1 is needed");
}

TEST_F(DefaultHandlersDeathTest, ADoubleFreeAborts) {
    EXPECT_ABORT(
        {
            void* const address = request(24);
            qvFreeExOptim(address);
            qvFreeExOptim(address);
        },
        next("24 bytes") + " was released twice");
}

TEST_F(DefaultHandlersDeathTest, AForeignAddressAborts) {
    int local = 0;
    EXPECT_ABORT(qvFreeExOptim(&local),
                 "an address that the memory manager never returned was released");
    EXPECT_ABORT(qvFreeExOptim(request(24) + 8),
                 "an address inside " + next("24 bytes") + " was released");
}

TEST_F(DefaultHandlersDeathTest, AWritePastTheEndAborts) {
    EXPECT_ABORT(
        {
            unsigned char* const bytes = request(1);
            bytes[1] = 0;
            qvFreeExOptim(bytes);
        },
        next("1 byte") + " was written past its end");
    EXPECT_ABORT(
        {
            request(1)[1] = 0;
            check_blocks();
        },
        next("1 byte") + " was written past its end");
}

TEST_F(DefaultHandlersDeathTest, AWriteBeforeTheStartAborts) {
    EXPECT_ABORT(
        {
            unsigned char* const bytes = request(8);
            *(bytes - 1) = 0;
            qvFreeExOptim(bytes);
        },
        next("8 bytes") + " was written before its start");
}

TEST_F(DefaultHandlersDeathTest, AFailedAssertionAbortsAndPrintsItsNumber) {
    EXPECT_ABORT(host::assertOptim(false), "an assertion of the solver failed (number 1)");
    host::assertOptim(true);
    host::assertOptim(true);
    EXPECT_ABORT(host::assertOptim(false), "an assertion of the solver failed (number 3)");
}

TEST_F(DefaultHandlersDeathTest, AnEmptyHandlerRestoresTheDefault) {
    set_fault_handler([](const fault&) {});
    set_fault_handler({});
    EXPECT_ABORT(request(0), "a block of 0 bytes was requested; at least 1 is needed");
    set_assertion_handler([] {});
    set_assertion_handler({});
    EXPECT_ABORT(host::assertOptim(false), "an assertion of the solver failed (number 1)");
}

TEST_F(DefaultHandlersDeathTest, StandardOutputIsFlushedFirst) {
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
