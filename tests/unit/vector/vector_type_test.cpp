#include "zktarn/vector/vector_type.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/exported.hpp"
#include "support/host_log.hpp"
#include "zktarn_standin/records.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::flag;
using zktarn::optional_ref;
using zktarn::standin::fail_record;
using zktarn::standin::live_records;
using zktarn::testing::free_of;
using zktarn::testing::host_call;
using zktarn::testing::host_log;
using zktarn::testing::malloc_of;
using zktarn::vector_type::vector;
using zktarn::vector_type::vector_alloc;
using zktarn::vector_type::vector_free;

class VectorType : public testing::Test {
protected:
    void TearDown() override {
        vector_free(vec);
        EXPECT_EQ(host.live(), 0U);
        EXPECT_EQ(live_records(), 0);
    }

    host_log host;
    vector* vec = nullptr;
};

TEST_F(VectorType, AnEmptyVectorHasNoArrays) {
    for (const std::int32_t n : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        ASSERT_EQ(vector_alloc(vec, n), 1);
        ASSERT_NE(vec, nullptr);
        EXPECT_FALSE(vec->coef.present());
        EXPECT_FALSE(vec->ind.present());
        EXPECT_FALSE(vec->elm.present());
        EXPECT_EQ(vec->nz, 0);
        EXPECT_THAT(host.calls(), IsEmpty());
        vector_free(vec);
        EXPECT_THAT(host.calls(), IsEmpty());
    }
}

TEST_F(VectorType, WithoutFlagsAllThreeArraysExistAndOnlyTheMarksAreZeroed) {
    constexpr std::int32_t n = 7;
    ASSERT_EQ(vector_alloc(vec, n), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(8 * n), malloc_of(4 * n), malloc_of(4 * n)));
    EXPECT_EQ(vec->coef.data, host.blocks()[0]);
    EXPECT_EQ(vec->ind.data, host.blocks()[1]);
    EXPECT_EQ(vec->elm.data, host.blocks()[2]);
    for (const auto* array : {&vec->ind, &vec->elm}) {
        EXPECT_EQ(array->extent[0], n);
        EXPECT_EQ(array->lower_bound[0], 1);
    }
    EXPECT_EQ(vec->coef.extent[0], n);
    EXPECT_EQ(vec->coef.lower_bound[0], 1);
    EXPECT_EQ(vec->nz, 0);
    for (std::int32_t k = 1; k <= n; ++k) {
        EXPECT_EQ(vec->elm(k), 0);
        EXPECT_EQ(vec->ind(k), static_cast<std::int32_t>(0xA5A5A5A5));
    }
    const auto* const bytes = reinterpret_cast<const unsigned char*>(vec->coef.data);
    for (int i = 0; i < 8 * n; ++i) {
        EXPECT_EQ(bytes[i], host.fill);
    }
}

TEST_F(VectorType, ACapacityOfOneIsValid) {
    ASSERT_EQ(vector_alloc(vec, 1), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(8), malloc_of(4), malloc_of(4)));
    EXPECT_EQ(vec->elm(1), 0);
}

TEST_F(VectorType, NoCoefMakesAnIndexSet) {
    ASSERT_EQ(vector_alloc(vec, 3, 1), 1);
    EXPECT_FALSE(vec->coef.present());
    EXPECT_TRUE(vec->ind.present());
    EXPECT_TRUE(vec->elm.present());
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(12), malloc_of(12)));
}

TEST_F(VectorType, NoElmMakesAListVectorAndZeroesNothing) {
    ASSERT_EQ(vector_alloc(vec, 3, {}, {}, 1), 1);
    EXPECT_TRUE(vec->coef.present());
    EXPECT_TRUE(vec->ind.present());
    EXPECT_FALSE(vec->elm.present());
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(24), malloc_of(12)));
    EXPECT_EQ(vec->ind(1), static_cast<std::int32_t>(0xA5A5A5A5));
}

TEST_F(VectorType, NoIndAndNoElmMakeADenseVector) {
    ASSERT_EQ(vector_alloc(vec, 3, {}, 1, 1), 1);
    EXPECT_TRUE(vec->coef.present());
    EXPECT_FALSE(vec->ind.present());
    EXPECT_FALSE(vec->elm.present());
}

TEST_F(VectorType, VectorAllocOverwritesItsReferenceWithoutReleasing) {
    ASSERT_EQ(vector_alloc(vec, 2), 1);
    vector* old = vec;
    ASSERT_EQ(vector_alloc(vec, 2), 1);
    EXPECT_NE(vec, old);
    EXPECT_EQ(host.live(), 6U);
    vector_free(old);
}

