#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
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

constexpr double tiny = 1e-9;

/// The number of list positions that a reduction of nz entries uses: nz for the list, 2 * nz for
/// the sorted entries, and one byte for each entry that states whether it is dropped.
std::int64_t room_for(std::int64_t nz) {
    const std::int64_t bytes = 4;
    return 3 * nz + (nz + bytes - 1) / bytes;
}

/// A descending list of the least length for the least capacity. Only the list exists: the other
/// arrays are not read.
class DescendingList : public testing::Test {
protected:
    static constexpr detail::reduction_limits least{};
    static constexpr auto nz = static_cast<std::int32_t>(least.capacity / least.spacing);

    DescendingList() : list_(static_cast<std::size_t>(room_for(nz))) {
        std::iota(list_.rend() - nz, list_.rend(), 1);
        v_.nz = nz;
        v_.ind.data = list_.data();
        v_.ind.extent[0] = room_for(nz);
        v_.coef.extent[0] = least.capacity;
    }
    bool suits() const { return detail::suits_reduction_in_blocks(v_); }

    std::vector<std::int32_t> list_;
    vector v_;
};

TEST_F(DescendingList, SuitsIfTheCapacityIsAtLeastTheLimit) {
    EXPECT_TRUE(suits());
    v_.coef.extent[0] -= 1;
    EXPECT_FALSE(suits());
}

TEST_F(DescendingList, SuitsIfAtLeastOneIndexInSpacingIsListed) {
    v_.nz -= 1;
    EXPECT_FALSE(suits());
}

TEST_F(DescendingList, SuitsIfThereIsRoomBehindTheList) {
    v_.ind.extent[0] -= 1;
    EXPECT_FALSE(suits());
}

TEST_F(DescendingList, SuitsUntilItIsSorted) {
    std::reverse(list_.begin(), list_.begin() + nz);
    EXPECT_FALSE(suits());
}

TEST(ReductionInBlocks, HasRoomBehindTheListForSortedEntriesAndNotes) {
    vector v;
    for (v.nz = 1; v.nz <= 12; ++v.nz) {
        v.ind.extent[0] = room_for(v.nz);
        EXPECT_TRUE(detail::has_room_for_blocks(v)) << v.nz;
        v.ind.extent[0] -= 1;
        EXPECT_FALSE(detail::has_room_for_blocks(v)) << v.nz;
    }
}

// The order of a list is sampled at five positions: the ends, the quarters and the middle.
TEST(ReductionInBlocks, TakesListsForSortedIfTheSampledPositionsAscend) {
    constexpr int sampled[] = {0, 3, 6, 8, 11};
    // The sampled entries ascend: 10, 11, 12, 13, 14.
    std::vector<std::int32_t> list = {10, 30, 2, 11, 31, 3, 12, 1, 13, 32, 4, 14};
    const auto seems_sorted = [&] {
        return detail::seems_sorted(list.data(), static_cast<std::int64_t>(list.size()));
    };
    EXPECT_TRUE(seems_sorted());
    for (int k = 0; k + 1 < 5; ++k) {
        std::int32_t& former = list[static_cast<std::size_t>(sampled[k])];
        const std::int32_t latter = list[static_cast<std::size_t>(sampled[k + 1])];
        const std::int32_t kept = former;
        former = latter;
        EXPECT_TRUE(seems_sorted()) << "equal at " << k;
        former = latter + 1;
        EXPECT_FALSE(seems_sorted()) << "descends at " << k;
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
