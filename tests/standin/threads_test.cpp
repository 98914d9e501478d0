#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using host::qvFreeExOptim;
using host::qvMallocExOptim;

constexpr int thread_count = 8;
constexpr int rounds = 2000;

/// Runs `work` on several threads at once, each with its number.
template <class Work>
void on_threads(Work work) {
    std::vector<std::thread> threads;
    for (int t = 0; t < thread_count; ++t) {
        threads.emplace_back(work, t);
    }
    for (std::thread& each : threads) {
        each.join();
    }
}

/// True when a new block keeps what this thread writes, whatever the others do.
bool block_is_ours(std::int64_t nbytes, int mark) {
    auto* const bytes = static_cast<unsigned char*>(qvMallocExOptim(nbytes));
    std::memset(bytes, mark, static_cast<std::size_t>(nbytes));
    std::this_thread::yield();
    bool ours = true;
    for (std::int64_t i = 0; i < nbytes; ++i) {
        ours = ours && bytes[i] == mark;
    }
    qvFreeExOptim(bytes);
    return ours;
}

class Threads : public StandinTest {};

TEST_F(Threads, RequestsAndCountsAddUp) {
    const std::int64_t before = requests();
    std::atomic<int> bad = 0;
    on_threads([&](int t) {
        for (int i = 0; i < rounds; ++i) {
            bad += block_is_ours(1 + i % 200, t + 1) ? 0 : 1;
            host::assertOptim(true);
        }
    });
    constexpr std::int64_t total = std::int64_t{thread_count} * rounds;
    EXPECT_EQ(bad, 0);
    EXPECT_EQ(requests(), before + total);
    EXPECT_EQ(calls(operation::qvMallocExOptim), total);
    EXPECT_EQ(calls(operation::qvFreeExOptim), total);
    EXPECT_EQ(calls(operation::assertOptim), total);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Threads, EveryBlockHasAnOrderNumberOfItsOwn) {
    const std::int64_t before = requests();
    on_threads([](int) {
        for (int i = 0; i < 100; ++i) {
            qvMallocExOptim(8);
        }
    });
    const std::vector<block> live = live_blocks();
    ASSERT_EQ(live.size(), std::size_t{100} * thread_count);
    for (std::size_t i = 0; i < live.size(); ++i) {
        EXPECT_EQ(live[i].order, before + 1 + static_cast<std::int64_t>(i));
        qvFreeExOptim(const_cast<void*>(live[i].address));
    }
}

TEST_F(Threads, APlannedFailureMeetsExactlyOneRequest) {
    std::atomic<int> refused = 0;
    fail_request(std::int64_t{thread_count} * rounds / 2);
    on_threads([&](int) {
        for (int i = 0; i < rounds; ++i) {
            void* const address = qvMallocExOptim(8);
            refused += address == nullptr ? 1 : 0;
            qvFreeExOptim(address);
        }
    });
    EXPECT_EQ(refused, 1);
}

TEST_F(Threads, AFaultIsToldOnTheThreadThatCausedIt) {
    thread_local int told_here = 0;
    std::atomic<int> right = 0;
    set_fault_handler([](const fault&) { ++told_here; });
    on_threads([&](int t) {
        for (int i = 0; i < t; ++i) {
            qvMallocExOptim(0);
        }
        right += told_here == t ? 1 : 0;
    });
    EXPECT_EQ(right, thread_count);
    EXPECT_EQ(told_here, 0);
}

} // namespace

} // namespace zktarn::standin
