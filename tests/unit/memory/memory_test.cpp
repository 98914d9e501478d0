#include "zktarn/memory/memory_mod.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

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
using zktarn::host_array;
using zktarn::matrix_shape;
using zktarn::testing::free_of;
using zktarn::testing::host_log;
using zktarn::testing::malloc_of;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

/// An array whose element type is erased, so that each test is compiled once for all element types.
template <std::size_t Rank>
using bytes = host_array<std::byte, Rank>;

/// The same array with another element type.
template <class T, class Other, std::size_t Rank>
host_array<T, Rank> retyped(const host_array<Other, Rank>& other) {
    void* const data = other.data;
    host_array<T, Rank> array{static_cast<T*>(data), {}, {}};
    std::copy_n(other.extent, Rank, array.extent);
    std::copy_n(other.lower_bound, Rank, array.lower_bound);
    return array;
}

template <class T, auto Alloc, std::size_t Rank, class Size>
flag alloc(bytes<Rank>& array, const Size& size) {
    host_array<T, Rank> typed = retyped<T>(array);
    const flag result = Alloc(typed, size);
    array = retyped<std::byte>(typed);
    return result;
}

template <class T, auto Free, std::size_t Rank>
void free(bytes<Rank>& array) {
    host_array<T, Rank> typed = retyped<T>(array);
    Free(typed);
    array = retyped<std::byte>(typed);
}

/// The procedures of one element type, the type in their names, and the width of an element.
template <std::size_t Rank, class Size>
struct procedures {
    const char* type;
    std::int64_t width;
    flag (*alloc)(bytes<Rank>&, const Size&);
    void (*free)(bytes<Rank>&);
};

using vectors = procedures<1, std::int64_t>;
using matrices = procedures<2, matrix_shape>;

const vectors one_dimension[] = {
    {"l4", 4, alloc<logical4, allocmem_l4_1d_array>, free<logical4, freemem_l4_1d_array>},
    {"i8", 8, alloc<std::int64_t, allocmem_i8_1d_array>, free<std::int64_t, freemem_i8_1d_array>},
    {"i4", 4, alloc<std::int32_t, allocmem_i4_1d_array>, free<std::int32_t, freemem_i4_1d_array>},
    {"i2", 2, alloc<std::int16_t, allocmem_i2_1d_array>, free<std::int16_t, freemem_i2_1d_array>},
    {"i1", 1, alloc<std::int8_t, allocmem_i1_1d_array>, free<std::int8_t, freemem_i1_1d_array>},
    {"r8", 8, alloc<double, allocmem_r8_1d_array>, free<double, freemem_r8_1d_array>},
};
const matrices two_dimensions[] = {
    {"i4", 4, alloc<std::int32_t, allocmem_i4_2d_array>, free<std::int32_t, freemem_i4_2d_array>},
    {"r8", 8, alloc<double, allocmem_r8_2d_array>, free<double, freemem_r8_2d_array>},
};

const auto name_of_type = [](const auto& tested) { return std::string(tested.param.type); };

class Allocmem1d : public testing::TestWithParam<vectors> {
protected:
    // Extents and lower bounds that show where a procedure does not write.
    static bytes<1> stale() { return {nullptr, {77}, {66}}; }
    std::int64_t width = GetParam().width;
    host_log host;
};

class Allocmem2d : public testing::TestWithParam<matrices> {
protected:
    static bytes<2> stale() { return {nullptr, {77, 78}, {66, 67}}; }
    std::int64_t width = GetParam().width;
    host_log host;
};

TEST_P(Allocmem1d, AttachesABlockOfTheElements) {
    bytes<1> array = stale();
    EXPECT_EQ(GetParam().alloc(array, 5), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(5 * width)));
    EXPECT_EQ(array.data, host.blocks()[0]);
    EXPECT_EQ(array.extent[0], 5);
    EXPECT_EQ(array.lower_bound[0], 1);
}

TEST_P(Allocmem1d, AttachesOneElement) {
    bytes<1> array = stale();
    EXPECT_EQ(GetParam().alloc(array, 1), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(width)));
    EXPECT_EQ(array.extent[0], 1);
}

