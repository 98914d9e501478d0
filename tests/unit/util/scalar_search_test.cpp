#include "zktarn/util/scalar_search.hpp"

#include <cstdint>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/recorded_set.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::flag;
using zktarn::optional_ref;
using zktarn::testing::element;
using zktarn::testing::recorded_set;
using zktarn::util::find_scalar_integral;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double tiny = 5.562684646268003e-309;

/// The arguments of a search and its results. `calls` holds the indices for which the search called
/// the supplier of the elements.
struct search {
    std::vector<element> set;
    double eps = 1e-9;
    double max_den = 1000.0;
    double max_scalar = 1000.0;
    std::vector<std::int32_t> calls = {};
    flag found = -1;
    double scalar = -1.0;

    search& run(optional_ref<const flag> skip_marked = {},
                optional_ref<const flag> selected_only = {}) {
        recorded_set supplier{set};
        find_scalar_integral(supplier.size(), supplier, eps, max_den, max_scalar, found, scalar,
                             skip_marked, selected_only);
        calls = supplier.calls;
        return *this;
    }
};

void expect_scalar(const search& after, double expected) {
    EXPECT_EQ(after.found, 1);
    EXPECT_EQ(after.scalar, expected);
}

void expect_no_scalar(const search& after) {
    EXPECT_EQ(after.found, 0);
    EXPECT_EQ(after.scalar, 0.0);
}

TEST(ScalarSearch, StartsAtTheReciprocalOfTheSmallest) {
    search s{{{0.5}, {0.25}, {1.5}}};
    expect_scalar(s.run(), 4.0);
    EXPECT_THAT(s.calls, ElementsAre(1, 2, 3, 1, 2, 3));
}

TEST(ScalarSearch, DoublesTheScalarIfNoOddFactorMakesTheProductsIntegral) {
    search s{{{1.0 / 3.0}, {1.0 / 2.0}}};
    expect_scalar(s.run(), 6.0);
}

TEST(ScalarSearch, ConstructsTheScalarFromFractionsWhenBothTrialsFail) {
    search small{{{0.5}, {0.75}}, 1e-9, 5.0, 0.9};
    expect_no_scalar(small.run());
    // The calls of the first pass, of no trial, and of the construction, which fails at element 1.
    EXPECT_THAT(small.calls, ElementsAre(1, 2, 1));
    search wide{{{0.5}, {0.75}}, 1e-9, 100.0, 0.9};
    expect_no_scalar(wide.run());
    search allowed{{{0.5}, {0.75}}, 1e-9, 100.0, 20.0};
    expect_scalar(allowed.run(), 4.0);
}

TEST(ScalarSearch, ConstructionDividesTheMultipleByTheDivisor) {
    // Both trials fail, because their odd factors are at most 19.
    search s{{{10.0 / 23.0}, {20.0 / 29.0}}, 1e-9, 100.0, 66.8};
    expect_scalar(s.run(), 66.7);
}

TEST(ScalarSearch, AnEmptySetGivesTheReciprocalOfTheLargestReal) {
    expect_scalar(search{{}}.run(), tiny);
    expect_scalar(search{{{1e-10}, {0.0}, {-1e-9}}}.run(), tiny);
    EXPECT_EQ(tiny, 1.0 / std::numeric_limits<double>::max());
}

TEST(ScalarSearch, AnEmptySetGivesOneIfTheReciprocalExceedsTheBound) {
    search s{{}, 1e-9, 1000.0, 0.0};
    expect_scalar(s.run(), 1.0);
    search near_zero{{{1e-10}}, 1e-9, 1000.0, 0.0};
    expect_scalar(near_zero.run(), 1.0);
    EXPECT_THAT(near_zero.calls, ElementsAre(1, 1));
}

TEST(ScalarSearch, ExcludesMarkedElementsOnlyIfRequested) {
    search s{{{0.5}, {0.3, 1}}};
    s.run(1);
    EXPECT_EQ(s.found, 1);
    // The first trial still starts from the marked element, at 1 / 0.3.
    EXPECT_NE(s.scalar, 2.0);
    search absent{{{0.5}, {0.25, 1}}};
    expect_scalar(absent.run(), 4.0);
    expect_scalar(absent.run(0), 4.0);
    search counted{{{0.5}, {0.125, 256}}};
    expect_scalar(counted.run(-1), 8.0);
    search skipped{{{1.0}, {0.001, 1}}, 1e-9, 1000.0, 100.0};
    expect_scalar(skipped.run(1), 1.0);
    expect_no_scalar(skipped.run(0));
    expect_no_scalar(skipped.run());
}

TEST(ScalarSearch, ExcludesUnselectedElementsOnlyIfRequested) {
    search s{{{1.0, 0, 5}, {0.001, 0, 0}}, 1e-9, 1000.0, 100.0};
    expect_scalar(s.run({}, 1), 1.0);
    expect_no_scalar(s.run({}, 0));
    expect_no_scalar(s.run());
}

TEST(ScalarSearch, AProductBelowOneHalfIsNotIntegral) {
    search s{{{0.4}}, 0.1};
    s.run();
    expect_scalar(s, 2.5);
    // In the trial from 1.0, the product 0.4 does not count as 0, and the factor 5 makes it 2.
    search from_one{{{0.4}, {0.11, 1}}, 0.1, 1000.0, 6.0};
    expect_scalar(from_one.run(1), 5.0);
}

TEST(ScalarSearch, ExcludesValuesWithinTheTolerance) {
    search s{{{1e-9}, {0.5}, {-1e-9}}};
    expect_scalar(s.run(), 2.0);
}

TEST(ScalarSearch, FailsIfAnElementHasNoFraction) {
    search s{{{0.5}, {0.1234567}}, 1e-12, 100.0, 50.0};
    expect_no_scalar(s.run());
}

TEST(ScalarSearch, APassEndsAtTheFirstElementThatFails) {
    search s{{{1.0}, {0.1234567}, {2.0}}, 1e-12, 100.0, 50.0};
    expect_no_scalar(s.run());
    // The calls of the first pass, of a trial from 8.1 that fails at element 1, and of a trial from
    // 1.0 and the construction, which both fail at element 2.
    EXPECT_THAT(s.calls, ElementsAre(1, 2, 3, 1, 1, 2, 1, 2));
}

TEST(ScalarSearch, ReturnsForAnInfiniteBound) {
    search fine{{{0.5}}, 1e-9, 1000.0, inf};
    expect_scalar(fine.run(), 2.0);
    search endless{{{inf}}, 1e-9, 1000.0, inf};
    expect_no_scalar(endless.run());
    search never_integral{{{0.3}}, -1e-9, 1000.0, inf};
    expect_no_scalar(never_integral.run());
}

TEST(ScalarSearch, ExcludesNaN) {
    search s{{{std::numeric_limits<double>::quiet_NaN()}, {0.5}}};
    expect_scalar(s.run(), 2.0);
}

TEST(ScalarSearch, ANegativeCountIsAnEmptySet) {
    flag found = -1;
    double scalar = -1.0;
    const auto never = [](const std::int32_t&, double&, flag&, flag&) { ADD_FAILURE(); };
    find_scalar_integral(-3, never, 1e-9, 1000.0, 1000.0, found, scalar);
    EXPECT_EQ(found, 1);
    EXPECT_EQ(scalar, tiny);
}

} // namespace
