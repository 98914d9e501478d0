#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "property/listing.hpp"
#include "support/guarded_page.hpp"
#include "zktarn/vector/detail/prefetch.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace {

using namespace zktarn::vector_mod;
using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::flag;
using zktarn::testing::guarded_page;
using zktarn::testing::listing;
using zktarn::testing::made_vector;

constexpr std::int32_t n = 9;
constexpr double tiny = 1e-9;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(RemZeros, DropsExactZerosOfBothSignsAndKeepsEverythingElse) {
    made_vector v(n);
    v.entries({{5, 0.0}, {7, 2.0}, {9, 0.0}});
    vector_rem_zeros(*v);
    EXPECT_THAT(listing(*v), ElementsAre(7));
    EXPECT_EQ(v->elm(5), 0);
    EXPECT_EQ(v->elm(7), 1);
    EXPECT_EQ(v->elm(9), 0);

    made_vector special(n);
    special.entries({{1, -0.0}, {2, nan}, {3, 5e-324}, {4, -0.0}});
    vector_rem_zeros(*special);
    EXPECT_THAT(listing(*special), ElementsAre(3, 2));
}

TEST(RemZeros, EmptiesAndUnmarksAListOfZeros) {
    made_vector v(n);
    v.entries({{1, 0.0}, {2, 0.0}, {3, -0.0}});
    vector_rem_zeros(*v);
    EXPECT_EQ(v->nz, 0);
    for (std::int32_t j = 1; j <= n; ++j) {
        EXPECT_EQ(v->elm(j), 0);
    }
}

TEST(RemZeros, DropsListedEntriesWithoutAMark) {
    made_vector v(n);
    v.entries({{1, 4.0}, {2, 5.0}, {3, 6.0}});
    v->elm(1) = -1;
    vector_rem_zeros(*v);
    EXPECT_THAT(listing(*v), ElementsAre(3, 2));
    EXPECT_EQ(v->elm(1), 0);
    EXPECT_EQ(v->coef(1), 4.0);
}

TEST(RemZeros, DropsZerosInListModeAndDoesNothingInDenseMode) {
    made_vector list(n, 0, 1);
    list.entries({{1, 0.0}, {2, 5.0}, {3, 6.0}});
    vector_rem_zeros(*list);
    EXPECT_THAT(listing(*list), ElementsAre(3, 2));
    made_vector dense(n, 1, 1);
    vector_rem_zeros(*dense);
    EXPECT_EQ(dense->nz, 0);
}

TEST(Combine, OnlyDropsZerosIfTheFactorsCountAsOneAndZero) {
    made_vector x(n);
    made_vector y(n);
    x.entries({{1, 3.0}, {2, 0.0}, {3, 0.5}});
    y.entries({{4, 1.0}});
    vectors_combine(*x, *y, 1.0 + 1e-10, 1e-10, tiny);
    EXPECT_THAT(listing(*x), ElementsAre(1, 3));
    EXPECT_EQ(x->coef(1), 3.0);
    EXPECT_EQ(x->coef(3), 0.5);
    EXPECT_EQ(x->elm(4), 0);
}

TEST(Combine, AppliesAFactorOnlyIfItsDistanceExceedsTheToleranceAndNeverForNaN) {
    made_vector x(n);
    made_vector y(n);
    x.entries({{1, 3.0}});
    y.entries({{1, 1.0}, {2, 1.0}});
    vectors_combine(*x, *y, 1.5, 0.5, 0.5);
    EXPECT_EQ(x->coef(1), 3.0);
    EXPECT_THAT(listing(*x), ElementsAre(1));
    vectors_combine(*x, *y, nan, nan, 0.0);
    vectors_combine(*x, *y, 5.0, 5.0, nan);
    EXPECT_EQ(x->coef(1), 3.0);
    EXPECT_THAT(listing(*x), ElementsAre(1));
    vectors_combine(*x, *y, 1.5, 0.5, std::nextafter(0.5, 0.0));
    EXPECT_EQ(x->coef(1), 5.0);
    EXPECT_THAT(listing(*x), ElementsAre(1, 2));
}

