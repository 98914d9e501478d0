#include "zktarn/memory/memory_mod.hpp"

#include <cstdint>
#include <limits>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/host_log.hpp"

namespace {

using namespace zktarn::memory_mod;
using testing::ElementsAre;
using testing::IsEmpty;
namespace standin = zktarn::standin;
using zktarn::array_1d;
using zktarn::array_2d;
using zktarn::flag;
using zktarn::matrix_shape;
using zktarn::testing::free_of;
using zktarn::testing::host_log;
using zktarn::testing::malloc_of;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

// One allocate-and-release pair as a type, for the tests that every element type must pass.
template <class T, flag (*Alloc)(array_1d<T>&, const std::int64_t&) noexcept,
          void (*Free)(array_1d<T>&) noexcept, std::int64_t Width>
struct vectors {
    using array = array_1d<T>;
    static constexpr std::int64_t width = Width;
    static flag alloc(array& a, std::int64_t n) { return Alloc(a, n); }
    static void free(array& a) { Free(a); }
};

template <class T, flag (*Alloc)(array_2d<T>&, const matrix_shape&) noexcept,
          void (*Free)(array_2d<T>&) noexcept, std::int64_t Width>
struct matrices {
    using array = array_2d<T>;
    static constexpr std::int64_t width = Width;
    static flag alloc(array& a, matrix_shape shape) { return Alloc(a, shape); }
    static void free(array& a) { Free(a); }
};

using one_dimension =
    testing::Types<vectors<logical4, allocmem_l4_1d_array, freemem_l4_1d_array, 4>,
                   vectors<std::int64_t, allocmem_i8_1d_array, freemem_i8_1d_array, 8>,
                   vectors<std::int32_t, allocmem_i4_1d_array, freemem_i4_1d_array, 4>,
                   vectors<std::int16_t, allocmem_i2_1d_array, freemem_i2_1d_array, 2>,
                   vectors<std::int8_t, allocmem_i1_1d_array, freemem_i1_1d_array, 1>,
                   vectors<double, allocmem_r8_1d_array, freemem_r8_1d_array, 8>>;

using two_dimensions =
    testing::Types<matrices<std::int32_t, allocmem_i4_2d_array, freemem_i4_2d_array, 4>,
                   matrices<double, allocmem_r8_2d_array, freemem_r8_2d_array, 8>>;

template <class Procedures>
class Allocmem1d : public testing::Test {
protected:
    // Extents and lower bounds that show where a procedure does not write.
    static typename Procedures::array stale() { return {nullptr, {77}, {66}}; }
    host_log host;
};
TYPED_TEST_SUITE(Allocmem1d, one_dimension);

template <class Procedures>
class Allocmem2d : public testing::Test {
protected:
    static typename Procedures::array stale() { return {nullptr, {77, 78}, {66, 67}}; }
    host_log host;
};
TYPED_TEST_SUITE(Allocmem2d, two_dimensions);

TYPED_TEST(Allocmem1d, AttachesABlockOfTheElements) {
    auto array = this->stale();
    EXPECT_EQ(TypeParam::alloc(array, 5), 1);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(5 * TypeParam::width)));
    EXPECT_EQ(array.data, this->host.blocks()[0]);
    EXPECT_EQ(array.extent[0], 5);
    EXPECT_EQ(array.lower_bound[0], 1);
}

TYPED_TEST(Allocmem1d, AttachesOneElement) {
    auto array = this->stale();
    EXPECT_EQ(TypeParam::alloc(array, 1), 1);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(TypeParam::width)));
    EXPECT_EQ(array.extent[0], 1);
}

TYPED_TEST(Allocmem1d, DoesNotInitialiseNewStorage) {
    auto array = this->stale();
    TypeParam::alloc(array, 3);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(array.data);
    for (std::int64_t i = 0; i < 3 * TypeParam::width; ++i) {
        EXPECT_EQ(bytes[i], this->host.fill);
    }
}

