#include "binary/checked/violations.hpp"

namespace {

using namespace zktarn::vector_mod;
using namespace zktarn::testing;

/// A procedure that reads the list of one vector and its coefficients.
struct walk {
    const char* name;
    void (*call)(vector&);
};

class WalkViolations : public Violations, public testing::WithParamInterface<walk> {
protected:
    static void call(sample& s) { GetParam().call(s.v); }
};

TEST_P(WalkViolations, ArraysOfDifferentLengthsAreReported) {
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

TEST_P(WalkViolations, AListedIndexOutsideOfTheCapacityIsReported) {
    for (const arrays& has : {marks_mode, list_mode}) {
        for (const std::int32_t j : {0, n + 1}) {
            sample s(has);
            s.with({1, j});
            EXPECT_REPORTED_FIRST(s, call(s)) << j;
        }
    }
}

TEST_P(WalkViolations, ACountBeyondTheListIsReported) {
    for (const arrays& has : {marks_mode, list_mode}) {
        sample s(has);
        s.with({1, 2, 3, 4, 4});
        EXPECT_REPORTED_FIRST(s, call(s));
    }
}

TEST_P(WalkViolations, AValidListIsNotReported) {
    for (const arrays& has : {marks_mode, list_mode}) {
        sample full(has);
        full.with({4, 1, 3, 2});
        EXPECT_SILENT(call(full));
    }
    // The procedure drops a listed entry without a mark.
    sample unmarked;
    unmarked.with({1, 2}).mark(2) = 0;
    EXPECT_SILENT(call(unmarked));
}

TEST_P(WalkViolations, AnEmptyVectorNeedsNoArrays) {
    sample nothing({false, false, false});
    EXPECT_SILENT(call(nothing));
    vector untouched;
    EXPECT_SILENT(GetParam().call(untouched));
}

using WalkViolationsDeathTest = WalkViolations;

TEST_P(WalkViolationsDeathTest, AbsentCoefficientsOrListAreReported) {
    for (const arrays& has : {support_only, index_set, marks_without_list, dense_mode}) {
        sample s(has);
        s.with({1});
        EXPECT_REPORTED_ABSENCE(call(s));
    }
}

const walk walks[] = {
    {"RemZeros", [](vector& v) { vector_rem_zeros(v); }},
    {"Mod2", [](vector& v) { vector_mod2(v, 1e-9); }},
    {"Mod2WithALargeTolerance", [](vector& v) { vector_mod2(v, 0.75); }},
};

INSTANTIATE_TEST_SUITE_P(, WalkViolations, testing::ValuesIn(walks),
                         [](const auto& tested) { return tested.param.name; });
INSTANTIATE_TEST_SUITE_P(, WalkViolationsDeathTest, testing::ValuesIn(walks),
                         [](const auto& tested) { return tested.param.name; });

} // namespace