TEST(Combine, DropsEveryEntryThatCancels) {
    made_vector x(n);
    made_vector y(n);
    x.entries({{2, 3.0}, {4, -1.5}, {6, 0.1}});
    y.entries({{6, -0.1}, {2, -3.0}, {4, 1.5}});
    vectors_combine(*x, *y, 1.0, 1.0, tiny);
    EXPECT_EQ(x->nz, 0);
    EXPECT_EQ(x->elm(2) + x->elm(4) + x->elm(6), 0);
}

TEST(Combine, RoundsEachSumOnce) {
    made_vector x(n);
    made_vector y(n);
    const double third = 1.0 / 3.0;
    x.entries({{1, -third * third}});
    y.entries({{1, third}});
    vectors_combine(*x, *y, 1.0, third, 0.0);
    EXPECT_EQ(vector_get_coef(*x, 1), std::fma(third, third, -(third * third)));
    EXPECT_NE(vector_get_coef(*x, 1), 0.0);
}

TEST(Combine, MergesTheSupportsOfVectorsWithoutCoefficients) {
    made_vector x(n, 0, 0, 1);
    made_vector y(n, 0, 0, 1);
    x.list({1, 2});
    y.list({3, 2, 4});
    vectors_combine(*x, *y, 5.0, 1.0, tiny);
    EXPECT_THAT(listing(*x), ElementsAre(1, 2, 3, 4));
    made_vector list(n, 0, 1, 1);
    list.list({4});
    vectors_combine(*list, *y, 5.0, 1.0, tiny);
    EXPECT_THAT(listing(*list), ElementsAre(4, 3, 2));
}

TEST(Combine, WithASupportAsYScalesMergesAndDrops) {
    made_vector x(n);
    made_vector y(n, 0, 0, 1);
    x.entries({{1, 2.0}, {2, 0.0}});
    x->coef(5) = 7.0;
    y.list({5, 6});
    vectors_combine(*x, *y, 3.0, 1.0, tiny);
    EXPECT_THAT(listing(*x), ElementsAre(1, 5));
    EXPECT_EQ(x->coef(1), 6.0);
    EXPECT_EQ(x->coef(5), 7.0);
    EXPECT_EQ(x->elm(6), 0);
}

TEST(Combine, AddsToADenseVectorWithoutScalingIt) {
    made_vector x(n, 1, 1);
    made_vector y(n);
    x->coef(2) = 5.0;
    x->coef(3) = 1.0;
    y.entries({{3, 2.0}});
    vectors_combine(*x, *y, 3.0, 0.5, tiny);
    EXPECT_EQ(x->coef(2), 5.0);
    EXPECT_EQ(x->coef(3), 2.0);
    EXPECT_EQ(x->nz, 0);
}

TEST(Combine, DoesNothingForADenseXAndASupportAsY) {
    made_vector x(n, 1, 1);
    made_vector y(n, 0, 0, 1);
    x->coef(3) = 1.0;
    y.list({3});
    vectors_combine(*x, *y, 1.0, 1.0, tiny);
    EXPECT_EQ(x->coef(3), 1.0);
    EXPECT_EQ(x->nz, 0);
}

TEST(Combine, AddsNothingFromADenseY) {
    made_vector x(n);
    made_vector y(n, 1, 1);
    x.entries({{1, 2.0}});
    y->coef(1) = 5.0;
    vectors_combine(*x, *y, 1.0, 1.0, tiny);
    EXPECT_EQ(x->coef(1), 2.0);
}

TEST(Combine, DropsAListedIndexThatIsNotMarked) {
    made_vector x(n);
    made_vector y(n);
    x.entries({{1, 2.0}, {2, 4.0}});
    vector_clean_index(*x);
    x->elm(2) = 1;
    y.entries({{2, 1.0}});
    vectors_combine(*x, *y, -3.0, 1.0, tiny);
    EXPECT_THAT(listing(*x), ElementsAre(2));
    EXPECT_TRUE(std::signbit(x->coef(1)));
    EXPECT_EQ(x->coef(1), 0.0);
    EXPECT_EQ(x->coef(2), -11.0);
}

TEST(Combine, DropsAnUnmarkedIndexEvenIfItsProductIsNaN) {
    // In arrays of this size, the last pass tests only entries that an earlier pass noted as zero
    // or unmarked.
    constexpr std::int32_t large = 4096;
    made_vector x(large);
    made_vector y(large);
    x.entries({{5, 2.0}, {6, 3.0}});
    x->elm(5) = 0;
    x->elm(7) = 1; // not listed
    y.entries({{6, 1.0}});
    vectors_combine(*x, *y, std::numeric_limits<double>::infinity(), 1.0, 0.0);
    EXPECT_THAT(listing(*x), ElementsAre(6));
    EXPECT_EQ(x->elm(5), 0);
}

