#include <atomic>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using host::qvFreeExOptim;
using host::qvMallocExOptim;

constexpr int thread_count = 8;
constexpr int rounds = 2000;

/// Runs work(0), work(1), ... at the same time, each on a thread of its own.
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

/// Whether a new block keeps the bytes that this thread writes while other threads use other
/// blocks.
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

TEST_F(Threads, BlocksAreIndependentAndEveryCallIsCounted) {
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

TEST_F(Threads, EveryBlockHasItsOwnOrderNumber) {
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

TEST_F(Threads, APlannedFailureRefusesExactlyOneRequest) {
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

/// Whether an array, and the struct that then owns it, keep the values that this thread stores
/// while other threads use other arrays. Destroys both.
bool arrays_are_ours(double mark) {
    const array_handle structure = make_struct({1, 1}, 1, "x", 1);
    const array_handle column = make_matrix(3, 1);
    const double values[] = {mark, mark + 0.25, mark + 0.5};
    host::qvcopyreal8toptr800_(values, data_of(column), 3);
    set_field_number(structure, 1, 1, column);
    set_field(structure, 1, "name", 0);
    const std::int32_t added = add_field(structure, "name");
    set_field(structure, 1, "name", make_text(std::to_string(mark)));
    std::this_thread::yield();
    double copy[3] = {};
    host::qvcopyptrtoreal8800_(data_of(column), copy, 3);
    const array_value stored = inspect(structure);
    destroy(structure);
    return added == 2 && std::memcmp(copy, values, sizeof copy) == 0 &&
           stored.field("x").reals() == std::vector<double>(values, values + 3) &&
           stored.field("name").text() == std::to_string(mark);
}

TEST_F(Threads, ArraysAreIndependentAndEveryCallIsCounted) {
    std::atomic<int> fault_count = 0;
    set_fault_handler([&](const fault& found) {
        fault_count += found.kind == fault_kind::out_of_range ? 1 : 1'000'000;
    });
    std::atomic<int> bad = 0;
    on_threads([&](int t) {
        for (int i = 0; i < rounds / 4; ++i) {
            bad += arrays_are_ours(1000.0 * t + i) ? 0 : 1;
        }
    });
    constexpr std::int64_t total = std::int64_t{thread_count} * rounds / 4;
    EXPECT_EQ(bad, 0);
    // Each call of arrays_are_ours stores to a field that does not exist yet, which is a fault.
    EXPECT_EQ(fault_count, total);
    for (const operation once :
         {operation::qvcreatestructarray800_, operation::qvcreatedoublematrix800_,
          operation::qvcreatestring800_, operation::qvsetfieldbynumber800_,
          operation::qvaddfield800_, operation::qvcopyreal8toptr800_,
          operation::qvcopyptrtoreal8800_, operation::qvdestroyarray800_}) {
        EXPECT_EQ(calls(once), total) << name(once);
    }
    EXPECT_EQ(calls(operation::qvsetfield800_), 2 * total);
    EXPECT_EQ(calls(operation::qvgetpr800_), 2 * total);
}

TEST_F(Threads, EveryArrayHasItsOwnHandle) {
    std::vector<std::vector<array_handle>> made(thread_count);
    on_threads([&](int t) {
        for (int i = 0; i < 200; ++i) {
            made[static_cast<std::size_t>(t)].push_back(make_scalar(t));
        }
    });
    std::set<array_handle> handles;
    for (int t = 0; t < thread_count; ++t) {
        for (const array_handle each : made[static_cast<std::size_t>(t)]) {
            EXPECT_EQ(inspect(each).scalar(), t);
            handles.insert(each);
            destroy(each);
        }
    }
    EXPECT_EQ(handles.size(), std::size_t{200} * thread_count);
}

TEST_F(Threads, AStructGetsEveryFieldThatAnyThreadAdds) {
    const array_handle structure = make_struct();
    on_threads([&](int) {
        for (int i = 0; i < 50; ++i) {
            const std::string field = std::to_string(i);
            add_field(structure, field);
            set_field(structure, 1, field, make_scalar(i));
        }
    });
    const array_value result = inspect(structure);
    EXPECT_EQ(result.field_names().size(), 50u);
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(result.field(std::to_string(i)).scalar(), i);
    }
    destroy(structure);
    EXPECT_TRUE(faults.empty());
}

/// `count` numbers of a new generator. Draws each one, restores the snapshot from before it, and
/// draws it again.
std::vector<double> drawn(std::int32_t seed, int count) {
    void* const generator = host::instantiateRngOptim(seed);
    std::vector<double> values;
    const std::int64_t one = 1;
    for (int i = 0; i < count; ++i) {
        void* const state = host::getRngStateOptim(generator);
        double first = -1.0;
        double second = -2.0;
        host::getRandUniformOptim(generator, &first, &one);
        host::setRngStateOptim(generator, state);
        host::getRandUniformOptim(generator, &second, &one);
        host::deleteRngStateOptim(state);
        values.push_back(first == second ? first : -3.0);
    }
    host::deleteRngOptim(generator);
    return values;
}

TEST_F(Threads, GeneratorsDoNotAffectEachOther) {
    constexpr int count = 200;
    std::vector<std::vector<double>> expected;
    for (int t = 0; t < thread_count; ++t) {
        expected.push_back(drawn(t, count));
    }
    std::atomic<int> wrong = 0;
    on_threads(
        [&](int t) { wrong += drawn(t, count) == expected[static_cast<std::size_t>(t)] ? 0 : 1; });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(calls(operation::getRandUniformOptim), 4 * count * thread_count);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Threads, APlannedFailureFailsExactlyOneCall) {
    std::atomic<int> failed = 0;
    fail_call(operation::qvcreatedoublescalar800_, std::int64_t{thread_count} * rounds / 8);
    on_threads([&](int t) {
        for (int i = 0; i < rounds / 4; ++i) {
            const array_handle made = make_scalar(t);
            failed += made == 0 ? 1 : 0;
            destroy(made);
        }
    });
    EXPECT_EQ(failed, 1);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Threads, AnInterruptIsReportedByExactlyOnePoll) {
    std::atomic<int> interrupts = 0;
    interrupt_at_poll(thread_count * rounds / 2);
    raise_interrupt();
    on_threads([&](int) {
        for (int i = 0; i < rounds; ++i) {
            interrupts += host::utIsInterruptPending() ? 1 : 0;
        }
    });
    EXPECT_EQ(interrupts, 2);
}

TEST_F(Threads, ConsoleTextsAreNotInterleaved) {
    set_console(console::capture);
    on_threads([](int t) {
        for (int i = 0; i < 200; ++i) {
            print_text(std::string(30, static_cast<char>('a' + t)) + "\n");
        }
    });
    const std::string text = console_text();
    ASSERT_EQ(text.size(), std::size_t{31} * 200 * thread_count);
    for (std::size_t start = 0; start < text.size(); start += 31) {
        ASSERT_EQ(text.substr(start, 31), std::string(30, text[start]) + "\n");
    }
}

TEST_F(Threads, FunctionsCanBeCalledAtTheSameTime) {
    set_function("twice", [](const array_value& value) { return 2.0 * value.scalar(); });
    std::atomic<int> wrong = 0;
    on_threads([&](int t) {
        const array_handle input = make_scalar(t);
        for (int i = 0; i < 200; ++i) {
            array_handle output = 0;
            const std::int32_t status = call_function("twice", input, output);
            wrong += status == 0 && inspect(output).scalar() == 2.0 * t ? 0 : 1;
            destroy(output);
        }
        destroy(input);
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(Threads, AFaultIsReportedOnTheThreadThatCausedIt) {
    thread_local int faults_here = 0;
    std::atomic<int> correct = 0;
    set_fault_handler([](const fault&) { ++faults_here; });
    on_threads([&](int t) {
        for (int i = 0; i < t; ++i) {
            qvMallocExOptim(0);
        }
        correct += faults_here == t ? 1 : 0;
    });
    EXPECT_EQ(correct, thread_count);
    EXPECT_EQ(faults_here, 0);
}

} // namespace

} // namespace zktarn::standin
