#include <iterator>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "zktarn/owners.hpp"
#include "zktarn/vector/vector_mod.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn;
using namespace zktarn::vector_mod;

using pairs = std::vector<std::pair<std::int32_t, double>>;

pairs walked(const owned_vector& v) {
    pairs found;
    for (auto [j, a] : entries(v)) {
        found.emplace_back(j, a);
    }
    return found;
}

void fill(vector& v) {
    vector_add_nz(v, 5, 2.0);
    vector_add_nz(v, 2, 0.0);
    vector_add_nz(v, 7, -1.0);
}

class Entries : public testing::Test {
protected:
    void SetUp() override { standin::reset(); }
    void TearDown() override { EXPECT_TRUE(standin::live_blocks().empty()); }
};

TEST_F(Entries, AreTheListedOnesInMarksModeInListOrder) {
    const owned_vector v(8);
    fill(*v);
    EXPECT_EQ(walked(v), (pairs{{5, 2.0}, {2, 0.0}, {7, -1.0}}));
}

TEST_F(Entries, OmitListedIndicesWithoutAMark) {
    const owned_vector v(8);
    fill(*v);
    vector_rem_elm(*v, 5);
    EXPECT_EQ(walked(v), (pairs{{2, 0.0}, {7, -1.0}}));
    vector_rem_elm(*v, 7);
    EXPECT_EQ(walked(v), (pairs{{2, 0.0}}));
    vector_rem_elm(*v, 2);
    EXPECT_EQ(walked(v), pairs{});
}

TEST_F(Entries, AreTheListedOnesInListMode) {
    const owned_vector v(8, {}, {}, 1);
    fill(*v);
    EXPECT_EQ(walked(v), (pairs{{5, 2.0}, {2, 0.0}, {7, -1.0}}));
}

TEST_F(Entries, AreAllIndicesInDenseModeZerosIncluded) {
    const owned_vector v(4, {}, 1, 1);
    for (std::int32_t j = 1; j <= 4; ++j) {
        vector_set_coef(*v, j, j == 3 ? -3.0 : 0.0);
    }
    vector_set_nz(*v, 1); // dense mode ignores the count
    EXPECT_EQ(walked(v), (pairs{{1, 0.0}, {2, 0.0}, {3, -3.0}, {4, 0.0}}));
}

TEST_F(Entries, AreTheMarkedIndicesWithoutAList) {
    const owned_vector v(5, {}, 1);
    for (const std::int32_t j : {2, 5}) {
        vector_set_coef(*v, j, 10.0 * j);
        vector_set_elm(*v, j);
    }
    EXPECT_EQ(walked(v), (pairs{{2, 20.0}, {5, 50.0}}));
    const owned_vector set(5, 1, 1);
    vector_set_elm(*set, 3);
    EXPECT_EQ(walked(set), (pairs{{3, 1.0}}));
}

TEST_F(Entries, HaveTheValueOneInAnIndexSet) {
    const owned_vector marks(8, 1);
    vector_add_nz(*marks, 3);
    vector_add_nz(*marks, 1);
    EXPECT_EQ(walked(marks), (pairs{{3, 1.0}, {1, 1.0}}));
    const owned_vector list(8, 1, {}, 1);
    vector_add_nz(*list, 4);
    EXPECT_EQ(walked(list), (pairs{{4, 1.0}}));
}

TEST_F(Entries, OfAnEmptyVectorAreNone) {
    EXPECT_EQ(walked(owned_vector(8)), pairs{});
    EXPECT_EQ(walked(owned_vector(0)), pairs{});
    EXPECT_EQ(walked(owned_vector(8, 1, 1, 1)), pairs{});
    const owned_vector negative(8);
    vector_set_nz(*negative, -1);
    EXPECT_EQ(walked(negative), pairs{});
    const entry_range none;
    EXPECT_EQ(none.begin(), none.end());
}

TEST_F(Entries, ReadCoefficientsThatTheLoopHasSet) {
    const owned_vector v(8);
    fill(*v);
    for (auto [j, a] : entries(v)) {
        vector_set_coef(*v, j, a + j);
    }
    EXPECT_EQ(walked(v), (pairs{{5, 7.0}, {2, 2.0}, {7, 6.0}}));
}

TEST_F(Entries, AreTheSameForARecordAndItsOwner) {
    const owned_vector v(8);
    fill(*v);
    EXPECT_EQ(std::distance(entries(*v).begin(), entries(*v).end()), 3);
}

TEST_F(Entries, AreAForwardRange) {
    static_assert(std::forward_iterator<entry_iterator>);
    const owned_vector v(8);
    fill(*v);
    const entry_range range = entries(v);
    entry_iterator position = range.begin();
    const entry_iterator before = position++;
    EXPECT_EQ((*before).index, 5);
    EXPECT_EQ((*position).index, 2);
    EXPECT_EQ(before, range.begin());
    EXPECT_NE(position, range.begin());
}

template <class V>
concept has_entries = requires(V&& v) {
    entries(std::forward<V>(v));
};

TEST_F(Entries, OfATemporaryOwnerDoNotCompile) {
    EXPECT_TRUE(has_entries<owned_vector&>);
    EXPECT_TRUE(has_entries<const owned_vector&>);
    EXPECT_FALSE(has_entries<owned_vector>);
}

} // namespace