TEST(Combine, AnUnmarkedEntryOfYCountsAsZero) {
    made_vector x(n);
    made_vector y(n);
    x.entries({{1, 2.0}});
    y.entries({{1, 5.0}, {2, 5.0}});
    vector_clean_index(*y);
    vectors_combine(*x, *y, 1.0, 1.0, tiny);
    EXPECT_THAT(listing(*x), ElementsAre(1));
    EXPECT_EQ(x->coef(1), 2.0);
    EXPECT_EQ(x->coef(2), 0.0);
}

TEST(Combine, AddsInTheOrderOfYInEveryMode) {
    for (const int x_elm : {0, 1}) {
        for (const int y_elm : {0, 1}) {
            made_vector x(n, 0, x_elm);
            made_vector y(n, 0, y_elm);
            x.entries({{1, 1.0}, {2, 2.0}});
            y.entries({{9, 1.0}, {2, 1.0}, {3, 1.0}});
            vectors_combine(*x, *y, 2.0, 3.0, tiny);
            EXPECT_THAT(listing(*x), ElementsAre(1, 2, 9, 3));
            EXPECT_EQ(vector_get_coef(*x, 1), 2.0);
            EXPECT_EQ(vector_get_coef(*x, 2), 7.0);
            EXPECT_EQ(vector_get_coef(*x, 9), 3.0);
        }
    }
}

TEST(Combine, OfARecordWithItselfUsesACopyAsY) {
    made_vector x(n);
    x.entries({{1, 2.0}, {2, -1.0}});
    vectors_combine(*x, *x, 3.0, -3.0, tiny);
    EXPECT_EQ(x->nz, 0);
    x.entries({{1, 2.0}});
    vectors_combine(*x, *x, 1.0, 0.5, tiny);
    EXPECT_EQ(x->coef(1), 3.0);
}

TEST(Combine, TheFactorsMayBeCoefficientsOfX) {
    made_vector x(n);
    made_vector y(n);
    x.entries({{1, 2.0}, {2, 5.0}});
    y.entries({{2, 1.0}});
    vectors_combine(*x, *y, x->coef(1), x->coef(2), tiny);
    EXPECT_EQ(x->coef(1), 4.0);
    EXPECT_EQ(x->coef(2), 15.0);
}

TEST(Combine, FillsTheListUpToItsLastPosition) {
    made_vector x(3);
    made_vector y(3);
    x.entries({{1, 1.0}, {2, 1.0}});
    y.entries({{1, 1.0}, {3, 1.0}, {2, 1.0}});
    vectors_combine(*x, *y, 1.0, 1.0, tiny);
    EXPECT_THAT(listing(*x), ElementsAre(1, 2, 3));
    vectors_combine(*x, *y, 1.0, 1.0, tiny);
    EXPECT_THAT(listing(*x), ElementsAre(1, 2, 3));
}

TEST(SymDiff, KeepsTheIndicesThatExactlyOneVectorLists) {
    made_vector x(n);
    made_vector y(n);
    x.list({1, 2, 3});
    y.list({3, 4});
    vectors_calc_sym_diff(*x, *y);
    EXPECT_THAT(listing(*x), ElementsAre(1, 2, 4));
    for (std::int32_t j = 1; j <= n; ++j) {
        EXPECT_EQ(x->elm(j), j == 1 || j == 2 || j == 4 ? 1 : 0);
    }
}

TEST(SymDiff, OfEqualSupportsIsEmpty) {
    made_vector x(n);
    made_vector y(n);
    x.list({1, 2});
    y.list({2, 1});
    vectors_calc_sym_diff(*x, *y);
    EXPECT_EQ(x->nz, 0);
    EXPECT_EQ(x->elm(1), 0);
    EXPECT_EQ(x->elm(2), 0);
    x.list({1, 2});
    vectors_calc_sym_diff(*x, *x);
    EXPECT_EQ(x->nz, 0);
}