TEST_P(Allocmem1d, DoesNotInitialiseNewStorage) {
    bytes<1> array = stale();
    GetParam().alloc(array, 3);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(array.data);
    for (std::int64_t i = 0; i < 3 * width; ++i) {
        EXPECT_EQ(bytes[i], host.fill);
    }
}

TEST_P(Allocmem1d, SucceedsWithoutTheHostWhenTheSizeIsBelowOne) {
    for (const std::int64_t n : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-5}, smallest}) {
        bytes<1> array = stale();
        EXPECT_EQ(GetParam().alloc(array, n), 1);
        EXPECT_FALSE(array.present());
        EXPECT_EQ(array.extent[0], 77);
        EXPECT_EQ(array.lower_bound[0], 66);
    }
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_P(Allocmem1d, FailsWhenTheHostHasNoMemory) {
    bytes<1> array = stale();
    standin::fail_request(1);
    EXPECT_EQ(GetParam().alloc(array, 4), 0);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(4 * width)));
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 77);
    EXPECT_EQ(array.lower_bound[0], 66);
}

TEST_P(Allocmem1d, FailsWithoutTheHostWhenTheBytesDoNotFit) {
    const std::int64_t most = largest / width;
    bytes<1> array = stale();
    EXPECT_EQ(GetParam().alloc(array, most), 0);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(most * width)));
    if (width > 1) {
        EXPECT_EQ(GetParam().alloc(array, most + 1), 0);
        EXPECT_EQ(GetParam().alloc(array, largest), 0);
        EXPECT_EQ(host.calls().size(), 1U);
    }
    EXPECT_FALSE(array.present());
}

TEST_P(Allocmem1d, OverwritesAnAttachedBlockWithoutReleasingIt) {
    bytes<1> array = stale();
    GetParam().alloc(array, 2);
    GetParam().alloc(array, 3);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(2 * width), malloc_of(3 * width)));
    EXPECT_EQ(array.data, host.blocks()[1]);
    EXPECT_EQ(array.extent[0], 3);
    GetParam().alloc(array, 0);
    EXPECT_FALSE(array.present());
    EXPECT_EQ(host.live(), 2U);
}

TEST_P(Allocmem1d, FailureOverwritesAnAttachedBlock) {
    bytes<1> array = stale();
    GetParam().alloc(array, 2);
    standin::fail_request(1);
    EXPECT_EQ(GetParam().alloc(array, 3), 0);
    EXPECT_FALSE(array.present());
    GetParam().alloc(array, 2);
    EXPECT_EQ(GetParam().alloc(array, width == 1 ? smallest : largest), width == 1 ? 1 : 0);
    EXPECT_FALSE(array.present());
}

TEST_P(Allocmem1d, FreememReleasesTheBlockAndKeepsTheExtents) {
    bytes<1> array = stale();
    GetParam().alloc(array, 5);
    GetParam().free(array);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(5 * width), free_of(host.blocks()[0])));
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 5);
    EXPECT_EQ(array.lower_bound[0], 1);
}

TEST_P(Allocmem1d, FreememTwiceReleasesTheBlockOnce) {
    bytes<1> array = stale();
    GetParam().alloc(array, 5);
    GetParam().free(array);
    GetParam().free(array);
    EXPECT_EQ(host.calls().size(), 2U);
}

TEST_P(Allocmem1d, FreememOnAnAbsentArrayMakesNoHostCall) {
    bytes<1> array = stale();
    GetParam().free(array);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(array.extent[0], 77);
}

INSTANTIATE_TEST_SUITE_P(OfType, Allocmem1d, testing::ValuesIn(one_dimension), name_of_type);

TEST_P(Allocmem2d, AttachesABlockOfTheElements) {
    bytes<2> array = stale();
    EXPECT_EQ(GetParam().alloc(array, {3, 4}), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(12 * width)));
    EXPECT_EQ(array.data, host.blocks()[0]);
    EXPECT_EQ(array.extent[0], 3);
    EXPECT_EQ(array.extent[1], 4);
    EXPECT_EQ(array.lower_bound[0], 1);
    EXPECT_EQ(array.lower_bound[1], 1);
    EXPECT_EQ(&array(3, 4), array.data + 11);
}

