// Linked with a library that is built with the checks, whatever the rest of the build has.
#include <cstdint>
#include <cstdlib>
#include <initializer_list>

#include <gtest/gtest.h>

#include "zktarn/vector/vector_mod.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn;
using namespace zktarn::vector_mod;

constexpr std::int32_t n = 4;

/// A vector whose arrays have room around them, so that a violation that is reported does no harm.
struct sample {
    explicit sample(bool marked = true, bool listed = true) {
        v.coef = {coef + 8, {n}, {1}};
        if (listed) {
            v.ind = {ind + 8, {n}, {1}};
        }
        if (marked) {
            v.elm = {elm + 8, {n}, {1}};
        }
    }
    sample(const sample&) = delete;
    sample& operator=(const sample&) = delete;

    /// Lists and marks elements.
    sample& with(std::initializer_list<std::int32_t> elements) {
        for (const std::int32_t j : elements) {
            ind[8 + v.nz++] = j;
            coef[8 + j - 1] = 2.5;
            elm[8 + j - 1] = 1;
        }
        return *this;
    }

    vector v;
    double coef[24] = {};
    std::int32_t ind[24] = {};
    std::int32_t elm[24] = {};
};

class Violations : public testing::Test {
protected:
    void SetUp() override {
        standin::reset();
        standin::set_assertion_handler([this] { ++reported; });
    }
    void TearDown() override { standin::reset(); }

    template <class Call>
    int reports(Call call) {
        reported = 0;
        call();
        return reported;
    }

    int reported = 0;
};

#define EXPECT_REPORTED(statement) EXPECT_GE(reports([&] { statement; }), 1) << #statement
#define EXPECT_SILENT(statement) EXPECT_EQ(reports([&] { statement; }), 0) << #statement

/// Ends the process at the first report: what follows would use an array that is not there.
#define EXPECT_REPORTED_ABSENCE(statement)                                                         \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            standin::set_assertion_handler([] { std::_Exit(3); });                                 \
            statement;                                                                             \
            std::_Exit(4);                                                                         \
        },                                                                                         \
        testing::ExitedWithCode(3), "")

TEST_F(Violations, ElementOutsideOfTheCapacity) {
    for (const std::int32_t j : {0, n + 1, -1}) {
        sample s;
        EXPECT_REPORTED(vector_set_coef(s.v, j, 1.0));
        EXPECT_REPORTED(vector_set_elm(s.v, j));
        EXPECT_REPORTED(vector_rem_elm(s.v, j));
        EXPECT_REPORTED(static_cast<void>(vector_is_elm(s.v, j)));
        EXPECT_REPORTED(static_cast<void>(vector_get_coef(s.v, j)));
        EXPECT_REPORTED(vector_add_nz(s.v, j, 1.0));
        sample list(false);
        EXPECT_REPORTED(static_cast<void>(vector_get_coef(list.v, j)));
        EXPECT_REPORTED(vector_add_nz(list.v, j));
        sample dense(false, false);
        EXPECT_REPORTED(static_cast<void>(vector_get_coef(dense.v, j)));
        EXPECT_REPORTED(vector_add_nz(dense.v, j, 1.0));
    }
    for (const std::int32_t j : {1, n}) {
        sample s;
        EXPECT_SILENT(vector_set_coef(s.v, j, 1.0));
        EXPECT_SILENT(vector_set_elm(s.v, j));
        EXPECT_SILENT(static_cast<void>(vector_is_elm(s.v, j)));
        EXPECT_SILENT(static_cast<void>(vector_get_coef(s.v, j)));
        EXPECT_SILENT(vector_rem_elm(s.v, j));
        EXPECT_SILENT(vector_add_nz(s.v, j, 1.0));
        sample list(false);
        EXPECT_SILENT(static_cast<void>(vector_get_coef(list.v, j)));
        EXPECT_SILENT(vector_add_nz(list.v, j));
        sample dense(false, false);
        EXPECT_SILENT(static_cast<void>(vector_get_coef(dense.v, j)));
        EXPECT_SILENT(vector_add_nz(dense.v, j, 1.0));
    }
}

