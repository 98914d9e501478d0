#include "zktarn/assert/assert_mod.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/recording_host.hpp"

namespace {

using testing::ElementsAre;
using zktarn::flag;
using zktarn::assert_mod::tarnassert;
using zktarn::testing::assert_of;
using zktarn::testing::recording_host;

std::vector<zktarn::testing::call> calls_for(flag condition) {
    recording_host host;
    tarnassert(condition);
    return host.calls;
}

TEST(Tarnassert, HandsATrueConditionToTheHostOnce) {
    EXPECT_THAT(calls_for(1), ElementsAre(assert_of(true)));
}

TEST(Tarnassert, HandsAFalseConditionToTheHostOnce) {
    EXPECT_THAT(calls_for(0), ElementsAre(assert_of(false)));
}

TEST(Tarnassert, LooksAtTheLowestByteOnly) {
    EXPECT_THAT(calls_for(2), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(0x80), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(0xFF), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(-1), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(0x100), ElementsAre(assert_of(false)));
    EXPECT_THAT(calls_for(0x101), ElementsAre(assert_of(true)));
    EXPECT_THAT(calls_for(-256), ElementsAre(assert_of(false)));
}

} // namespace