TEST_P(Allocmem2d, AttachesOneElement) {
    bytes<2> array = stale();
    EXPECT_EQ(GetParam().alloc(array, {1, 1}), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(width)));
}

TEST_P(Allocmem2d, SucceedsWithoutTheHostWhenTheProductIsBelowOne) {
    constexpr std::int64_t big = std::int64_t{1} << 40;
    for (const matrix_shape shape :
         {matrix_shape{0, 7}, matrix_shape{7, -1}, matrix_shape{-1, 7}, matrix_shape{0, 0},
          matrix_shape{-big, big}, matrix_shape{big, -big}, matrix_shape{smallest, largest},
          matrix_shape{0, smallest}}) {
        bytes<2> array = stale();
        EXPECT_EQ(GetParam().alloc(array, shape), 1);
        EXPECT_FALSE(array.present());
        EXPECT_EQ(array.extent[0], 77);
        EXPECT_EQ(array.extent[1], 78);
        EXPECT_EQ(array.lower_bound[0], 66);
        EXPECT_EQ(array.lower_bound[1], 67);
    }
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_P(Allocmem2d, TwoNegativeExtentsRequestTheirProduct) {
    bytes<2> array = stale();
    EXPECT_EQ(GetParam().alloc(array, {-2, -3}), 1);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(6 * width)));
    EXPECT_TRUE(array.present());
    EXPECT_EQ(array.extent[0], -2);
    EXPECT_EQ(array.extent[1], -3);
    EXPECT_EQ(array.lower_bound[0], 1);
    EXPECT_EQ(array.lower_bound[1], 1);
}

TEST_P(Allocmem2d, FailsWhenTheHostHasNoMemory) {
    bytes<2> array = stale();
    GetParam().alloc(array, {2, 2});
    standin::fail_request(1);
    EXPECT_EQ(GetParam().alloc(array, {3, 5}), 0);
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 2);
    EXPECT_EQ(array.extent[1], 2);
    EXPECT_EQ(host.live(), 1U);
}

TEST_P(Allocmem2d, FailsWithoutTheHostWhenTheBytesDoNotFit) {
    constexpr std::int64_t big = std::int64_t{1} << 40;
    for (const matrix_shape shape :
         {matrix_shape{big, big}, matrix_shape{-big, -big}, matrix_shape{largest, 1},
          matrix_shape{1, largest}, matrix_shape{smallest, smallest}, matrix_shape{smallest, -1},
          matrix_shape{-1, smallest}, matrix_shape{largest / width + 1, 1}}) {
        bytes<2> array = stale();
        EXPECT_EQ(GetParam().alloc(array, shape), 0);
        EXPECT_FALSE(array.present());
    }
    EXPECT_THAT(host.calls(), IsEmpty());
    bytes<2> array = stale();
    const std::int64_t most = largest / width;
    EXPECT_EQ(GetParam().alloc(array, {1, most}), 0);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(most * width)));
}

TEST_P(Allocmem2d, AnEmptyResultOverwritesAnAttachedBlock) {
    constexpr std::int64_t big = std::int64_t{1} << 40;
    for (const matrix_shape shape :
         {matrix_shape{0, 7}, matrix_shape{big, -big}, matrix_shape{big, big},
          matrix_shape{largest / width + 1, 1}}) {
        bytes<2> array = stale();
        GetParam().alloc(array, {2, 2});
        ASSERT_TRUE(array.present());
        GetParam().alloc(array, shape);
        EXPECT_FALSE(array.present());
    }
}

TEST_P(Allocmem2d, FreememKeepsRowsAndColumns) {
    bytes<2> array = stale();
    GetParam().alloc(array, {3, 4});
    GetParam().free(array);
    GetParam().free(array);
    EXPECT_THAT(host.calls(), ElementsAre(malloc_of(12 * width), free_of(host.blocks()[0])));
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.extent[0], 3);
    EXPECT_EQ(array.extent[1], 4);
}

INSTANTIATE_TEST_SUITE_P(OfType, Allocmem2d, testing::ValuesIn(two_dimensions), name_of_type);

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
    EXPECT_EQ(&array(3, 4), array.data + 11);
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
