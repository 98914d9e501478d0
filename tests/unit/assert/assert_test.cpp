#include "zktarn/assert/assert_mod.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/host_log.hpp"

namespace {

using testing::ElementsAre;
using zktarn::flag;
using zktarn::assert_mod::tarnassert;
using zktarn::testing::assert_of;
using zktarn::testing::host_log;

std::vector<zktarn::testing::host_call> calls_for(flag condition) {
    const host_log host;
    zktarn::standin::set_assertion_handler([] {});
    tarnassert(condition);
    return host.calls();
}

TEST(Tarnassert, PassesATrueConditionToTheHostOnce) {
    EXPECT_THAT(calls_for(1), ElementsAre(assert_of(true)));
}

TEST(Tarnassert, PassesAFalseConditionToTheHostOnce) {
    EXPECT_THAT(calls_for(0), ElementsAre(assert_of(false)));
}

TEST(Tarnassert, TestsTheLowestByteOnly) {
    EXPECT_THAT(calls_for(2), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(0x80), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(0xFF), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(-1), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(0x100), ElementsAre(assert_of(false)));
    EXPECT_THAT(calls_for(0x101), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(-256), ElementsAre(assert_of(false)));
}

} // namespace
