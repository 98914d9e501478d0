#include "binary/checked/violations.hpp"

namespace {

using namespace zktarn::vector_mod;
using namespace zktarn::testing;

// Procedures on one index or one position of the list
// ------------------------------------------------------------------------------------------

/// A procedure whose argument is an index or a list position, 1 to n; arrays with which it works;
/// and arrays of which one that it needs is absent.
struct procedure {
    const char* name;
    arrays sufficient;
    arrays insufficient;
    void (*call)(vector&, std::int32_t);
};

class ElementViolations : public Violations, public testing::WithParamInterface<procedure> {};

TEST_P(ElementViolations, AnIndexOutsideOfTheCapacityIsReported) {
    for (const std::int32_t j : {0, n + 1, -1}) {
        sample s(GetParam().sufficient);
        EXPECT_REPORTED(GetParam().call(s.v, j)) << j;
    }
}

TEST_P(ElementViolations, AnIndexFrom1ToTheCapacityIsNotReported) {
    for (const std::int32_t j : {1, n}) {
        sample s(GetParam().sufficient);
        EXPECT_SILENT(GetParam().call(s.v, j)) << j;
        sample member(GetParam().sufficient);
        member.with({j});
        EXPECT_SILENT(GetParam().call(member.v, j)) << j;
    }
}

using ElementViolationsDeathTest = ElementViolations;

TEST_P(ElementViolationsDeathTest, AnAbsentArrayIsReported) {
    sample s(GetParam().insufficient);
    s.with({1});
    EXPECT_REPORTED_ABSENCE(GetParam().call(s.v, 1));
}

void set_coef(vector& v, std::int32_t j) {
    vector_set_coef(v, j, 1.0);
}
void get_coef(vector& v, std::int32_t j) {
    static_cast<void>(vector_get_coef(v, j));
}
void is_elm(vector& v, std::int32_t j) {
    static_cast<void>(vector_is_elm(v, j));
}
void set_elm(vector& v, std::int32_t j) {
    vector_set_elm(v, j);
}
void rem_elm(vector& v, std::int32_t j) {
    vector_rem_elm(v, j);
}
void get_ind(vector& v, std::int32_t k) {
    static_cast<void>(vector_get_ind(v, k));
}
void set_ind(vector& v, std::int32_t k) {
    vector_set_ind(v, k, 1);
}
void add_nz(vector& v, std::int32_t j) {
    vector_add_nz(v, j, 1.0);
}

constexpr arrays none{false, false, false};

const procedure procedures[] = {
    {"SetCoef", marks_mode, support_only, set_coef},
    {"GetCoefInMarksMode", marks_mode, support_only, get_coef},
    {"GetCoefInListMode", list_mode, index_set, get_coef},
    {"GetCoefInDenseMode", dense_mode, none, get_coef},
    {"IsElm", marks_mode, list_mode, is_elm},
    {"SetElm", marks_mode, list_mode, set_elm},
    {"RemElm", marks_mode, list_mode, rem_elm},
    {"GetInd", list_mode, dense_mode, get_ind},
    {"SetInd", list_mode, dense_mode, set_ind},
    {"AddNzInMarksMode", marks_mode, support_only, add_nz},
    {"AddNzInListMode", list_mode, index_set, add_nz},
    {"AddNzInDenseMode", dense_mode, none, add_nz},
};

INSTANTIATE_TEST_SUITE_P(, ElementViolations, testing::ValuesIn(procedures),
                         [](const auto& tested) { return tested.param.name; });
INSTANTIATE_TEST_SUITE_P(, ElementViolationsDeathTest, testing::ValuesIn(procedures),
                         [](const auto& tested) { return tested.param.name; });

// Without a value, vector_add_nz does not need coefficients.
TEST_F(Violations, AddingWithoutAValueNeedsNoCoefficients) {
    for (const arrays& has : {marks_mode, support_only, list_mode, index_set}) {
        for (const std::int32_t j : {0, n + 1, -1}) {
            sample s(has);
            EXPECT_REPORTED(vector_add_nz(s.v, j));
        }
        for (const std::int32_t j : {1, n}) {
            sample s(has);
            EXPECT_SILENT(vector_add_nz(s.v, j));
        }
    }
    sample nothing(none);
    EXPECT_SILENT(vector_add_nz(nothing.v, 1));
}

TEST_F(ViolationsDeathTest, AddingWithMarksButWithoutAListIsReported) {
    sample s(marks_without_list);
    EXPECT_REPORTED_ABSENCE(vector_add_nz(s.v, 1));
}

// The coefficient of an index that is not a member is not read.
TEST_F(Violations, GettingAnAbsentEntryNeedsNoCoefficients) {
    sample marked(support_only);
    EXPECT_SILENT(static_cast<void>(vector_get_coef(marked.v, n)));
    sample listed(index_set);
    EXPECT_SILENT(static_cast<void>(vector_get_coef(listed.v, n)));
    EXPECT_REPORTED(static_cast<void>(vector_get_coef(listed.v, n + 1)));
}

TEST_F(ViolationsDeathTest, AnElementOfAnAbsentMatrixIsReported) {
    const zktarn::array_2d<double> absent{nullptr, {n, n}, {1, 1}};
    EXPECT_REPORTED_ABSENCE(static_cast<void>(absent(1, n)));
}

TEST_F(Violations, AddingToAFullListIsReported) {
    sample full;
    full.with({1, 2, 3, 4}).mark(4) = 0;
    EXPECT_REPORTED(vector_add_nz(full.v, 4, 1.0));
    sample last;
    last.with({1, 2, 3});
    EXPECT_SILENT(vector_add_nz(last.v, 4, 1.0));
    // An index that is already a member needs no new position.
    EXPECT_SILENT(vector_add_nz(last.v, 4, 2.0));
    sample full_list(list_mode);
    full_list.with({1, 2, 3, 3});
    EXPECT_REPORTED(vector_add_nz(full_list.v, 4, 1.0));
}

TEST_F(Violations, ACountBeyondTheListIsReported) {
    sample s;
    EXPECT_REPORTED(vector_set_nz(s.v, n + 1));
    EXPECT_SILENT(vector_set_nz(s.v, n));
    EXPECT_SILENT(vector_set_nz(s.v, 0));
    // A vector without a list ignores its count.
    sample dense(dense_mode);
    EXPECT_SILENT(vector_set_nz(dense.v, 2 * n));
}

TEST_F(Violations, RemovalOfAPositionBeyondTheCountIsReported) {
    for (const std::int32_t k : {0, 3, n + 1, -1}) {
        sample s;
        s.with({2, 3});
        EXPECT_REPORTED(vector_rem_nz(s.v, k)) << k;
    }
    sample s;
    s.with({2, 3});
    EXPECT_SILENT(vector_rem_nz(s.v, 2));
    EXPECT_SILENT(vector_rem_nz(s.v, 1));
    EXPECT_REPORTED(vector_rem_nz(s.v, 1));
}

TEST_F(Violations, RemovalOfAnIndexOutsideOfTheCapacityIsReported) {
    for (const std::int32_t j : {0, n + 1}) {
        sample s;
        s.with({j});
        EXPECT_REPORTED(vector_rem_nz(s.v, 1)) << j;
    }
}

TEST_F(ViolationsDeathTest, RemovalOutsideOfMarksModeIsReported) {
    sample list(list_mode);
    list.with({1});
    EXPECT_REPORTED_ABSENCE(vector_rem_nz(list.v, 1));
    sample marks(marks_without_list);
    marks.with({1});
    EXPECT_REPORTED_ABSENCE(vector_rem_nz(marks.v, 1));
}

// Procedures that unmark every listed index
// ------------------------------------------------------------------------------------------

/// vector_clean_index and vector_clear, which unmark the listed indices.
class UnmarkingViolations : public Violations,
                            public testing::WithParamInterface<void (*)(vector&)> {};

TEST_P(UnmarkingViolations, AListedIndexOutsideOfTheCapacityIsReported) {
    for (const std::int32_t j : {0, n + 1}) {
        sample s;
        s.with({1, j});
        EXPECT_REPORTED(GetParam()(s.v)) << j;
    }
}

TEST_P(UnmarkingViolations, ACountBeyondTheListIsReported) {
    sample s;
    s.with({1, 2, 3, 4, 1});
    EXPECT_REPORTED(GetParam()(s.v));
}

TEST_P(UnmarkingViolations, AValidListOrAnEmptyVectorIsNotReported) {
    sample s;
    s.with({1, 2, 3, 4});
    EXPECT_SILENT(GetParam()(s.v));
    for (const arrays& has : {marks_mode, list_mode, dense_mode, none}) {
        sample empty(has);
        EXPECT_SILENT(GetParam()(empty.v));
    }
}

using UnmarkingViolationsDeathTest = UnmarkingViolations;

TEST_P(UnmarkingViolationsDeathTest, AListOutsideOfMarksModeIsReported) {
    sample list(list_mode);
    list.with({1});
    EXPECT_REPORTED_ABSENCE(GetParam()(list.v));
    sample marks(marks_without_list);
    marks.with({1});
    EXPECT_REPORTED_ABSENCE(GetParam()(marks.v));
}

void clean_index(vector& v) {
    vector_clean_index(v);
}
void clear(vector& v) {
    vector_clear(v);
}

const auto name_of_unmarking = [](const auto& tested) {
    return tested.param == clear ? "Clear" : "CleanIndex";
};
INSTANTIATE_TEST_SUITE_P(, UnmarkingViolations, testing::Values(clean_index, clear),
                         name_of_unmarking);
INSTANTIATE_TEST_SUITE_P(, UnmarkingViolationsDeathTest, testing::Values(clean_index, clear),
                         name_of_unmarking);

// Procedures that drop entries
// ------------------------------------------------------------------------------------------

/// A procedure that drops listed entries, depending on their coefficients.
struct compaction {
    const char* name;
    void (*call)(vector&);
};

class CompactionViolations : public Violations, public testing::WithParamInterface<compaction> {
protected:
    static void call(sample& s) { GetParam().call(s.v); }
};

TEST_P(CompactionViolations, ArraysOfDifferentLengthsAreReported) {
    sample list;
    list.with({1}).v.ind.extent[0] = n - 1;
    EXPECT_REPORTED_FIRST(list, call(list));
    sample marks;
    marks.with({1}).v.elm.extent[0] = n - 1;
    EXPECT_REPORTED_FIRST(marks, call(marks));
    sample unmarked(list_mode);
    unmarked.with({1}).v.ind.extent[0] = n + 1;
    EXPECT_REPORTED_FIRST(unmarked, call(unmarked));
}

TEST_P(CompactionViolations, AListedIndexOutsideOfTheCapacityIsReported) {
    for (const arrays& has : {marks_mode, list_mode}) {
        for (const std::int32_t j : {0, n + 1}) {
            sample s(has);
            s.with({1, j});
            EXPECT_REPORTED_FIRST(s, call(s)) << j;
        }
    }
}

TEST_P(CompactionViolations, ACountBeyondTheListIsReported) {
    for (const arrays& has : {marks_mode, list_mode}) {
        sample s(has);
        s.with({1, 2, 3, 4, 4});
        EXPECT_REPORTED_FIRST(s, call(s));
    }
}

TEST_P(CompactionViolations, AValidListIsNotReported) {
    for (const arrays& has : {marks_mode, list_mode}) {
        sample full(has);
        full.with({4, 1, 3, 2});
        EXPECT_SILENT(call(full));
    }
    // A listed entry without a mark is valid: the procedure drops it.
    sample unmarked;
    unmarked.with({1, 2}).mark(2) = 0;
    EXPECT_SILENT(call(unmarked));
}

TEST_P(CompactionViolations, AnEmptyVectorNeedsNoArrays) {
    sample nothing({false, false, false});
    EXPECT_SILENT(call(nothing));
    vector untouched;
    EXPECT_SILENT(GetParam().call(untouched));
}

using CompactionViolationsDeathTest = CompactionViolations;

TEST_P(CompactionViolationsDeathTest, AbsentCoefficientsOrListAreReported) {
    for (const arrays& has : {support_only, index_set, marks_without_list, dense_mode}) {
        sample s(has);
        s.with({1});
        EXPECT_REPORTED_ABSENCE(call(s));
    }
}

const compaction compactions[] = {
    {"RemZeros", [](vector& v) { vector_rem_zeros(v); }},
    {"Mod2", [](vector& v) { vector_mod2(v, 1e-9); }},
    {"Mod2WithALargeTolerance", [](vector& v) { vector_mod2(v, 0.75); }},
};

INSTANTIATE_TEST_SUITE_P(, CompactionViolations, testing::ValuesIn(compactions),
                         [](const auto& tested) { return tested.param.name; });
INSTANTIATE_TEST_SUITE_P(, CompactionViolationsDeathTest, testing::ValuesIn(compactions),
                         [](const auto& tested) { return tested.param.name; });

} // namespace
