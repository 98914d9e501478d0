#include "zktarn/random/random.hpp"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/recording_host.hpp"

namespace {

using namespace zktarn::random;
using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::testing::call;
using zktarn::testing::recording_host;

constexpr double largest = 1.7976931348623157e308;

/// Handles as the recording host knows them: by number.
void* handle(std::uintptr_t number) {
    return reinterpret_cast<void*>(number);
}

class Random : public testing::Test {
protected:
    /// The host answers every operation of that name with the number.
    void answer(const std::string& operation, double number) {
        host.answer = [=](const call& c) { return c.operation == operation ? number : 0.5; };
    }

    recording_host host;
};

TEST_F(Random, ANewRecordHasNoGenerator) {
    EXPECT_EQ(rng_state{}.generator, nullptr);
    const std::vector<rng_state> several(3);
    for (const rng_state& each : several) {
        EXPECT_EQ(each.generator, nullptr);
    }
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(Random, InstantiatesAGeneratorFromTheSeed) {
    rng_state rng;
    answer("instantiateRngOptim", 7);
    EXPECT_EQ(instantiaterng(rng, -5), 1);
    EXPECT_EQ(rng.generator, handle(7));
    EXPECT_THAT(host.calls, ElementsAre(call{"instantiateRngOptim", {-5}}));
}

TEST_F(Random, PassesEverySeedOn) {
    rng_state rng;
    for (const std::int32_t seed : {0, 1, std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::int32_t>::max()}) {
        instantiaterng(rng, seed);
        EXPECT_EQ(host.calls.back(), (call{"instantiateRngOptim", {seed}}));
    }
}

TEST_F(Random, ReportsAHostThatCanMakeNoGenerator) {
    rng_state rng{handle(3)};
    answer("instantiateRngOptim", 0);
    EXPECT_EQ(instantiaterng(rng, 1), 0);
    EXPECT_EQ(rng.generator, nullptr);
}

TEST_F(Random, ReplacesAGeneratorWithoutDeletingIt) {
    rng_state rng{handle(3)};
    answer("instantiateRngOptim", 8);
    EXPECT_EQ(instantiaterng(rng, 1), 1);
    EXPECT_EQ(rng.generator, handle(8));
    EXPECT_THAT(host.calls, ElementsAre(call{"instantiateRngOptim", {1}}));
}

TEST_F(Random, HasNoHandleWhileTheHostMakesAGenerator) {
    rng_state rng{handle(3)};
    void* seen = handle(99);
    host.answer = [&](const call&) {
        seen = rng.generator;
        return 4.0;
    };
    instantiaterng(rng, 1);
    EXPECT_EQ(seen, nullptr);
    EXPECT_EQ(rng.generator, handle(4));
}

TEST_F(Random, DeletesAGeneratorOnce) {
    rng_state rng{handle(3)};
    deleterng(rng);
    EXPECT_EQ(rng.generator, nullptr);
    deleterng(rng);
    EXPECT_THAT(host.calls, ElementsAre(call{"deleteRngOptim", {3}}));
}

TEST_F(Random, DrawsOneNumberAtATimeIntoASlotThatHoldsTheLargestReal) {
    const rng_state rng{handle(3)};
    answer("getRandUniformOptim", 0.25);
    EXPECT_EQ(rand_number(rng), 0.25);
    EXPECT_THAT(host.calls, ElementsAre(call{"getRandUniformOptim", {3, 1}, {}, {largest}}));
}

TEST_F(Random, DrawsTheLargestRealWithoutAGenerator) {
    EXPECT_EQ(rand_number(rng_state{}), largest);
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(Random, TakesASnapshot) {
    const rng_state rng{handle(3)};
    saved_state state = handle(99);
    answer("getRngStateOptim", 6);
    EXPECT_EQ(getrngstate(rng, state), 1);
    EXPECT_EQ(state, handle(6));
    EXPECT_THAT(host.calls, ElementsAre(call{"getRngStateOptim", {3}}));
}

TEST_F(Random, ReportsAHostThatDeliversNoSnapshot) {
    const rng_state rng{handle(3)};
    saved_state state = handle(99);
    answer("getRngStateOptim", 0);
    EXPECT_EQ(getrngstate(rng, state), 0);
    EXPECT_EQ(state, nullptr);
}

TEST_F(Random, AsksForASnapshotWithoutAGeneratorToo) {
    saved_state state = handle(99);
    answer("getRngStateOptim", 0);
    EXPECT_EQ(getrngstate(rng_state{}, state), 0);
    EXPECT_EQ(state, nullptr);
    answer("getRngStateOptim", 5);
    EXPECT_EQ(getrngstate(rng_state{}, state), 1);
    EXPECT_EQ(state, handle(5));
    EXPECT_THAT(host.calls,
                ElementsAre(call{"getRngStateOptim", {0}}, call{"getRngStateOptim", {0}}));
}

TEST_F(Random, HasNoSnapshotWhileTheHostTakesOne) {
    saved_state state = handle(99);
    void* seen = handle(99);
    host.answer = [&](const call&) {
        seen = state;
        return 4.0;
    };
    getrngstate(rng_state{handle(1)}, state);
    EXPECT_EQ(seen, nullptr);
}

TEST_F(Random, TakesASnapshotIntoTheHandleOfTheGeneratorItself) {
    rng_state rng{handle(3)};
    answer("getRngStateOptim", 6);
    EXPECT_EQ(getrngstate(rng, rng.generator), 1);
    EXPECT_EQ(rng.generator, handle(6));
    EXPECT_THAT(host.calls, ElementsAre(call{"getRngStateOptim", {3}}));
}

TEST_F(Random, RestoresASnapshotAsOftenAsWanted) {
    const rng_state rng{handle(3)};
    const saved_state state = handle(6);
    setrngstate(rng, state);
    setrngstate(rng, state);
    EXPECT_EQ(state, handle(6));
    EXPECT_THAT(host.calls,
                ElementsAre(call{"setRngStateOptim", {3, 6}}, call{"setRngStateOptim", {3, 6}}));
}

TEST_F(Random, RestoresNothingWithoutAGeneratorOrASnapshot) {
    setrngstate(rng_state{}, handle(6));
    setrngstate(rng_state{handle(3)}, nullptr);
    setrngstate(rng_state{}, nullptr);
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(Random, DeletesASnapshotAndKeepsTheStaleHandle) {
    const saved_state state = handle(6);
    deleterngstate(state);
    EXPECT_EQ(state, handle(6));
    deleterngstate(state);
    EXPECT_THAT(host.calls,
                ElementsAre(call{"deleteRngStateOptim", {6}}, call{"deleteRngStateOptim", {6}}));
}

TEST_F(Random, DeletesNoSnapshotWhereThereIsNone) {
    deleterngstate(nullptr);
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(Random, InitialisesARunOfRecordsAndNoOther) {
    rng_state records[4] = {{handle(1)}, {handle(2)}, {handle(3)}, {handle(4)}};
    _rng_stateinitialise(records[1], 2);
    EXPECT_EQ(records[0].generator, handle(1));
    EXPECT_EQ(records[1].generator, nullptr);
    EXPECT_EQ(records[2].generator, nullptr);
    EXPECT_EQ(records[3].generator, handle(4));
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(Random, InitialisesNothingBelowOneRecord) {
    rng_state record{handle(1)};
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        _rng_stateinitialise(record, count);
        EXPECT_EQ(record.generator, handle(1));
    }
}

} // namespace