TYPED_TEST(Allocmem1d, SucceedsWithoutTheHostWhenTheSizeIsBelowOne) {
    for (const std::int64_t n : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-5}, smallest}) {
        auto array = this->stale();
        EXPECT_EQ(TypeParam::alloc(array, n), 1);
        EXPECT_FALSE(array.present());
        EXPECT_EQ(array.extent[0], 77);
        EXPECT_EQ(array.lower_bound[0], 66);
    }
    EXPECT_THAT(this->host.calls(), IsEmpty());
}

TYPED_TEST(Allocmem1d, FailsWhenTheHostHasNoMemory) {
    auto array = this->stale();
    standin::fail_request(1);
    EXPECT_EQ(TypeParam::alloc(array, 4), 0);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(4 * TypeParam::width)));
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 77);
    EXPECT_EQ(array.lower_bound[0], 66);
}

TYPED_TEST(Allocmem1d, FailsWithoutTheHostWhenTheBytesDoNotFit) {
    const std::int64_t most = largest / TypeParam::width;
    auto array = this->stale();
    EXPECT_EQ(TypeParam::alloc(array, most), 0);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(most * TypeParam::width)));
    if constexpr (TypeParam::width > 1) {
        EXPECT_EQ(TypeParam::alloc(array, most + 1), 0);
        EXPECT_EQ(TypeParam::alloc(array, largest), 0);
        EXPECT_EQ(this->host.calls().size(), 1U);
    }
    EXPECT_FALSE(array.present());
}

TYPED_TEST(Allocmem1d, OverwritesAnAttachedBlockWithoutReleasingIt) {
    auto array = this->stale();
    TypeParam::alloc(array, 2);
    TypeParam::alloc(array, 3);
    EXPECT_THAT(this->host.calls(),
                ElementsAre(malloc_of(2 * TypeParam::width), malloc_of(3 * TypeParam::width)));
    EXPECT_EQ(array.data, this->host.blocks()[1]);
    EXPECT_EQ(array.extent[0], 3);
    TypeParam::alloc(array, 0);
    EXPECT_FALSE(array.present());
    EXPECT_EQ(this->host.live(), 2U);
}

TYPED_TEST(Allocmem1d, FailureOverwritesAnAttachedBlock) {
    auto array = this->stale();
    TypeParam::alloc(array, 2);
    standin::fail_request(1);
    EXPECT_EQ(TypeParam::alloc(array, 3), 0);
    EXPECT_FALSE(array.present());
    TypeParam::alloc(array, 2);
    EXPECT_EQ(TypeParam::alloc(array, TypeParam::width == 1 ? smallest : largest),
              TypeParam::width == 1 ? 1 : 0);
    EXPECT_FALSE(array.present());
}

TYPED_TEST(Allocmem1d, FreememReleasesTheBlockAndKeepsTheExtents) {
    auto array = this->stale();
    TypeParam::alloc(array, 5);
    TypeParam::free(array);
    EXPECT_THAT(this->host.calls(),
                ElementsAre(malloc_of(5 * TypeParam::width), free_of(this->host.blocks()[0])));
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 5);
    EXPECT_EQ(array.lower_bound[0], 1);
}

TYPED_TEST(Allocmem1d, FreememTwiceReleasesTheBlockOnce) {
    auto array = this->stale();
    TypeParam::alloc(array, 5);
    TypeParam::free(array);
    TypeParam::free(array);
    EXPECT_EQ(this->host.calls().size(), 2U);
}

TYPED_TEST(Allocmem1d, FreememOnAnAbsentArrayMakesNoHostCall) {
    auto array = this->stale();
    TypeParam::free(array);
    EXPECT_THAT(this->host.calls(), IsEmpty());
    EXPECT_EQ(array.extent[0], 77);
}

TYPED_TEST(Allocmem2d, AttachesABlockOfTheElements) {
    auto array = this->stale();
    EXPECT_EQ(TypeParam::alloc(array, {3, 4}), 1);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(12 * TypeParam::width)));
    EXPECT_EQ(array.data, this->host.blocks()[0]);
    EXPECT_EQ(array.extent[0], 3);
    EXPECT_EQ(array.extent[1], 4);
    EXPECT_EQ(array.lower_bound[0], 1);
    EXPECT_EQ(array.lower_bound[1], 1);
    EXPECT_EQ(&array(3, 4), array.data + 11);
}