TEST(SymDiff, OfAVectorWithItselfUsesTheListBeforeTheCall) {
    made_vector x(n);
    made_vector same(n);
    made_vector copy(n);
    for (vector* const v : {&*x, &*same, &*copy}) {
        v->ind(1) = v->ind(2) = 4;
        v->ind(3) = 5;
        v->nz = 3;
    }
    vectors_calc_sym_diff(*x, *copy);
    vectors_calc_sym_diff(*same, *same);
    EXPECT_THAT(listing(*x), ElementsAre(5, 4, 5, 4));
    EXPECT_EQ(listing(*same), listing(*x));
}

TEST(SymDiff, WithAnEmptyVectorChangesNothing) {
    made_vector x(n);
    made_vector y(n);
    made_vector dense(n, 1, 1);
    x.list({1, 2});
    x->elm(1) = 0;
    vectors_calc_sym_diff(*x, *y);
    vectors_calc_sym_diff(*x, *dense);
    EXPECT_THAT(listing(*x), ElementsAre(1, 2));
}

TEST(SymDiff, OfDisjointSupportsIsTheirUnionAndKeepsCoefficients) {
    made_vector x(n);
    made_vector y(n, 0, 1);
    x.entries({{1, 5.0}});
    y.entries({{2, 6.0}});
    vectors_calc_sym_diff(*x, *y);
    EXPECT_THAT(listing(*x), ElementsAre(1, 2));
    EXPECT_EQ(x->coef(1), 5.0);
    EXPECT_EQ(x->coef(2), 0.0);
}

TEST(SymDiff, EndsAtTheFirstKeptEntryOnceAllCommonOnesAreDropped) {
    made_vector x(n);
    made_vector y(n);
    x.list({1, 2, 3, 4});
    x->elm(3) = 0;
    y.list({1});
    vectors_calc_sym_diff(*x, *y);
    EXPECT_THAT(listing(*x), ElementsAre(4, 2, 3));
}

TEST(SymDiff, ADroppedEntryIsUnmarkedWhateverItsMarkWas) {
    // The lists end in the first, the second and the third block of 64 entries.
    for (const std::int32_t length : {3, 70, 130}) {
        made_vector x(length);
        made_vector y(length);
        for (std::int32_t j = 1; j <= length; ++j) {
            x.list({j});
        }
        x->elm(length) = -1;
        y.list({length - 1});
        vectors_calc_sym_diff(*x, *y);
        ASSERT_EQ(x->nz, length - 2);
        for (std::int32_t j = 1; j <= length; ++j) {
            EXPECT_EQ(x->elm(j), j <= length - 2 ? 1 : 0) << length << ": " << j;
        }
    }
}

TEST(SymDiff, ANegativeMarkBecomesZeroIfOnlyItsEntryIsDropped) {
    made_vector x(n);
    made_vector y(n);
    x.list({1});
    x->elm(1) = -1;
    x->elm(2) = 1;
    y.list({2});
    vectors_calc_sym_diff(*x, *y);
    EXPECT_EQ(x->nz, 0);
    EXPECT_EQ(x->elm(1), 0);
    EXPECT_EQ(x->elm(2), 0);
}

TEST(SymDiff, StoresPositionsBehindTheListUpToItsCapacity) {
    // The positions of the 4 dropped entries are stored behind the list of 4 entries if they fit:
    // capacity 8 has room for all, capacity 7 for only 3.
    for (const std::int32_t length : {8, 7}) {
        made_vector x(length);
        made_vector y(length);
        x.list({1, 2, 3, 4});
        y.list({1, 2, 3, 4});
        vectors_calc_sym_diff(*x, *y);
        EXPECT_EQ(x->nz, 0);
        x.list({1, 2, 3, 4});
        y->nz = 3;
        vectors_calc_sym_diff(*x, *y);
        EXPECT_THAT(listing(*x), ElementsAre(4));
    }
}

/// Parameters: whether the list fills the end of the page, and whether the vector has no marks.
using guarded_case = std::tuple<bool, flag>;

