#include "binary/checked/violations.hpp"

namespace {

using namespace zktarn::vector_mod;
using namespace zktarn::testing;

// Two vectors, one of which breaks an invariant
// ------------------------------------------------------------------------------------------

/// A change that makes a vector with the list 1, 3 invalid.
struct defect {
    const char* name;
    void (*make)(sample&);
};

class InvalidVector : public Violations, public testing::WithParamInterface<defect> {
protected:
    InvalidVector() {
        for (sample* each : {&invalid, &invalid_set, &valid}) {
            each->with({1, 3});
        }
        GetParam().make(invalid);
        GetParam().make(invalid_set);
    }

    sample invalid;
    sample invalid_set{support_only};
    sample valid;
};

TEST_P(InvalidVector, IsReportedAsTheFirstOfACombination) {
    EXPECT_REPORTED_FIRST(invalid, vectors_combine(invalid.v, valid.v, 1.0, 0.0, 0.5));
    EXPECT_REPORTED_FIRST(invalid_set, vectors_combine(invalid_set.v, valid.v, 1.0, 0.0, 0.5));
}

TEST_P(InvalidVector, IsReportedAsTheSecondOfACombination) {
    EXPECT_REPORTED_FIRST(valid, vectors_combine(valid.v, invalid.v, 1.0, 0.0, 0.5));
    EXPECT_REPORTED_FIRST(valid, vectors_combine(valid.v, invalid_set.v, 1.0, 0.0, 0.5));
}

TEST_P(InvalidVector, IsReportedAsTheFirstOfASymmetricDifference) {
    sample one;
    one.with({2});
    EXPECT_REPORTED_FIRST(invalid, vectors_calc_sym_diff(invalid.v, one.v));
    EXPECT_REPORTED_FIRST(invalid_set, vectors_calc_sym_diff(invalid_set.v, one.v));
}

TEST_P(InvalidVector, IsReportedAsEachArgumentOfAComparison) {
    EXPECT_REPORTED(static_cast<void>(vectors_are_identical(invalid.v, valid.v, 1.0)));
    EXPECT_REPORTED(static_cast<void>(vectors_are_identical(valid.v, invalid.v, 1.0)));
}

const defect defects[] = {
    {"MarkedAndNotListed", [](sample& s) { s.mark(2) = 1; }},
    {"ListedTwice", [](sample& s) { s.listed(2) = 1; }},
    {"MarksOfUnlistedIndices",
     [](sample& s) {
         s.listed(2) = 4;
         s.mark(1) = 0;
         s.mark(2) = 1;
     }},
    {"NegativeMark", [](sample& s) { s.mark(2) = -1; }},
    {"MarkOfTwo", [](sample& s) { s.mark(3) = 2; }},
    {"MarkOfTwoAndNotListed", [](sample& s) { s.mark(2) = 2; }},
    {"IndexAboveTheCapacity", [](sample& s) { s.listed(2) = n + 1; }},
    {"IndexBelowOne", [](sample& s) { s.listed(2) = 0; }},
    {"ShortList", [](sample& s) { s.v.ind.extent[0] = n - 1; }},
    {"ShortMarks", [](sample& s) { s.v.elm.extent[0] = n - 1; }},
};

// A combination and a comparison read a listed entry without a mark as 0.0, and a combination drops
// it from x. A symmetric difference requires the mark.
TEST_F(Violations, AnEntryWithoutAMarkIsReportedByASymmetricDifferenceOnly) {
    for (const arrays& has : {marks_mode, support_only}) {
        sample unmarked(has);
        unmarked.with({1, 3}).mark(3) = 0;
        sample valid;
        valid.with({2, 3});
        EXPECT_SILENT(vectors_combine(valid.v, unmarked.v, 1.0, 1.0, 0.0));
        EXPECT_SILENT(vectors_combine(unmarked.v, valid.v, 2.0, 1.0, 0.0));
    }
    sample unmarked;
    unmarked.with({1, 3}).mark(3) = 0;
    sample valid;
    valid.with({1, 3});
    EXPECT_SILENT(static_cast<void>(vectors_are_identical(unmarked.v, valid.v, 1.0)));
    EXPECT_SILENT(static_cast<void>(vectors_are_identical(valid.v, unmarked.v, 1.0)));
    EXPECT_REPORTED_FIRST(unmarked, vectors_calc_sym_diff(unmarked.v, valid.v));
}

INSTANTIATE_TEST_SUITE_P(, InvalidVector, testing::ValuesIn(defects),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(Violations, AMarkInAnEmptyVectorIsReported) {
    sample marked;
    marked.mark(2) = 1;
    sample valid;
    valid.with({1});
    EXPECT_REPORTED_FIRST(marked, vectors_combine(marked.v, valid.v, 1.0, 1.0, 0.0));
    EXPECT_REPORTED_FIRST(valid, vectors_combine(valid.v, marked.v, 1.0, 1.0, 0.0));
    EXPECT_REPORTED_FIRST(marked, vectors_calc_sym_diff(marked.v, valid.v));
}

TEST_F(Violations, ACountBeyondEitherListIsReported) {
    for (const arrays& has : {marks_mode, list_mode}) {
        sample beyond(has);
        beyond.with({1, 2, 3, 4, 5});
        sample large(marks_mode, 2 * n);
        large.with({1, 2, 3, 4, 5});
        sample empty(marks_mode, 2 * n);
        EXPECT_REPORTED_FIRST(beyond, vectors_combine(beyond.v, large.v, 1.0, 0.0, 0.5));
        EXPECT_REPORTED_FIRST(empty, vectors_combine(empty.v, beyond.v, 1.0, 1.0, 0.0));
        EXPECT_REPORTED_FIRST(empty, vectors_calc_sym_diff(empty.v, beyond.v));
        EXPECT_REPORTED(static_cast<void>(vectors_are_identical(beyond.v, large.v, 1.0)));
    }
    // The position beyond the list repeats a listed index, so only the count is a violation.
    sample twice(list_mode);
    twice.with({1, 2, 3, 4, 4});
    sample empty;
    EXPECT_REPORTED_FIRST(twice, vectors_combine(twice.v, empty.v, 1.0, 0.0, 0.5));
    sample large(marks_mode, 2 * n);
    EXPECT_REPORTED_FIRST(large, vectors_combine(large.v, twice.v, 1.0, 1.0, 0.0));
    EXPECT_REPORTED_FIRST(large, vectors_calc_sym_diff(large.v, twice.v));
}

TEST_F(Violations, AnIndexOutsideOfTheCapacityIsReportedInListMode) {
    for (const std::int32_t j : {0, n + 1}) {
        sample list(list_mode);
        list.with({1, j});
        sample valid;
        valid.with({1, 3});
        EXPECT_REPORTED_FIRST(list, vectors_combine(list.v, valid.v, 1.0, 0.0, 0.5)) << j;
        EXPECT_REPORTED_FIRST(valid, vectors_combine(valid.v, list.v, 1.0, 0.0, 0.5)) << j;
        EXPECT_REPORTED(static_cast<void>(vectors_are_identical(list.v, valid.v, 1.0))) << j;
    }
}

// Two valid vectors with different capacities, or without room for the result
// ------------------------------------------------------------------------------------------

TEST_F(Violations, AnIndexBeyondTheOtherCapacityIsReported) {
    sample large(marks_mode, 2 * n);
    large.with({n + 1});
    sample x;
    EXPECT_REPORTED_FIRST(x, vectors_combine(x.v, large.v, 1.0, 1.0, 0.0));
    EXPECT_REPORTED_FIRST(x, vectors_calc_sym_diff(x.v, large.v));
    sample other;
    other.with({1});
    EXPECT_REPORTED(static_cast<void>(vectors_are_identical(large.v, other.v, 1.0)));
}

TEST_F(Violations, CapacitiesMayDiffer) {
    for (const std::int32_t capacity : {n - 1, 2 * n}) {
        sample x;
        sample y(marks_mode, capacity);
        x.with({1, 3});
        y.with({3, 2});
        EXPECT_SILENT(vectors_combine(x.v, y.v, 1.0, 1.0, 0.0));
        EXPECT_SILENT(vectors_calc_sym_diff(x.v, y.v));
        sample z;
        z.with({3, 2});
        EXPECT_SILENT(static_cast<void>(vectors_are_identical(y.v, z.v, 1.0)));
        EXPECT_SILENT(static_cast<void>(vectors_are_identical(z.v, y.v, 1.0)));
    }
}

// A list of the full capacity suffices for every result, unless x or y lists an index twice.
TEST_F(Violations, AListTooShortForASumIsReported) {
    sample y;
    y.with({4});
    sample full(list_mode);
    full.with({1, 2, 3, 3});
    EXPECT_REPORTED_FIRST(full, vectors_combine(full.v, y.v, 1.0, 1.0, 0.0));
    sample shorter(list_mode);
    shorter.with({1, 2, 3});
    EXPECT_SILENT(vectors_combine(shorter.v, y.v, 1.0, 1.0, 0.0));
    sample twice(list_mode);
    twice.with({4, 4});
    sample sum;
    sum.with({1, 2, 3});
    EXPECT_REPORTED_FIRST(sum, vectors_combine(sum.v, twice.v, 1.0, 1.0, 0.0));
    // beta = 0 adds no index.
    sample same;
    same.with({1, 2, 3});
    EXPECT_SILENT(vectors_combine(same.v, twice.v, 1.0, 0.0, 0.0));
}

TEST_F(Violations, AListTooShortForASymmetricDifferenceIsReported) {
    sample twice(list_mode);
    twice.with({4, 4});
    sample x;
    x.with({1, 2, 3});
    EXPECT_REPORTED_FIRST(x, vectors_calc_sym_diff(x.v, twice.v));
    sample shorter;
    shorter.with({1, 2});
    EXPECT_SILENT(vectors_calc_sym_diff(shorter.v, twice.v));
    sample empty;
    sample all(list_mode);
    all.with({4, 3, 2, 1});
    EXPECT_SILENT(vectors_calc_sym_diff(empty.v, all.v));
}

// Absent arrays
// ------------------------------------------------------------------------------------------

TEST_F(ViolationsDeathTest, AbsentMarksOrListsAreReportedByASymmetricDifference) {
    sample y;
    y.with({1});
    for (const arrays& has : {list_mode, marks_without_list, marks_alone}) {
        sample x(has);
        EXPECT_REPORTED_ABSENCE(vectors_calc_sym_diff(x.v, y.v));
    }
    sample x;
    sample dense(dense_mode);
    dense.with({1});
    EXPECT_REPORTED_ABSENCE(vectors_calc_sym_diff(x.v, dense.v));
}

TEST_F(ViolationsDeathTest, AbsentListsAreReportedByACombination) {
    sample valid;
    valid.with({1});
    for (const arrays& has : {dense_mode, marks_without_list}) {
        sample counts(has);
        counts.with({1});
        EXPECT_REPORTED_ABSENCE(vectors_combine(valid.v, counts.v, 1.0, 1.0, 0.0));
        EXPECT_REPORTED_ABSENCE(vectors_combine(counts.v, valid.v, 1.0, 1.0, 0.0));
    }
    sample marks(marks_without_list);
    EXPECT_REPORTED_ABSENCE(vectors_combine(marks.v, valid.v, 1.0, 1.0, 0.0));
}

TEST_F(ViolationsDeathTest, AbsentArraysAreReportedByAComparison) {
    sample valid;
    valid.with({1});
    for (const arrays& has : {support_only, index_set, dense_mode, marks_without_list}) {
        sample a(has);
        a.with({1});
        EXPECT_REPORTED_ABSENCE(static_cast<void>(vectors_are_identical(a.v, valid.v, 0.0)));
    }
    for (const arrays& has : {support_only, list_mode, dense_mode, marks_without_list}) {
        sample b(has);
        b.with({1});
        EXPECT_REPORTED_ABSENCE(static_cast<void>(vectors_are_identical(valid.v, b.v, 0.0)));
    }
}

TEST_F(Violations, EmptyVectorsNeedNoArrays) {
    sample y;
    y.with({1});
    for (const arrays& has : {marks_mode, list_mode, dense_mode, support_only, index_set,
                              marks_without_list, marks_alone, arrays{false, false, false}}) {
        sample x(has);
        sample empty(has);
        EXPECT_SILENT(vectors_combine(x.v, empty.v, 2.0, 1.0, 0.0));
        EXPECT_SILENT(vectors_combine(y.v, empty.v, 2.0, 1.0, 0.0));
        EXPECT_SILENT(vectors_calc_sym_diff(x.v, empty.v));
        EXPECT_SILENT(static_cast<void>(vectors_are_identical(x.v, empty.v, 0.0)));
    }
    // A vector without a list may have marks.
    sample marks(marks_without_list);
    marks.mark(2) = 1;
    EXPECT_SILENT(vectors_combine(marks.v, marks.v, 2.0, 1.0, 0.0));
    vector x;
    vector empty;
    x.nz = empty.nz = -1;
    EXPECT_SILENT(vectors_combine(x, empty, 2.0, 1.0, 0.0));
    EXPECT_SILENT(vectors_calc_sym_diff(x, empty));
    EXPECT_SILENT(static_cast<void>(vectors_are_identical(x, empty, 0.0)));
}

// Valid pairs
// ------------------------------------------------------------------------------------------

TEST_F(Violations, ValidCombinationsAreNotReported) {
    sample y;
    y.with({4, 3, 2});
    sample listed(index_set);
    listed.with({2, 1});
    for (const arrays& has : {marks_mode, list_mode, support_only, index_set}) {
        sample x(has);
        x.with({1, 3});
        EXPECT_SILENT(vectors_combine(x.v, y.v, 2.0, 3.0, 0.0));
        EXPECT_SILENT(vectors_combine(x.v, listed.v, 1.0, 1.0, 0.0));
        EXPECT_SILENT(vectors_combine(x.v, x.v, 1.0, 1.0, 0.0));
    }
    sample dense(dense_mode);
    EXPECT_SILENT(vectors_combine(dense.v, y.v, 1.0, 1.0, 0.0));
    EXPECT_SILENT(vectors_combine(y.v, dense.v, 1.0, 1.0, 0.0));
}

TEST_F(Violations, ValidSymmetricDifferencesAreNotReported) {
    sample y;
    y.with({4, 3, 2});
    sample listed(index_set);
    listed.with({2, 1});
    for (const arrays& has : {marks_mode, support_only}) {
        sample x(has);
        x.with({1, 3});
        EXPECT_SILENT(vectors_calc_sym_diff(x.v, y.v));
        EXPECT_SILENT(vectors_calc_sym_diff(x.v, listed.v));
        EXPECT_SILENT(vectors_calc_sym_diff(x.v, x.v));
    }
    // Only the list of y is read, not its marks.
    sample x;
    y.mark(4) = 0;
    EXPECT_SILENT(vectors_calc_sym_diff(x.v, y.v));
}

TEST_F(Violations, ValidComparisonsAreNotReported) {
    sample b;
    b.with({1, 3});
    for (const arrays& has : {marks_mode, list_mode}) {
        sample a(has);
        a.with({3, 1});
        EXPECT_SILENT(static_cast<void>(vectors_are_identical(a.v, b.v, 1.0)));
    }
    EXPECT_SILENT(static_cast<void>(vectors_are_identical(b.v, b.v, 1.0)));
}

} // namespace