TYPED_TEST(Allocmem2d, AttachesOneElement) {
    auto array = this->stale();
    EXPECT_EQ(TypeParam::alloc(array, {1, 1}), 1);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(TypeParam::width)));
}

TYPED_TEST(Allocmem2d, SucceedsWithoutTheHostWhenTheProductIsBelowOne) {
    constexpr std::int64_t big = std::int64_t{1} << 40;
    for (const matrix_shape shape :
         {matrix_shape{0, 7}, matrix_shape{7, -1}, matrix_shape{-1, 7}, matrix_shape{0, 0},
          matrix_shape{-big, big}, matrix_shape{big, -big}, matrix_shape{smallest, largest},
          matrix_shape{0, smallest}}) {
        auto array = this->stale();
        EXPECT_EQ(TypeParam::alloc(array, shape), 1);
        EXPECT_FALSE(array.present());
        EXPECT_EQ(array.extent[0], 77);
        EXPECT_EQ(array.extent[1], 78);
        EXPECT_EQ(array.lower_bound[0], 66);
        EXPECT_EQ(array.lower_bound[1], 67);
    }
    EXPECT_THAT(this->host.calls(), IsEmpty());
}

TYPED_TEST(Allocmem2d, TwoNegativeExtentsRequestTheirProduct) {
    auto array = this->stale();
    EXPECT_EQ(TypeParam::alloc(array, {-2, -3}), 1);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(6 * TypeParam::width)));
    EXPECT_TRUE(array.present());
    EXPECT_EQ(array.extent[0], -2);
    EXPECT_EQ(array.extent[1], -3);
    EXPECT_EQ(array.lower_bound[0], 1);
    EXPECT_EQ(array.lower_bound[1], 1);
}

TYPED_TEST(Allocmem2d, FailsWhenTheHostHasNoMemory) {
    auto array = this->stale();
    TypeParam::alloc(array, {2, 2});
    standin::fail_request(1);
    EXPECT_EQ(TypeParam::alloc(array, {3, 5}), 0);
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 2);
    EXPECT_EQ(array.extent[1], 2);
    EXPECT_EQ(this->host.live(), 1U);
}

TYPED_TEST(Allocmem2d, FailsWithoutTheHostWhenTheBytesDoNotFit) {
    constexpr std::int64_t big = std::int64_t{1} << 40;
    for (const matrix_shape shape :
         {matrix_shape{big, big}, matrix_shape{-big, -big}, matrix_shape{largest, 1},
          matrix_shape{1, largest}, matrix_shape{smallest, smallest}, matrix_shape{smallest, -1},
          matrix_shape{-1, smallest}, matrix_shape{largest / TypeParam::width + 1, 1}}) {
        auto array = this->stale();
        EXPECT_EQ(TypeParam::alloc(array, shape), 0);
        EXPECT_FALSE(array.present());
    }
    EXPECT_THAT(this->host.calls(), IsEmpty());
    auto array = this->stale();
    const std::int64_t most = largest / TypeParam::width;
    EXPECT_EQ(TypeParam::alloc(array, {1, most}), 0);
    EXPECT_THAT(this->host.calls(), ElementsAre(malloc_of(most * TypeParam::width)));
}

TYPED_TEST(Allocmem2d, AnEmptyResultOverwritesAnAttachedBlock) {
    constexpr std::int64_t big = std::int64_t{1} << 40;
    for (const matrix_shape shape :
         {matrix_shape{0, 7}, matrix_shape{big, -big}, matrix_shape{big, big},
          matrix_shape{largest / TypeParam::width + 1, 1}}) {
        auto array = this->stale();
        TypeParam::alloc(array, {2, 2});
        ASSERT_TRUE(array.present());
        TypeParam::alloc(array, shape);
        EXPECT_FALSE(array.present());
    }
}

TYPED_TEST(Allocmem2d, FreememKeepsRowsAndColumns) {
    auto array = this->stale();
    TypeParam::alloc(array, {3, 4});
    TypeParam::free(array);
    TypeParam::free(array);
    EXPECT_THAT(this->host.calls(),
                ElementsAre(malloc_of(12 * TypeParam::width), free_of(this->host.blocks()[0])));
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 3);
    EXPECT_EQ(array.extent[1], 4);
}