TEST_F(Violations, PositionOutsideOfTheList) {
    sample s;
    s.with({2, 3});
    for (const std::int32_t k : {0, n + 1}) {
        EXPECT_REPORTED(static_cast<void>(vector_get_ind(s.v, k)));
        EXPECT_REPORTED(vector_set_ind(s.v, k, 1));
    }
    for (const std::int32_t k : {1, n}) {
        EXPECT_SILENT(static_cast<void>(vector_get_ind(s.v, k)));
    }
    EXPECT_REPORTED(vector_set_nz(s.v, n + 1));
    EXPECT_SILENT(vector_set_nz(s.v, n));
    sample two;
    two.with({2, 3});
    EXPECT_REPORTED(vector_rem_nz(two.v, 0));
    sample beyond;
    beyond.with({2, 3});
    EXPECT_REPORTED(vector_rem_nz(beyond.v, 3));
    sample fine;
    fine.with({2, 3});
    EXPECT_SILENT(vector_rem_nz(fine.v, 2));
    EXPECT_SILENT(vector_rem_nz(fine.v, 1));
}

TEST_F(Violations, NoRoomInTheList) {
    sample full;
    full.with({1, 2, 3, 4});
    full.elm[8 + 3] = 0;
    EXPECT_REPORTED(vector_add_nz(full.v, 4, 1.0));
    sample last;
    last.with({1, 2, 3});
    EXPECT_SILENT(vector_add_nz(last.v, 4, 1.0));
    // A member takes no room.
    EXPECT_SILENT(vector_add_nz(last.v, 4, 2.0));
    // The whole capacity is room enough for whatever y lists, unless x lists something else.
    sample y;
    y.with({4});
    sample list(false);
    list.with({1, 2, 3, 3});
    EXPECT_REPORTED(vectors_combine(list.v, y.v, 1.0, 1.0, 0.0));
    sample room(false);
    room.with({1, 2, 3});
    EXPECT_SILENT(vectors_combine(room.v, y.v, 1.0, 1.0, 0.0));
}

TEST_F(Violations, NoRoomForWhatIsListedTwice) {
    sample twice(false);
    twice.with({4, 4});
    sample x;
    x.with({1, 2, 3});
    EXPECT_REPORTED(vectors_calc_sym_diff(x.v, twice.v));
    sample sum;
    sum.with({1, 2, 3});
    EXPECT_REPORTED(vectors_combine(sum.v, twice.v, 1.0, 1.0, 0.0));
    // Nothing is added, so nothing is listed.
    sample same;
    same.with({1, 2, 3});
    EXPECT_SILENT(vectors_combine(same.v, twice.v, 1.0, 0.0, 0.0));
}

using ViolationsDeathTest = Violations;

TEST_F(ViolationsDeathTest, ArrayThatTheModeIsWithout) {
    sample list(false);
    sample dense(false, false);
    sample fine;
    fine.with({1});
    list.with({1});
    EXPECT_REPORTED_ABSENCE(static_cast<void>(vector_is_elm(list.v, 1)));
    EXPECT_REPORTED_ABSENCE(vector_set_elm(list.v, 1));
    EXPECT_REPORTED_ABSENCE(vector_rem_nz(list.v, 1));
    EXPECT_REPORTED_ABSENCE(vector_clear(list.v));
    EXPECT_REPORTED_ABSENCE(vector_set_ind(dense.v, 1, 1));
    EXPECT_REPORTED_ABSENCE(vectors_calc_sym_diff(list.v, fine.v));
    EXPECT_REPORTED_ABSENCE(static_cast<void>(vectors_are_identical(list.v, list.v, 0.0)));
    fine.v.coef.data = nullptr;
    EXPECT_REPORTED_ABSENCE(vector_set_coef(fine.v, 1, 1.0));
    EXPECT_REPORTED_ABSENCE(vector_rem_zeros(fine.v));
    EXPECT_REPORTED_ABSENCE(vector_mod2(fine.v, 0.0));
    dense.v.nz = 1;
    EXPECT_REPORTED_ABSENCE(vector_rem_zeros(dense.v));
    EXPECT_REPORTED_ABSENCE(vectors_combine(fine.v, dense.v, 1.0, 1.0, 0.0));
}

