// Built twice: against the inline procedures, and against the symbols of the shared library.
#include "zktarn/vector/vector_mod.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "property/listing.hpp"

#ifdef ZKTARN_TEST_EXPORTED
#include "support/exported.hpp"
#define PROCEDURE(name, parameters)                                                                \
    const auto name =                                                                              \
        zktarn::testing::exported<decltype(&zktarn::vector_mod::name)>(mangled(#name, parameters))
#else
#define PROCEDURE(name, parameters) using zktarn::vector_mod::name
#endif

namespace {

using testing::ElementsAre;
using zktarn::testing::listing;
using zktarn::testing::made_vector;
using zktarn::vector_mod::vector;

#ifdef ZKTARN_TEST_EXPORTED
/// The mangled name of an exported procedure of the module.
const char* mangled(const std::string& name, const char* parameters) {
    static std::string text;
    text = "_ZN6zktarn10vector_mod" + std::to_string(name.size()) + name + "E" + parameters;
    return text.c_str();
}
#endif

constexpr std::int32_t n = 9;

/// A vector of capacity 9 in each mode, with coefficients.
struct VectorElements : testing::Test {
    made_vector marks{n, 0, 0};
    made_vector list{n, 0, 1};
    made_vector dense{n, 1, 1};

    void SetUp() override {
        for (made_vector* v : {&marks, &list, &dense}) {
            for (std::int32_t j = 1; j <= n; ++j) {
                (*v)->coef(j) = 10.0 * j;
            }
        }
    }
};

TEST_F(VectorElements, GettersReturnTheCountAndTheIndicesThatWereSet) {
    PROCEDURE(vector_get_nz, "RKNS_11vector_type6vectorE");
    PROCEDURE(vector_set_nz, "RNS_11vector_type6vectorERKi");
    PROCEDURE(vector_get_ind, "RKNS_11vector_type6vectorERKi");
    PROCEDURE(vector_set_ind, "RNS_11vector_type6vectorERKiS5_");
    EXPECT_EQ(vector_get_nz(*marks), 0);
    vector_set_nz(*marks, 2);
    vector_set_ind(*marks, 1, 4);
    vector_set_ind(*marks, 2, 8);
    EXPECT_EQ(vector_get_nz(*marks), 2);
    EXPECT_EQ(vector_get_ind(*marks, 1), 4);
    EXPECT_EQ(vector_get_ind(*marks, 2), 8);
    EXPECT_EQ(marks->elm(4), 0);
    vector_set_nz(*marks, -3);
    EXPECT_EQ(vector_get_nz(*marks), -3);
    vector_set_nz(*marks, 0);
}

TEST_F(VectorElements, SetElmAndRemElmWriteTheMarkOnly) {
    PROCEDURE(vector_is_elm, "RKNS_11vector_type6vectorERKi");
    PROCEDURE(vector_set_elm, "RNS_11vector_type6vectorERKi");
    PROCEDURE(vector_rem_elm, "RNS_11vector_type6vectorERKi");
    EXPECT_EQ(vector_is_elm(*marks, 3), 0);
    vector_set_elm(*marks, 3);
    EXPECT_EQ(marks->elm(3), 1);
    EXPECT_EQ(vector_is_elm(*marks, 3), 1);
    vector_rem_elm(*marks, 3);
    EXPECT_EQ(marks->elm(3), 0);
    marks->elm(3) = 7;
    EXPECT_EQ(vector_is_elm(*marks, 3), 1);
    marks->elm(3) = -1;
    EXPECT_EQ(vector_is_elm(*marks, 3), 0);
    EXPECT_EQ(marks->nz, 0);
}

TEST_F(VectorElements, SetCoefDoesNotChangeMembership) {
    PROCEDURE(vector_set_coef, "RNS_11vector_type6vectorERKiRKd");
    vector_set_coef(*marks, 5, -2.5);
    EXPECT_EQ(marks->coef(5), -2.5);
    EXPECT_EQ(marks->elm(5), 0);
    EXPECT_EQ(marks->nz, 0);
}

TEST_F(VectorElements, GetCoefOfAnUnlistedIndexIsZeroWhateverIsStored) {
    PROCEDURE(vector_get_coef, "RKNS_11vector_type6vectorERKi");
    EXPECT_EQ(vector_get_coef(*marks, 5), 0.0);
    EXPECT_EQ(vector_get_coef(*list, 5), 0.0);
    EXPECT_EQ(vector_get_coef(*dense, 5), 50.0);
    marks->elm(5) = -1;
    EXPECT_EQ(vector_get_coef(*marks, 5), 0.0);
    marks->elm(5) = 2;
    EXPECT_EQ(vector_get_coef(*marks, 5), 50.0);
    list->ind(1) = 4;
    list->ind(2) = 5;
    list->nz = 1;
    EXPECT_EQ(vector_get_coef(*list, 5), 0.0);
    list->nz = 2;
    EXPECT_EQ(vector_get_coef(*list, 5), 50.0);
    list->nz = -1;
    EXPECT_EQ(vector_get_coef(*list, 4), 0.0);
    list->nz = 0;
}

TEST_F(VectorElements, AddNzTwiceListsTheIndexOnce) {
    PROCEDURE(vector_add_nz, "RNS_11vector_type6vectorERKiNS_12optional_refIKdEE");
    for (made_vector* v : {&marks, &list}) {
        vector_add_nz(**v, 5, 1.5);
        vector_add_nz(**v, 2, 0.0);
        vector_add_nz(**v, 5, {});
        EXPECT_EQ((*v)->coef(5), 1.5);
        vector_add_nz(**v, 5, 2.5);
        EXPECT_THAT(listing(**v), ElementsAre(5, 2));
        EXPECT_EQ((*v)->coef(5), 2.5);
        EXPECT_EQ((*v)->coef(2), 0.0);
    }
    EXPECT_EQ(marks->elm(5), 1);
    EXPECT_EQ(marks->elm(2), 1);
    EXPECT_EQ(marks->elm(3), 0);
}

TEST_F(VectorElements, AddNzWithoutAValueListsANewIndexAndKeepsItsCoefficient) {
    PROCEDURE(vector_add_nz, "RNS_11vector_type6vectorERKiNS_12optional_refIKdEE");
    for (made_vector* v : {&marks, &list}) {
        vector_add_nz(**v, 7, {});
        EXPECT_THAT(listing(**v), ElementsAre(7));
        EXPECT_EQ((*v)->coef(7), 70.0);
    }
    made_vector support(n, 0, 0, 1);
    vector_add_nz(*support, 7, {});
    EXPECT_THAT(listing(*support), ElementsAre(7));
}

TEST_F(VectorElements, AddNzOnADenseVectorStoresTheCoefficient) {
    PROCEDURE(vector_add_nz, "RNS_11vector_type6vectorERKiNS_12optional_refIKdEE");
    vector_add_nz(*dense, 7, 1.0);
    vector_add_nz(*dense, 8, {});
    EXPECT_EQ(dense->coef(7), 1.0);
    EXPECT_EQ(dense->coef(8), 80.0);
    EXPECT_EQ(dense->nz, 0);
}

TEST_F(VectorElements, AddNzAppendsAListedIndexWithoutAMarkAgain) {
    PROCEDURE(vector_add_nz, "RNS_11vector_type6vectorERKiNS_12optional_refIKdEE");
    vector_add_nz(*marks, 4, 1.0);
    marks->elm(4) = -2;
    vector_add_nz(*marks, 4, 3.0);
    EXPECT_THAT(listing(*marks), ElementsAre(4, 4));
    EXPECT_EQ(marks->elm(4), 1);
    EXPECT_EQ(marks->coef(4), 3.0);
}

TEST_F(VectorElements, AddNzFillsTheListUpToItsLastPosition) {
    PROCEDURE(vector_add_nz, "RNS_11vector_type6vectorERKiNS_12optional_refIKdEE");
    for (std::int32_t j = n; j >= 1; --j) {
        vector_add_nz(*marks, j, {});
        vector_add_nz(*list, j, {});
    }
    EXPECT_THAT(listing(*marks), ElementsAre(9, 8, 7, 6, 5, 4, 3, 2, 1));
    EXPECT_THAT(listing(*list), ElementsAre(9, 8, 7, 6, 5, 4, 3, 2, 1));
}

// The lengths are next to those at which the search changes its block size.
TEST(VectorAddNz, FindsAnIndexAnywhereInALongList) {
    PROCEDURE(vector_add_nz, "RNS_11vector_type6vectorERKiNS_12optional_refIKdEE");
    for (const std::int32_t length :
         {0, 1, 7, 8, 9, 15, 16, 17, 63, 64, 65, 71, 72, 73, 79, 80, 127, 128, 137}) {
        made_vector list(200, 0, 1);
        for (std::int32_t k = 1; k <= length; ++k) {
            list->ind(k) = 201 - k;
        }
        list->nz = length;
        for (std::int32_t k = 1; k <= length; ++k) {
            vector_add_nz(*list, 201 - k, 0.5 * k);
            ASSERT_EQ(list->nz, length) << k;
            ASSERT_EQ(list->coef(201 - k), 0.5 * k);
        }
        vector_add_nz(*list, 5, {});
        ASSERT_EQ(list->nz, length + 1);
        ASSERT_EQ(list->ind(length + 1), 5);
        // The index at the position behind the last entry is not listed.
        list->nz = length;
        vector_add_nz(*list, 5, 1.5);
        ASSERT_EQ(list->nz, length + 1);
        ASSERT_EQ(list->coef(5), 1.5);
    }
}

TEST_F(VectorElements, AnIndexMayBeAComponentOfTheRecord) {
    PROCEDURE(vector_add_nz, "RNS_11vector_type6vectorERKiNS_12optional_refIKdEE");
    PROCEDURE(vector_rem_nz, "RNS_11vector_type6vectorERKi");
    vector_add_nz(*marks, 3, {});
    vector_add_nz(*marks, marks->nz, marks->coef(3));
    EXPECT_THAT(listing(*marks), ElementsAre(3, 1));
    EXPECT_EQ(marks->coef(1), 30.0);
    vector_rem_nz(*marks, marks->nz);
    EXPECT_THAT(listing(*marks), ElementsAre(3));
    EXPECT_EQ(marks->elm(1), 0);
}

TEST_F(VectorElements, RemNzMovesTheLastEntryToTheRemovedPosition) {
    PROCEDURE(vector_rem_nz, "RNS_11vector_type6vectorERKi");
    marks.list({4, 6, 8});
    vector_rem_nz(*marks, 1);
    EXPECT_THAT(listing(*marks), ElementsAre(8, 6));
    EXPECT_EQ(marks->elm(4), 0);
    EXPECT_EQ(marks->elm(8), 1);
    EXPECT_EQ(marks->coef(4), 40.0);
    vector_rem_nz(*marks, 2);
    EXPECT_THAT(listing(*marks), ElementsAre(8));
    EXPECT_EQ(marks->elm(6), 0);
}

TEST_F(VectorElements, CleanIndexUnmarksAndKeepsTheList) {
    PROCEDURE(vector_clean_index, "RNS_11vector_type6vectorE");
    marks.list({4, 6});
    marks->elm(5) = 1;
    vector_clean_index(*marks);
    EXPECT_THAT(listing(*marks), ElementsAre(4, 6));
    EXPECT_EQ(zktarn::vector_mod::vector_is_elm(*marks, 4), 0);
    EXPECT_EQ(zktarn::vector_mod::vector_is_elm(*marks, 6), 0);
    EXPECT_EQ(marks->elm(5), 1);
    EXPECT_EQ(marks->coef(4), 40.0);
}

TEST_F(VectorElements, ClearUnmarksAndEmptiesTheList) {
    PROCEDURE(vector_clear, "RNS_11vector_type6vectorE");
    marks.list({4, 6});
    marks->elm(5) = 1;
    vector_clear(*marks);
    EXPECT_EQ(marks->nz, 0);
    EXPECT_EQ(marks->elm(4), 0);
    EXPECT_EQ(marks->elm(6), 0);
    EXPECT_EQ(marks->elm(5), 1);
    EXPECT_EQ(marks->coef(4), 40.0);
}

TEST_F(VectorElements, ClearOfAnEmptyVectorWritesTheCountOnly) {
    PROCEDURE(vector_clear, "RNS_11vector_type6vectorE");
    marks->elm(5) = 1;
    marks->nz = -2;
    vector_clear(*marks);
    EXPECT_EQ(marks->nz, 0);
    EXPECT_EQ(marks->elm(5), 1);
}

TEST_F(VectorElements, TheSearchIgnoresIntegersBeforeAndBehindTheList) {
    PROCEDURE(vector_get_coef, "RKNS_11vector_type6vectorERKi");
    // The index is stored before and behind the list, and not in it.
    constexpr std::int32_t most = 140;
    for (std::int32_t length = 0; length <= most; ++length) {
        std::vector<std::int32_t> entries(most + 80, 5);
        std::fill_n(entries.begin() + 1, length, 6);
        std::vector<double> coefficients(n, 1.0);
        vector v;
        v.coef = {coefficients.data(), {n}, {1}};
        v.ind = {entries.data() + 1, {most}, {1}};
        v.nz = length;
        EXPECT_EQ(vector_get_coef(v, 5), 0.0) << length;
    }
}

TEST_F(VectorElements, TheSearchFindsEveryPositionOfALongList) {
    PROCEDURE(vector_get_coef, "RKNS_11vector_type6vectorERKi");
    for (std::int32_t count = 1; count <= 70; ++count) {
        made_vector v(100, 0, 1);
        for (std::int32_t k = 1; k <= count; ++k) {
            v->ind(k) = 101 - k;
            v->coef(101 - k) = k;
        }
        for (std::int32_t j = 1; j <= 100 - count; ++j) {
            v->coef(j) = -1.0;
        }
        v->nz = count;
        for (std::int32_t j = 1; j <= 100; ++j) {
            EXPECT_EQ(vector_get_coef(*v, j), j > 100 - count ? 101.0 - j : 0.0);
        }
    }
}

} // namespace
