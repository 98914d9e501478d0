#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "property/listing.hpp"
#include "support/guarded_page.hpp"
#include "zktarn/vector/detail/reduce_in_blocks.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace {

using namespace zktarn::vector_mod;
using zktarn::testing::guarded_page;
using zktarn::testing::listing;
using zktarn::testing::made_vector;

constexpr std::int32_t n = 40;
constexpr double tiny = 1e-9;

/// The number of list positions that a reduction of nz entries uses: nz for the list, 2 * nz for
/// the sorted entries, and one byte for each entry that states whether it is dropped.
std::int64_t room_for(std::int64_t nz) {
    const std::int64_t bytes = 4;
    return 3 * nz + (nz + bytes - 1) / bytes;
}

/// A vector of capacity 40 whose list descends.
class DescendingList : public testing::TestWithParam<std::int32_t> {
protected:
    DescendingList() {
        for (std::int32_t j = GetParam(); j >= 1; --j) {
            made_.list({j});
        }
    }
    bool suits(detail::reduction_limits least = {n, n}) {
        return detail::suits_reduction_in_blocks(*made_, least);
    }
    made_vector made_{n};
};

TEST_P(DescendingList, SuitsIfTheCapacityIsAtLeastTheLimit) {
    EXPECT_TRUE(suits({n, n}));
    EXPECT_FALSE(suits({n + 1, n}));
}

TEST_P(DescendingList, SuitsIfAtLeastOneIndexInSpacingIsListed) {
    const std::int64_t nz = GetParam();
    const std::int64_t least_spacing = (n + nz - 1) / nz;
    EXPECT_TRUE(suits({n, least_spacing}));
    EXPECT_FALSE(suits({n, least_spacing - 1}));
}

TEST_P(DescendingList, SuitsIfThereIsRoomBehindTheList) {
    made_->ind.extent[0] = room_for(GetParam());
    EXPECT_TRUE(suits());
    made_->ind.extent[0] -= 1;
    EXPECT_FALSE(suits());
}

INSTANTIATE_TEST_SUITE_P(OfLength, DescendingList, testing::Range(4, 13));

// The order of a list is sampled at five positions: the ends, the quarters and the middle.
TEST(ReductionInBlocks, SuitsListsThatDescendBetweenTwoSampledPositions) {
    constexpr detail::reduction_limits least{n, n};
    constexpr int sampled[] = {0, 3, 6, 8, 11};
    // The sampled entries ascend: 10, 11, 12, 13, 14.
    const std::vector<std::int32_t> ascending = {10, 30, 2, 11, 31, 3, 12, 1, 13, 32, 4, 14};
    made_vector v(n);
    v->nz = static_cast<std::int32_t>(ascending.size());
    std::copy(ascending.begin(), ascending.end(), v->ind.data);
    EXPECT_FALSE(detail::suits_reduction_in_blocks(*v, least));
    for (int k = 0; k + 1 < 5; ++k) {
        std::int32_t& former = v->ind.data[sampled[k]];
        std::int32_t& latter = v->ind.data[sampled[k + 1]];
        const std::int32_t kept = former;
        former = latter;
        EXPECT_FALSE(detail::suits_reduction_in_blocks(*v, least)) << "equal at " << k;
        former = latter + 1;
        EXPECT_TRUE(detail::suits_reduction_in_blocks(*v, least)) << "descends at " << k;
        former = kept;
    }
}

// The list and the room behind it fill the beginning or the end of a page between two inaccessible
// pages. The first and the last entry are dropped in half of the cases.
TEST(ReductionInBlocks, AccessesNothingOutsideOfTheListAndItsRoom) {
    constexpr std::int32_t capacity = 8000;
    guarded_page page;
    for (std::int32_t nz = 1; nz <= 100; ++nz) {
        for (const bool at_end : {false, true}) {
            for (const std::int32_t parity : {0, 1}) {
                made_vector expected(capacity);
                for (std::int32_t k = nz; k >= 1; --k) {
                    const double coefficient = k == 1 || k == nz ? parity : k % 3;
                    expected.entries({{k * (capacity / 100), coefficient}});
                }
                made_vector arrays(capacity);
                vector reduced = *arrays;
                reduced.nz = nz;
                std::copy_n(expected->coef.data, capacity, reduced.coef.data);
                std::copy_n(expected->elm.data, capacity, reduced.elm.data);
                std::vector<std::int32_t> list = listing(*expected);
                list.resize(static_cast<std::size_t>(room_for(nz)));
                reduced.ind.data = at_end ? page.at_end(list) : page.at_begin(list);
                reduced.ind.extent[0] = room_for(nz);

                vector_mod2(*expected, tiny);
                detail::reduce_in_blocks(reduced, tiny);
                ASSERT_EQ(listing(reduced), listing(*expected)) << nz;
                ASSERT_TRUE(std::equal(reduced.coef.data, reduced.coef.data + capacity,
                                       expected->coef.data));
                ASSERT_TRUE(
                    std::equal(reduced.elm.data, reduced.elm.data + capacity, expected->elm.data));
            }
        }
    }
}

} // namespace