/// What spoils a vector that lists 1 and 3.
class Unsound : public Violations, public testing::WithParamInterface<void (*)(sample&)> {
protected:
    Unsound() {
        spoiled.with({1, 3});
        GetParam()(spoiled);
        sound.with({1, 3});
    }

    sample spoiled;
    sample sound;
};

TEST_P(Unsound, IsReportedAsTheFirstOfTwo) {
    EXPECT_REPORTED(vectors_combine(spoiled.v, sound.v, 1.0, 0.0, 0.5));
}

TEST_P(Unsound, IsReportedAsTheSecondOfTwo) {
    EXPECT_REPORTED(vectors_combine(sound.v, spoiled.v, 1.0, 0.0, 0.5));
}

TEST_P(Unsound, IsReportedByTheSymmetricDifference) {
    sample one;
    one.with({2});
    EXPECT_REPORTED(vectors_calc_sym_diff(spoiled.v, one.v));
}

TEST_P(Unsound, IsReportedByTheComparison) {
    EXPECT_REPORTED(static_cast<void>(vectors_are_identical(spoiled.v, sound.v, 1.0)));
    EXPECT_REPORTED(static_cast<void>(vectors_are_identical(sound.v, spoiled.v, 1.0)));
}

INSTANTIATE_TEST_SUITE_P(
    , Unsound,
    testing::Values([](sample& s) { s.elm[8 + 2] = 0; },      // listed and not marked
                    [](sample& s) { s.elm[8 + 1] = 1; },      // marked and not listed
                    [](sample& s) { s.ind[8 + 1] = 1; },      // listed twice
                    [](sample& s) { s.elm[8 + 1] = -1; },     // neither 0 nor 1
                    [](sample& s) { s.elm[8 + 2] = 2; },      //
                    [](sample& s) { s.ind[8 + 1] = 5; },      // no element of it
                    [](sample& s) { s.ind[8 + 1] = 0; },      //
                    [](sample& s) { s.v.ind.extent[0] = 3; }, // arrays of two lengths
                    [](sample& s) { s.v.elm.extent[0] = 3; }));

TEST_F(Violations, SoundVectorsPass) {
    sample x;
    sample y;
    sample list(false);
    sample dense(false, false);
    x.with({1, 3});
    y.with({4, 3, 2});
    list.with({2, 1});
    EXPECT_SILENT(vectors_combine(x.v, y.v, 2.0, 3.0, 0.0));
    EXPECT_SILENT(vectors_combine(x.v, x.v, 1.0, 1.0, 0.0));
    EXPECT_SILENT(vectors_combine(x.v, list.v, 1.0, 1.0, 0.0));
    EXPECT_SILENT(vectors_combine(list.v, y.v, 1.0, 1.0, 0.0));
    EXPECT_SILENT(vectors_combine(dense.v, y.v, 1.0, 1.0, 0.0));
    EXPECT_SILENT(vectors_combine(x.v, dense.v, 1.0, 1.0, 0.0));
    EXPECT_SILENT(static_cast<void>(vectors_are_identical(x.v, y.v, 1.0)));
    EXPECT_SILENT(static_cast<void>(vectors_are_identical(y.v, y.v, 1.0)));
    EXPECT_SILENT(vector_rem_zeros(x.v));
    EXPECT_SILENT(vector_rem_zeros(list.v));
    EXPECT_SILENT(vector_mod2(list.v, 1e-9));
    EXPECT_SILENT(vector_mod2(x.v, 1e-9));
    EXPECT_SILENT(vectors_calc_sym_diff(y.v, y.v));
    EXPECT_SILENT(vectors_calc_sym_diff(y.v, x.v));
    EXPECT_SILENT(vector_clear(y.v));
}

} // namespace
