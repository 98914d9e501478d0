// A set with the largest 32-bit count of elements, whose supplier needs no storage.
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "support/scale.hpp"
#include "zktarn/util/scalar_search.hpp"

namespace {

using zktarn::flag;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

TEST(ScalarSearchCount, EachPassEndsAtTheLargestIndex) {
    if (zktarn::testing::scaled(100) < 100) {
        GTEST_SKIP() << "takes three times 2147483647 calls, too many where cases are scaled down";
    }
    std::int64_t calls = 0;
    std::int64_t out_of_order = 0;
    std::int32_t last = most;
    const auto supply = [&](const std::int32_t& index, double& value, flag& marked, flag&) {
        out_of_order += index == (last == most ? 1 : last + 1) ? 0 : 1;
        last = index;
        ++calls;
        // Only the last element is included. The marked one makes the first trial start at 0.5.
        value = index == most ? 2.5 : index == 1 ? 2.0 : 0.0;
        marked = index == 1 ? 1 : 0;
    };
    flag found = -1;
    double scalar = -1.0;
    // The trial from 0.5 would need a larger scalar and the one from 1.0 exceeds the bound, so both
    // fail; the construction returns 10/25 for 2.5 = 25/10.
    zktarn::util::find_scalar_integral(most, supply, 1e-9, 1000.0, 0.9, found, scalar, flag{1});
    EXPECT_EQ(found, 1);
    EXPECT_EQ(scalar, 0.4);
    EXPECT_EQ(calls, 3 * std::int64_t{most});
    EXPECT_EQ(out_of_order, 0);
}

} // namespace