TEST_F(VectorType, TheCapacityMayBeAComponentOfTheOldRecord) {
    ASSERT_EQ(vector_alloc(vec, 2), 1);
    vector* old = vec;
    old->nz = 5;
    ASSERT_EQ(vector_alloc(vec, old->nz), 1);
    EXPECT_EQ(vec->coef.extent[0], 5);
    vector_free(old);
}

TEST_F(VectorType, AFailedAllocationOfTheRecordReturnsNull) {
    vector other;
    vec = &other;
    fail_record(1);
    EXPECT_EQ(vector_alloc(vec, 4), 0);
    EXPECT_EQ(vec, nullptr);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(VectorType, FailureOfTheSecondArrayReleasesTheFirstAndTheRecord) {
    zktarn::standin::fail_request(2);
    EXPECT_EQ(vector_alloc(vec, 4), 0);
    EXPECT_EQ(vec, nullptr);
    EXPECT_EQ(live_records(), 0);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(32), malloc_of(16), free_of(host.blocks()[0])));
}

TEST_F(VectorType, VectorFreeOfNullDoesNothing) {
    vector_free(vec);
    EXPECT_EQ(vec, nullptr);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(VectorType, VectorFreeReleasesInOrderAndASecondCallDoesNothing) {
    ASSERT_EQ(vector_alloc(vec, 2), 1);
    EXPECT_EQ(live_records(), 1);
    const std::vector<void*> blocks = host.blocks();
    host.clear();
    vector_free(vec);
    EXPECT_EQ(vec, nullptr);
    EXPECT_EQ(live_records(), 0);
    EXPECT_THAT(host.calls(),
                ElementsAre(free_of(blocks[0]), free_of(blocks[1]), free_of(blocks[2])));
    vector_free(vec);
    EXPECT_EQ(host.calls().size(), 3U);
}

/// How a flag is passed: absent, or present with a value.
using passed = std::optional<flag>;

/// The flags of a call, and which arrays they request.
struct flags {
    std::array<passed, 3> values;

    bool requests(std::size_t which) const { return values[which].value_or(0) == 0; }
    flag alloc(vector*& vec, std::int32_t n) const {
        const auto ref = [](const passed& p) {
            return p ? optional_ref<const flag>(*p) : optional_ref<const flag>();
        };
        return vector_alloc(vec, n, ref(values[0]), ref(values[1]), ref(values[2]));
    }
};

std::vector<flags> all_flags() {
    const passed choices[] = {passed(), 0, 1, -1, 256, flag{1} << 32};
    std::vector<flags> all;
    for (const passed& coef : choices) {
        for (const passed& ind : choices) {
            for (const passed& elm : choices) {
                all.push_back({{coef, ind, elm}});
            }
        }
    }
    return all;
}

constexpr std::int32_t capacity = 6;
constexpr std::int64_t widths[] = {8, 4, 4};

/// The requests of a call with these flags.
std::vector<host_call> requests(const flags& given) {
    std::vector<host_call> expected;
    for (std::size_t which = 0; which < 3; ++which) {
        if (given.requests(which)) {
            expected.push_back(malloc_of(widths[which] * capacity));
        }
    }
    return expected;
}

TEST(VectorTypeFlags, SelectTheArraysAndAFalseFlagIsLikeAnAbsentOne) {
    for (const flags& given : all_flags()) {
        host_log host;
        vector* vec = nullptr;
        ASSERT_EQ(given.alloc(vec, capacity), 1);
        EXPECT_EQ(vec->coef.present(), given.requests(0));
        EXPECT_EQ(vec->ind.present(), given.requests(1));
        EXPECT_EQ(vec->elm.present(), given.requests(2));
        EXPECT_EQ(vec->nz, 0);
        EXPECT_EQ(host.calls(), requests(given));
        if (given.requests(2)) {
            for (std::int32_t j = 1; j <= capacity; ++j) {
                EXPECT_EQ(vec->elm(j), 0);
            }
        }
        const std::vector<void*> blocks = host.blocks();
        host.clear();
        vector_free(vec);
        std::vector<host_call> releases;
        for (void* const block : blocks) {
            releases.push_back(free_of(block));
        }
        EXPECT_EQ(host.calls(), releases);
        EXPECT_EQ(host.live(), 0U);
    }
}

TEST(VectorTypeFlags, FailureOfAnyArrayReleasesTheOnesBeforeIt) {
    for (const flags& given : all_flags()) {
        const std::vector<host_call> wanted = requests(given);
        for (std::size_t k = 1; k <= wanted.size(); ++k) {
            host_log host;
            zktarn::standin::fail_request(static_cast<std::int64_t>(k));
            vector other;
            vector* vec = &other;
            EXPECT_EQ(given.alloc(vec, capacity), 0);
            EXPECT_EQ(vec, nullptr);
            std::vector<host_call> expected(wanted.begin(),
                                            wanted.begin() + static_cast<std::ptrdiff_t>(k));
            for (std::size_t i = 0; i + 1 < k; ++i) {
                expected.push_back(free_of(host.blocks()[i]));
            }
            EXPECT_EQ(host.calls(), expected);
            EXPECT_EQ(host.live(), 0U);
            EXPECT_EQ(live_records(), 0);
        }
    }
}

using initialise_procedure = void (*)(vector&, const std::int32_t&);

/// The inline procedure, and the symbol of the shared library.
std::vector<initialise_procedure> inline_and_exported() {
    return {zktarn::vector_type::_vectorinitialise,
            zktarn::testing::exported<initialise_procedure>(
                "_ZN6zktarn11vector_type17_vectorinitialiseERNS0_6vectorERKi")};
}

class VectorInitialise : public testing::TestWithParam<initialise_procedure> {
protected:
    VectorInitialise() {
        for (vector& each : records) {
            each = {{&real, {8}, {9}}, {&integer, {10}, {11}}, {&integer, {12}, {13}}, 14};
        }
    }

    /// Extents and lower bounds keep their values.
    static void expect_initialised(const vector& v) {
        EXPECT_FALSE(v.coef.present());
        EXPECT_FALSE(v.ind.present());
        EXPECT_FALSE(v.elm.present());
        EXPECT_EQ(v.nz, 0);
        EXPECT_EQ(v.coef.extent[0], 8);
        EXPECT_EQ(v.ind.lower_bound[0], 11);
        EXPECT_EQ(v.elm.extent[0], 12);
    }

    void expect_untouched(const vector& v) const {
        EXPECT_EQ(v.coef.data, &real);
        EXPECT_EQ(v.ind.data, &integer);
        EXPECT_EQ(v.elm.data, &integer);
        EXPECT_EQ(v.nz, 14);
    }

    double real = 0.0;
    std::int32_t integer = 0;
    vector records[4];
};

TEST_P(VectorInitialise, WritesNothingForACountBelowOne) {
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        GetParam()(records[0], count);
        expect_untouched(records[0]);
    }
}

