#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using host::qvFreeExOptim;
using host::qvMallocExOptim;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

class Requests : public StandinTest {
protected:
    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        StandinTest::TearDown();
    }
};

/// Makes `n` requests and releases the blocks. Returns '1' for each block, '0' for each refusal.
std::string results_of(int n) {
    std::string results;
    for (int i = 0; i < n; ++i) {
        void* const address = qvMallocExOptim(8);
        results += address != nullptr ? '1' : '0';
        qvFreeExOptim(address);
    }
    return results;
}

TEST_F(Requests, BlocksOfEverySizeAreAlignedTo64Bytes) {
    std::vector<void*> blocks;
    for (std::int64_t nbytes = 1; nbytes <= 300; ++nbytes) {
        blocks.push_back(qvMallocExOptim(nbytes));
    }
    for (const std::int64_t nbytes : {4095, 4096, 4097, 65537, 1 << 20, (1 << 24) + 1}) {
        blocks.push_back(qvMallocExOptim(nbytes));
    }
    for (void* const address : blocks) {
        ASSERT_NE(address, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(address) % 64, 0u);
        qvFreeExOptim(address);
    }
}

#ifdef __linux__

/// The flags of the mapping that contains an address, as in /proc/self/smaps ("rd wr mr ... hg");
/// empty where the kernel lists none.
std::string flags_of_mapping(const void* address) {
    std::ifstream maps("/proc/self/smaps");
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    bool inside = false;
    for (std::string line; std::getline(maps, line);) {
        unsigned long long first = 0;
        unsigned long long end = 0;
        if (std::sscanf(line.c_str(), "%llx-%llx ", &first, &end) == 2) {
            inside = first <= wanted && wanted < end;
        } else if (inside && line.rfind("VmFlags:", 0) == 0) {
            return line.substr(8) + " ";
        }
    }
    return {};
}

/// Whether the kernel supports huge pages. An emulator shows the kernel's setting but not the flags
/// of its own mappings.
bool has_huge_pages() {
#ifdef ZKTARN_TEST_EMULATED
    return false;
#else
    return std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled").good();
#endif
}

bool has_flag(const std::string& flags, const std::string& flag) {
    return flags.find(" " + flag + " ") != std::string::npos;
}

TEST_F(Requests, LargeBlocksAreAdvisedForHugePagesUnlessSwitchedOff) {
    constexpr std::int64_t large = std::int64_t{4} << 20;
    for (const bool on : {true, false, true}) {
        huge_pages(on);
        for (const std::int64_t nbytes : {large, large + 1, 5 * large}) {
            auto* const block = static_cast<unsigned char*>(qvMallocExOptim(nbytes));
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % (2u << 20), 64u);
            block[0] = block[nbytes - 1] = 1;
            for (const unsigned char* const end : {block, block + nbytes - 1}) {
                const std::string flags = flags_of_mapping(end);
                if (has_flag(flags, "hg") || has_flag(flags, "nh")) {
                    EXPECT_EQ(has_flag(flags, "hg"), on) << nbytes << flags;
                } else {
                    EXPECT_FALSE(has_huge_pages()) << nbytes << flags;
                }
            }
            qvFreeExOptim(block);
        }
    }
}

#endif

TEST_F(Requests, HugePagesReturnsThePreviousSettingAndResetTurnsItOn) {
    EXPECT_TRUE(huge_pages(false));
    EXPECT_FALSE(huge_pages(false));
    reset();
    EXPECT_TRUE(huge_pages(true));
}

TEST_F(Requests, WritesBesideBothEndsOfALargeBlockAreDetected) {
    constexpr std::int64_t large = std::int64_t{5} << 20;
    for (const bool on : {true, false}) {
        huge_pages(on);
        auto* const block = static_cast<unsigned char*>(qvMallocExOptim(large));
        ASSERT_NE(block, nullptr);
        block[large] = 1;
        EXPECT_EQ(check_blocks(), 1);
        *(block - 1) = 1;
        EXPECT_EQ(check_blocks(), 1);
        ASSERT_EQ(faults.size(), 2u);
        EXPECT_EQ(faults[0].kind, fault_kind::write_past_end);
        EXPECT_EQ(faults[1].kind, fault_kind::write_before_start);
        faults.clear();
        qvFreeExOptim(block);
    }
}