/// A vector whose list fills the beginning or the end of a guarded page. The arrays are large
/// enough for prefetches. The list is longer than the prefetch distance, so that the loop with
/// prefetches and the last loop, without, both run. Coefficients are 3, marks are set.
class vector_with_guarded_list {
public:
    vector_with_guarded_list(bool at_end, flag no_elm)
        : arrays_(detail::prefetch_sparse_from, 1, no_elm), record_(*arrays_),
          indices_(static_cast<std::size_t>(2 * detail::lookahead)) {
        std::iota(indices_.begin(), indices_.end(), 3);
        record_.ind.data = at_end ? page_.at_end(indices_) : page_.at_begin(indices_);
        record_.ind.extent[0] = static_cast<std::int64_t>(indices_.size());
        record_.ind.lower_bound[0] = 1;
        record_.nz = static_cast<std::int32_t>(indices_.size());
        for (const std::int32_t j : indices_) {
            record_.coef(j) = 3.0;
            if (record_.elm.present()) {
                record_.elm(j) = 1;
            }
        }
    }
    vector& operator*() { return record_; }
    vector* operator->() { return &record_; }
    const std::vector<std::int32_t>& indices() const { return indices_; }

private:
    guarded_page page_;
    made_vector arrays_;
    vector record_;
    std::vector<std::int32_t> indices_;
};

class GuardedList : public testing::TestWithParam<guarded_case> {
protected:
    vector_with_guarded_list guarded_{std::get<0>(GetParam()), std::get<1>(GetParam())};
    made_vector other_{detail::prefetch_sparse_from};
};

TEST_P(GuardedList, IsNotLeftByRemZeros) {
    guarded_->coef(5) = 0.0;
    vector_rem_zeros(*guarded_);
    EXPECT_EQ(guarded_->nz, guarded_.indices().size() - 1);
}

TEST_P(GuardedList, IsNotLeftByMod2) {
    guarded_->coef(5) = 4.0;
    vector_mod2(*guarded_, tiny);
    EXPECT_EQ(guarded_->nz, guarded_.indices().size() - 1);
}

TEST_P(GuardedList, IsNotLeftByCombineAsY) {
    vectors_combine(*other_, *guarded_, 1.0, 2.0, tiny);
    EXPECT_EQ(listing(*other_), guarded_.indices());
    vectors_combine(*other_, *guarded_, 3.0, -6.0, tiny);
    EXPECT_THAT(listing(*other_), IsEmpty());
}

TEST_P(GuardedList, IsNotLeftBySymDiffAsY) {
    vectors_calc_sym_diff(*other_, *guarded_);
    EXPECT_EQ(listing(*other_), guarded_.indices());
}

TEST_P(GuardedList, IsNotLeftByIdenticalAsTheFirstVector) {
    vectors_combine(*other_, *guarded_, 1.0, 1.0, tiny);
    EXPECT_EQ(vectors_are_identical(*guarded_, *other_, tiny), 1);
}

INSTANTIATE_TEST_SUITE_P(AtBothEnds, GuardedList,
                         testing::Combine(testing::Bool(), testing::Values(flag{0}, flag{1})));

TEST(Mod2, SetsOddAndFractionalCoefficientsToOneAndDropsEvenOnes) {
    made_vector v(n);
    v.entries({{1, 2.0}, {2, 3.0}, {3, 2.5}});
    vector_mod2(*v, tiny);
    EXPECT_THAT(listing(*v), ElementsAre(3, 2));
    EXPECT_EQ(v->coef(1), 0.0);
    EXPECT_EQ(v->coef(2), 1.0);
    EXPECT_EQ(v->coef(3), 1.0);
    EXPECT_EQ(v->elm(1), 0);
}

TEST(Mod2, WithoutAnEvenCoefficientKeepsTheOrder) {
    made_vector v(n, 0, 1);
    v.entries({{4, -1.0}, {2, nan}, {6, 1e12}});
    vector_mod2(*v, tiny);
    EXPECT_THAT(listing(*v), ElementsAre(4, 2, 6));
    for (const std::int32_t j : {4, 2, 6}) {
        EXPECT_EQ(v->coef(j), 1.0);
    }
}

TEST(Mod2, TheLastEntryReplacesTheDroppedOneAtEveryPosition) {
    // Entries are tested in blocks of 64.
    for (const std::int32_t length : {63, 64, 65, 127, 128, 129, 200}) {
        for (std::int32_t even = 1; even <= length; ++even) {
            made_vector v(length);
            std::vector<std::int32_t> expected;
            for (std::int32_t j = 1; j <= length; ++j) {
                v.entries({{j, j == even ? 2.0 : 1.0}});
                expected.push_back(j);
            }
            expected[static_cast<std::size_t>(even - 1)] = length;
            expected.pop_back();
            vector_mod2(*v, tiny);
            ASSERT_EQ(listing(*v), expected) << length << ": " << even;
        }
    }
}