TEST_P(VectorInitialise, InitialisesOneRecord) {
    GetParam()(records[1], 1);
    expect_untouched(records[0]);
    expect_initialised(records[1]);
    expect_untouched(records[2]);
}

TEST_P(VectorInitialise, InitialisesThreeConsecutiveRecords) {
    GetParam()(records[0], 3);
    expect_initialised(records[0]);
    expect_initialised(records[1]);
    expect_initialised(records[2]);
    expect_untouched(records[3]);
}

// The counts reach each loop into which a compiler may split the body: vectorised, unrolled and
// remainder.
TEST_P(VectorInitialise, InitialisesUpTo40ConsecutiveRecords) {
    for (std::int32_t count = 1; count <= 40; ++count) {
        std::vector<vector> run(static_cast<std::size_t>(count) + 2, records[0]);
        GetParam()(run[1], count);
        expect_untouched(run.front());
        for (std::int32_t i = 1; i <= count; ++i) {
            expect_initialised(run[static_cast<std::size_t>(i)]);
        }
        expect_untouched(run.back());
    }
}

TEST_P(VectorInitialise, TheCountMayBeAComponentOfARecord) {
    records[0].nz = 2;
    GetParam()(records[0], records[0].nz);
    expect_initialised(records[1]);
    expect_untouched(records[2]);
}

INSTANTIATE_TEST_SUITE_P(InlineAndExported, VectorInitialise,
                         testing::ValuesIn(inline_and_exported()));

TEST(VectorInitialiseForms, AreTwoFunctions) {
    EXPECT_NE(inline_and_exported()[0], inline_and_exported()[1]);
}

TEST(VectorRecord, InitiallyHasNoArraysAndNoEntries) {
    const vector v;
    EXPECT_FALSE(v.coef.present());
    EXPECT_FALSE(v.ind.present());
    EXPECT_FALSE(v.elm.present());
    EXPECT_EQ(v.nz, 0);
}

} // namespace
