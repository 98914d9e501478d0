// Built twice: against the inline procedures, and against the symbols of the shared library.
#include "zktarn/util/array_copy.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifdef ZKTARN_TEST_EXPORTED
#include "support/exported.hpp"
#define PROCEDURE(name, mangled)                                                                   \
    (*zktarn::testing::exported<decltype(&zktarn::util::name)>(mangled))
#else
#define PROCEDURE(name, mangled) zktarn::util::name
#endif

namespace {

using testing::ElementsAre;

const std::int32_t counts_below_one[] = {0, -1, std::numeric_limits<std::int32_t>::min()};

TEST(Xcopy, CopiesTheFirstBytes) {
    const auto copy = [](const std::int8_t* source, std::int8_t* destination, std::int32_t n) {
        PROCEDURE(xcopy_i1, "_ZN6zktarn4util8xcopy_i1EPKaPaRKi")(source, destination, n);
    };
    const std::int8_t source[] = {1, -2, 127, -128};
    std::int8_t destination[] = {9, 9, 9, 9};
    for (const std::int32_t n : counts_below_one) {
        copy(source, destination, n);
    }
    EXPECT_THAT(destination, ElementsAre(9, 9, 9, 9));
    copy(source, destination, 1);
    EXPECT_THAT(destination, ElementsAre(1, 9, 9, 9));
    copy(source, destination, 3);
    EXPECT_THAT(destination, ElementsAre(1, -2, 127, 9));
}

TEST(Xcopy, CopiesTheFirstIntegers) {
    const auto copy = [](const std::int32_t* source, std::int32_t* destination, std::int32_t n) {
        PROCEDURE(xcopy_i4, "_ZN6zktarn4util8xcopy_i4EPKiPiRS1_")(source, destination, n);
    };
    const std::int32_t source[] = {1, -2, 1 << 30, 4};
    std::int32_t destination[] = {9, 9, 9, 9};
    for (const std::int32_t n : counts_below_one) {
        copy(source, destination, n);
    }
    EXPECT_THAT(destination, ElementsAre(9, 9, 9, 9));
    copy(source, destination, 3);
    EXPECT_THAT(destination, ElementsAre(1, -2, 1 << 30, 9));
}

TEST(Xcopy, CopiesTheFirstRealsBitForBit) {
    const auto copy = [](const double* source, double* destination, std::int32_t n) {
        PROCEDURE(xcopy_r8, "_ZN6zktarn4util8xcopy_r8EPKdPdRKi")(source, destination, n);
    };
    const double nan_with_payload = std::bit_cast<double>(std::uint64_t{0x7FF8000000001234});
    const double source[] = {-0.0, nan_with_payload, 3.5, 4.0};
    double destination[] = {9, 9, 9, 9};
    for (const std::int32_t n : counts_below_one) {
        copy(source, destination, n);
    }
    EXPECT_THAT(destination, ElementsAre(9, 9, 9, 9));
    copy(source, destination, 3);
    EXPECT_TRUE(std::signbit(destination[0]));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(destination[1]), 0x7FF8000000001234U);
    EXPECT_EQ(destination[2], 3.5);
    EXPECT_EQ(destination[3], 9.0);
}

// memcpy and memset are undefined for null addresses, even for 0 bytes.
TEST(Xcopy, AcceptsNullAddressesForACountBelowOne) {
    PROCEDURE(xcopy_i4, "_ZN6zktarn4util8xcopy_i4EPKiPiRS1_")(nullptr, nullptr, 0);
    PROCEDURE(xzero_i4, "_ZN6zktarn4util8xzero_i4EPiRKi")(nullptr, 0);
}

TEST(Xzero, ClearsTheFirstIntegers) {
    const auto clear = [](std::int32_t* array, std::int32_t n) {
        PROCEDURE(xzero_i4, "_ZN6zktarn4util8xzero_i4EPiRKi")(array, n);
    };
    std::int32_t array[] = {1, 2, 3, 4};
    for (const std::int32_t n : counts_below_one) {
        clear(array, n);
    }
    EXPECT_THAT(array, ElementsAre(1, 2, 3, 4));
    clear(array, 1);
    EXPECT_THAT(array, ElementsAre(0, 2, 3, 4));
    clear(array, 3);
    EXPECT_THAT(array, ElementsAre(0, 0, 0, 4));
}

TEST(Xzero, SetsTheFirstRealsToPositiveZero) {
    const auto clear = [](double* array, std::int32_t n) {
        PROCEDURE(xzero_r8, "_ZN6zktarn4util8xzero_r8EPdRKi")(array, n);
    };
    double array[] = {-0.0, 2, 3, 4};
    for (const std::int32_t n : counts_below_one) {
        clear(array, n);
    }
    EXPECT_THAT(array, ElementsAre(-0.0, 2, 3, 4));
    clear(array, 1);
    EXPECT_THAT(array, ElementsAre(0, 2, 3, 4));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(array[0]), 0U);
    clear(array, 3);
    EXPECT_THAT(array, ElementsAre(0, 0, 0, 4));
}

} // namespace