class Memory : public testing::Test {
protected:
    host_log host;
};

TEST_F(Memory, AnEmptyRealArrayIsASuccessWithoutAHostCall) {
    array_1d<double> array;
    EXPECT_EQ(allocmem_r8_1d_array(array, 0), 1);
    EXPECT_EQ(allocmem_r8_1d_array(array, -5), 1);
    EXPECT_FALSE(array.present());
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Memory, ARefusedIntegerArrayIsAbsentEvenIfItWasPresent) {
    array_1d<std::int32_t> array;
    ASSERT_EQ(allocmem_i4_1d_array(array, 2), 1);
    standin::fail_request(1);
    EXPECT_EQ(allocmem_i4_1d_array(array, 2), 0);
    EXPECT_FALSE(array.present());
}

TEST_F(Memory, EveryElementOfAMatrixCanBeWritten) {
    array_2d<double> array;
    ASSERT_EQ(allocmem_r8_2d_array(array, {3, 5}), 1);
    for (int j = 1; j <= 5; ++j) {
        for (int i = 1; i <= 3; ++i) {
            array(i, j) = 10.0 * i + j;
        }
    }
    EXPECT_EQ(array.data[3], 12.0);
    EXPECT_EQ(array.data[14], 35.0);
    EXPECT_EQ(standin::check_blocks(), 0);
    freemem_r8_2d_array(array);
    EXPECT_EQ(host.live(), 0U);
}

TEST_F(Memory, SucceedsAgainWhenTheHostHasMemoryAgain) {
    array_1d<std::int8_t> array;
    standin::fail_requests_from(1);
    EXPECT_EQ(allocmem_i1_1d_array(array, 3), 0);
    EXPECT_EQ(mallocate(3), nullptr);
    standin::fail_requests_from(0);
    EXPECT_EQ(allocmem_i1_1d_array(array, 3), 1);
    freemem_i1_1d_array(array);
}

TEST_F(Memory, ThreeSmallIntegersTakeThreeAndSixBytes) {
    array_1d<std::int8_t> bytes;
    array_1d<std::int16_t> halves;
    EXPECT_EQ(allocmem_i1_1d_array(bytes, 3), 1);
    EXPECT_EQ(allocmem_i2_1d_array(halves, 3), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(3), malloc_of(6)));
}

TEST_F(Memory, TheCountMayBeTheExtentOfTheArrayItself) {
    array_1d<std::int64_t> array{nullptr, {4}, {1}};
    EXPECT_EQ(allocmem_i8_1d_array(array, array.extent[0]), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(32)));
    EXPECT_EQ(allocmem_i8_1d_array(array, array.lower_bound[0]), 1);
    EXPECT_EQ(array.extent[0], 1);
}

TEST_F(Memory, MallocateReturnsWhatTheHostReturns) {
    const void* const first = mallocate(1);
    const void* const second = mallocate(100);
    EXPECT_THAT(host.blocks(), ElementsAre(first, second));
    standin::fail_request(1);
    EXPECT_EQ(mallocate(8), nullptr);
    EXPECT_EQ(mallocate(largest), nullptr);
    EXPECT_THAT(host.calls(),
                ElementsAre(malloc_of(1), malloc_of(100), malloc_of(8), malloc_of(largest)));
}

TEST_F(Memory, MallocateBelowOneByteIsNullWithoutAHostCall) {
    EXPECT_EQ(mallocate(0), nullptr);
    EXPECT_EQ(mallocate(-1), nullptr);
    EXPECT_EQ(mallocate(smallest), nullptr);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Memory, MdeallocatePassesTheAddressAndDoesNotClearIt) {
    void* const block = mallocate(16);
    void* address = block;
    mdeallocate(address);
    EXPECT_EQ(address, block);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(16), free_of(block)));
}

TEST_F(Memory, MdeallocatePassesNull) {
    mdeallocate(nullptr);
    EXPECT_THAT(host.calls(), ElementsAre(free_of(nullptr)));
}

} // namespace
