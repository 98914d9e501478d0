// Two solvers on two threads of one process, each with its own objects. The gate tsan of
// scripts/test runs this under the thread sanitizer, which must also report the races of the
// disabled tests.
#include <cstdint>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn;

/// Runs `work(0)` and `work(1)` at the same time.
template <class Work>
void on_two_threads(Work work) {
    std::thread second(work, 1);
    work(0);
    second.join();
}

/// The support and the coefficients of a row modulo 2, sorted by index.
std::vector<double> row_modulo_2(std::int32_t first) {
    using namespace vector_mod;
    vector* x = nullptr;
    vector* y = nullptr;
    EXPECT_EQ(vector_type::vector_alloc(x, 200), 1);
    EXPECT_EQ(vector_type::vector_alloc(y, 200), 1);
    for (std::int32_t j = first; j <= 200; j += 3) {
        vector_add_nz(*x, j, 1.0 * j);
        vector_add_nz(*y, 201 - j, 2.0 * j + 1.0);
    }
    vectors_combine(*x, *y, 1.0, 3.0, 1e-9);
    vector_mod2(*x, 1e-9);
    sorting_mod::sort(1, x->nz,
                      sorting_mod::exchange_procedure([x](std::int32_t a, std::int32_t b) {
                          if (x->ind(a) <= x->ind(b)) {
                              return flag{0};
                          }
                          std::swap(x->ind(a), x->ind(b));
                          return flag{1};
                      }));
    std::vector<double> all;
    for (std::int32_t k = 1; k <= x->nz; ++k) {
        all.push_back(vector_get_ind(*x, k));
    }
    vector_type::vector_free(x);
    vector_type::vector_free(y);
    return all;
}

/// Random numbers, drawn into an array allocated from the host.
std::vector<double> random_array(std::int32_t seed) {
    random::rng_state rng;
    array_1d<double> numbers;
    EXPECT_EQ(random::instantiaterng(rng, seed), 1);
    EXPECT_EQ(memory_mod::allocmem_r8_1d_array(numbers, 20), 1);
    for (std::int64_t k = 1; k <= 20; ++k) {
        numbers(k) = random::rand_number(rng);
    }
    std::vector<double> all(numbers.data, numbers.data + 20);
    memory_mod::freemem_r8_1d_array(numbers);
    random::deleterng(rng);
    return all;
}

TEST(LibraryThreads, SeparateObjectsGiveTheSameResultsAsOneThread) {
    const std::vector<double> rows[] = {row_modulo_2(1), row_modulo_2(2)};
    const std::vector<double> arrays[] = {random_array(1), random_array(2)};
    EXPECT_FALSE(rows[0].empty());
    EXPECT_NE(rows[0], rows[1]);
    EXPECT_NE(arrays[0], arrays[1]);
    int differences[2] = {};
    on_two_threads([&](int t) {
        for (int round = 0; round < 200; ++round) {
            differences[t] += row_modulo_2(t + 1) == rows[t] ? 0 : 1;
            differences[t] += random_array(t + 1) == arrays[t] ? 0 : 1;
        }
    });
    EXPECT_EQ(differences[0], 0);
    EXPECT_EQ(differences[1], 0);
    EXPECT_TRUE(standin::live_blocks().empty());
    EXPECT_TRUE(standin::live_objects().empty());
}

TEST(LibraryThreads, TheInterruptFlagIsProcessWide) {
    callbacks_type_util::cbdata* cb = nullptr;
    callbacks_util::cbinit(cb);
    standin::raise_interrupt();
    std::thread([] { EXPECT_EQ(callbacks_util::cbhasinterrupt(0, 1), 1); }).join();
    EXPECT_EQ(callbacks_util::cbhasinterrupt(0, 0), 1);
    delete cb;
    callbacks_util::cbinit(cb);
    EXPECT_EQ(callbacks_util::cbhasinterrupt(0, 0), 0);
    delete cb;
}

// Objects that two threads must not share.

TEST(LibraryThreads, DISABLED_AVectorIsShared) {
    vector_type::vector* v = nullptr;
    EXPECT_EQ(vector_type::vector_alloc(v, 100), 1);
    on_two_threads([v](int t) {
        for (std::int32_t j = 1; j <= 50; ++j) {
            vector_mod::vector_add_nz(*v, 50 * t + j, 1.0);
            vector_mod::vector_rem_zeros(*v);
        }
    });
    vector_type::vector_free(v);
}

TEST(LibraryThreads, DISABLED_AnArrayIsShared) {
    array_1d<double> array;
    ASSERT_EQ(memory_mod::allocmem_r8_1d_array(array, 8), 1);
    constexpr double ones[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    on_two_threads([&](int) {
        for (int round = 0; round < 100; ++round) {
            util::xcopy_r8(ones, array.data, 8);
        }
    });
    memory_mod::freemem_r8_1d_array(array);
}

TEST(LibraryThreads, DISABLED_ASlotIsShared) {
    callbacks_type_util::cbdatalist slot;
    on_two_threads([&](int t) {
        for (int round = 0; round < 100; ++round) {
            EXPECT_TRUE(callbacks_type_util::store(slot, t));
        }
    });
}

TEST(LibraryThreads, DISABLED_TheBridgeIsShared) {
    on_two_threads([](int) {
        for (int round = 0; round < 100; ++round) {
            static_cast<void>(callbacks_util::cbhasinterrupt(0, 1));
        }
    });
}

} // namespace
