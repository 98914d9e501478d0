// Built twice: with the checks, and without.
#include "zktarn/types.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/host_log.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::testing::assert_of;
using zktarn::testing::host_log;

#ifdef ZKTARN_CHECKED
constexpr bool checked = true;
#else
constexpr bool checked = false;
#endif

/// What an access reported.
template <class Access>
std::vector<zktarn::testing::host_call> reports(Access access) {
    const host_log host;
    zktarn::standin::set_assertion_handler([] {});
    access();
    return host.calls();
}

#define EXPECT_REPORTED(access)                                                                    \
    if (checked) {                                                                                 \
        EXPECT_THAT(reports([&] { access; }), ElementsAre(assert_of(false)));                      \
    } else {                                                                                       \
        EXPECT_THAT(reports([&] { access; }), IsEmpty());                                          \
    }

// Room around the arrays, so that an access out of range is one all the same.
double room[20] = {};

TEST(Check, ReportsAPositionOutsideOfAnArray) {
    const zktarn::array_1d<double> array{room + 8, {3}, {1}};
    EXPECT_REPORTED(static_cast<void>(array(0)));
    EXPECT_REPORTED(static_cast<void>(array(4)));
    EXPECT_THAT(reports([&] { array(1) = array(3); }), IsEmpty());
}

TEST(Check, ReportsAPositionOutsideOfAMatrix) {
    const zktarn::array_2d<double> array{room + 8, {2, 3}, {1, 1}};
    EXPECT_REPORTED(static_cast<void>(array(0, 1)));
    EXPECT_REPORTED(static_cast<void>(array(3, 1)));
    EXPECT_REPORTED(static_cast<void>(array(1, 0)));
    EXPECT_REPORTED(static_cast<void>(array(1, 4)));
    EXPECT_THAT(reports([&] { array(1, 1) = array(2, 3); }), IsEmpty());
}

TEST(Check, EvaluatesItsConditionInACheckedBuildOnly) {
    int evaluations = 0;
    const auto condition = [&] { return ++evaluations == 1; };
    static_cast<void>(condition);
    ZKTARN_CHECK(condition());
    EXPECT_EQ(evaluations, checked ? 1 : 0);
}

} // namespace