TEST_F(Requests, EveryByteOfABlockCanBeWritten) {
    for (const std::int64_t nbytes : {1, 63, 64, 65, 1000}) {
        auto* const bytes = static_cast<unsigned char*>(qvMallocExOptim(nbytes));
        ASSERT_NE(bytes, nullptr);
        std::fill_n(bytes, nbytes, static_cast<unsigned char>(0xA5));
        EXPECT_EQ(std::count(bytes, bytes + nbytes, 0xA5), nbytes);
        qvFreeExOptim(bytes);
    }
}

TEST_F(Requests, AreNumberedConsecutivelyIncludingRefusedOnes) {
    const std::int64_t before = requests();
    void* const first = qvMallocExOptim(8);
    fail_request(1);
    EXPECT_EQ(qvMallocExOptim(8), nullptr);
    void* const third = qvMallocExOptim(24);
    EXPECT_EQ(requests(), before + 3);

    const std::vector<block> live = live_blocks();
    ASSERT_EQ(live.size(), 2u);
    EXPECT_EQ(live[0].order, before + 1);
    EXPECT_EQ(live[1].order, before + 3);
    qvFreeExOptim(first);
    qvFreeExOptim(third);
}

TEST_F(Requests, KeepTheirNumberingThroughAReset) {
    void* const kept = qvMallocExOptim(8);
    const std::int64_t order = requests();
    reset();
    EXPECT_EQ(requests(), order);
    ASSERT_EQ(live_blocks().size(), 1u);
    EXPECT_EQ(live_blocks()[0].order, order);
    qvFreeExOptim(kept);
}

TEST_F(Requests, OfMoreBytesThanAnyMachineHasAreRefusedWithoutAFault) {
    const std::int64_t before = requests();
    EXPECT_EQ(qvMallocExOptim(largest), nullptr);
    EXPECT_EQ(qvMallocExOptim(largest - 63), nullptr);
    EXPECT_EQ(qvMallocExOptim(largest - 64 * 3), nullptr);
    EXPECT_EQ(qvMallocExOptim(std::int64_t{1} << 62), nullptr);
    EXPECT_EQ(requests(), before + 4);
    EXPECT_TRUE(live_blocks().empty());
}

TEST_F(Requests, LiveBlocksAreListedByOrderNumberWithAddressAndSize) {
    const std::int64_t before = requests();
    std::vector<void*> addresses;
    for (std::int64_t nbytes = 1; nbytes <= 40; ++nbytes) {
        addresses.push_back(qvMallocExOptim(nbytes));
    }
    qvFreeExOptim(addresses[6]);
    addresses.erase(addresses.begin() + 6);

    const std::vector<block> live = live_blocks();
    ASSERT_EQ(live.size(), addresses.size());
    for (std::size_t i = 0; i < live.size(); ++i) {
        const std::int64_t number = static_cast<std::int64_t>(i) + (i < 6 ? 1 : 2);
        EXPECT_EQ(live[i].address, addresses[i]);
        EXPECT_EQ(live[i].nbytes, number);
        EXPECT_EQ(live[i].order, before + number);
        qvFreeExOptim(addresses[i]);
    }
}

TEST_F(Requests, ReleasingNullDoesNothing) {
    const std::string before = memory_report();
    qvFreeExOptim(nullptr);
    EXPECT_EQ(memory_report(), before);
}

class FailRequest : public Requests {};

TEST_F(FailRequest, FailsTheKthRequestOnce) {
    fail_request(1);
    EXPECT_EQ(results_of(3), "011");
    fail_request(3);
    EXPECT_EQ(results_of(5), "11011");
}

TEST_F(FailRequest, ReplacesAnEarlierPlan) {
    fail_request(1);
    fail_request(2);
    EXPECT_EQ(results_of(3), "101");
    fail_requests_from(1);
    fail_request(2);
    EXPECT_EQ(results_of(3), "101");
}