TEST(Mod2, AnUnmarkedEntryCountsAsZero) {
    made_vector v(n);
    v.entries({{1, 3.0}, {2, 3.0}});
    v->elm(1) = 0;
    vector_mod2(*v, tiny);
    EXPECT_THAT(listing(*v), ElementsAre(2));
    EXPECT_EQ(v->coef(1), 0.0);
}

TEST(Mod2, FollowsTheRuleForLargeNegativeAndNaNTolerances) {
    made_vector v(n);
    v.entries({{1, 1.0}, {2, 2.0}, {3, 3.0}});
    vector_mod2(*v, 1.0);
    // floor(x + 1.0) is within 1.0 of an integral x, so each coefficient counts as x + 1.
    EXPECT_THAT(listing(*v), ElementsAre(2));
    made_vector negative(n);
    negative.entries({{1, 1.0}, {2, 2.0}});
    vector_mod2(*negative, -1.0);
    EXPECT_THAT(listing(*negative), ElementsAre(1, 2));
    EXPECT_EQ(negative->coef(2), 1.0);
    made_vector none(n);
    none.entries({{1, 1.0}, {2, 2.0}});
    vector_mod2(*none, nan);
    EXPECT_THAT(listing(*none), ElementsAre(1, 2));
}

TEST(Mod2, DoesNothingToADenseVector) {
    made_vector v(n, 1, 1);
    v->coef(1) = 2.5;
    vector_mod2(*v, tiny);
    EXPECT_EQ(v->coef(1), 2.5);
}

TEST(Identical, EmptyAndDenseVectorsAreIdenticalWhateverTheirCoefficients) {
    made_vector a(n);
    made_vector b(n);
    EXPECT_EQ(vectors_are_identical(*a, *b, tiny), 1);
    made_vector dense(n, 1, 1);
    made_vector other(n, 1, 1);
    dense->coef(1) = 5.0;
    EXPECT_EQ(vectors_are_identical(*dense, *other, tiny), 1);
}

TEST(Identical, ComparesCountsSupportsAndCoefficients) {
    made_vector a(n);
    made_vector b(n);
    a.entries({{1, 1.0}, {2, 2.0}});
    b.entries({{2, 2.0}});
    EXPECT_EQ(vectors_are_identical(*a, *b, tiny), 0);
    b.entries({{1, 1.0}});
    EXPECT_EQ(vectors_are_identical(*a, *b, tiny), 1);
    made_vector c(n);
    c.entries({{1, 1.0}, {3, 2.0}});
    EXPECT_EQ(vectors_are_identical(*a, *c, tiny), 0);
    b->coef(2) = 2.5;
    EXPECT_EQ(vectors_are_identical(*a, *b, 0.5), 1);
    EXPECT_EQ(vectors_are_identical(*b, *a, 0.5), 1);
    EXPECT_EQ(vectors_are_identical(*a, *b, std::nextafter(0.5, 0.0)), 0);
    EXPECT_EQ(vectors_are_identical(*a, *b, nan), 1);
    b->coef(2) = nan;
    EXPECT_EQ(vectors_are_identical(*a, *b, 0.0), 1);
}

TEST(Identical, AcceptsAFirstVectorInListMode) {
    made_vector a(n, 0, 1);
    made_vector b(n);
    a.entries({{1, 1.0}, {2, 2.0}});
    b.entries({{2, 2.0}, {1, 1.0}});
    EXPECT_EQ(vectors_are_identical(*a, *b, 0.0), 1);
}

TEST(Identical, AnUnmarkedEntryOfTheFirstCountsAsZero) {
    made_vector a(n);
    made_vector b(n);
    a.entries({{1, 1.0}});
    b.entries({{1, 0.0}});
    a->elm(1) = 0;
    EXPECT_EQ(vectors_are_identical(*a, *b, 0.0), 1);
    b->elm(1) = 0;
    EXPECT_EQ(vectors_are_identical(*a, *b, 0.0), 0);
}

} // namespace