TEST_F(FailRequest, PlansNoFailureBelowOne) {
    for (const std::int64_t k : {std::int64_t{0}, std::int64_t{-1}, -largest - 1}) {
        fail_request(1);
        fail_request(k);
        EXPECT_EQ(results_of(3), "111") << k;
    }
}

TEST_F(FailRequest, AcceptsLargeNumbers) {
    for (const std::int64_t k : {largest, largest - 1, largest - requests()}) {
        fail_request(k);
        EXPECT_EQ(results_of(3), "111") << k;
    }
}

TEST_F(FailRequest, EndsWithReset) {
    fail_request(1);
    reset();
    EXPECT_EQ(results_of(2), "11");
}

class FailRequestsFrom : public Requests {};

TEST_F(FailRequestsFrom, FailsTheKthRequestAndAllAfterIt) {
    fail_requests_from(3);
    EXPECT_EQ(results_of(6), "110000");
    fail_requests_from(1);
    EXPECT_EQ(results_of(3), "000");
}

TEST_F(FailRequestsFrom, ReplacesAnEarlierPlan) {
    fail_request(1);
    fail_requests_from(2);
    EXPECT_EQ(results_of(3), "100");
}

TEST_F(FailRequestsFrom, PlansNoFailureBelowOne) {
    for (const std::int64_t k : {std::int64_t{0}, std::int64_t{-1}, -largest - 1}) {
        fail_requests_from(1);
        fail_requests_from(k);
        EXPECT_EQ(results_of(3), "111") << k;
    }
}

TEST_F(FailRequestsFrom, AcceptsLargeNumbers) {
    for (const std::int64_t k : {largest, largest - 1, largest - requests()}) {
        fail_requests_from(k);
        EXPECT_EQ(results_of(3), "111") << k;
    }
}

TEST_F(FailRequestsFrom, EndsWithReset) {
    fail_requests_from(1);
    reset();
    EXPECT_EQ(results_of(2), "11");
}

class FillNewBlocks : public Requests {};

/// Whether every byte of a new block holds `byte`. Overwrites the block before its release, so that
/// reused memory cannot hold the byte by chance.
bool new_block_is_filled(std::int64_t nbytes, int byte) {
    auto* const bytes = static_cast<unsigned char*>(qvMallocExOptim(nbytes));
    const bool filled = std::count(bytes, bytes + nbytes, byte) == nbytes;
    std::fill_n(bytes, nbytes, static_cast<unsigned char>(~byte));
    qvFreeExOptim(bytes);
    return filled;
}

TEST_F(FillNewBlocks, WritesEveryByteOfEveryNewBlockAndNoOther) {
    for (const int byte : {0, 1, 0x7F, 0xFF}) {
        fill_new_blocks(byte);
        for (const std::int64_t nbytes : {1, 64, 65, 100000}) {
            EXPECT_TRUE(new_block_is_filled(nbytes, byte)) << byte << " in " << nbytes;
        }
    }
}

TEST_F(FillNewBlocks, DoesNotChangeLiveBlocks) {
    auto* const bytes = static_cast<unsigned char*>(qvMallocExOptim(8));
    std::fill_n(bytes, 8, static_cast<unsigned char>(1));
    fill_new_blocks(2);
    EXPECT_EQ(std::count(bytes, bytes + 8, 1), 8);
    qvFreeExOptim(bytes);
}

// Reads uninitialised memory. It is a death test because runs under valgrind exclude death tests.
TEST_F(FillNewBlocks, EndsWithMinusOneAndWithResetDeathTest) {
    const auto end = [] { std::exit(new_block_is_filled(100000, 0x5A) ? 1 : 0); };
    fill_new_blocks(0x5A);
    EXPECT_EXIT(end(), testing::ExitedWithCode(1), exactly(""));
    EXPECT_EXIT((fill_new_blocks(-1), end()), testing::ExitedWithCode(0), exactly(""));
    EXPECT_EXIT((reset(), end()), testing::ExitedWithCode(0), exactly(""));
}

} // namespace

} // namespace zktarn::standin
