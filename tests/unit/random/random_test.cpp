#include "zktarn/random/random.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/exported.hpp"
#include "support/host_log.hpp"

namespace {

using namespace zktarn::random;
using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::standin::answer;
using zktarn::standin::operation;
using zktarn::testing::host_call;
using zktarn::testing::host_log;
namespace standin = zktarn::standin;

constexpr double largest = 1.7976931348623157e308;

/// A handle that a scripted call returns. The library never dereferences it.
void* handle(std::uintptr_t number) {
    return reinterpret_cast<void*>(number);
}

host_call call_with(operation what, std::uintptr_t number) {
    return {what, {}, {}, {}, {handle(number)}};
}

/// Tests which operations the library calls and what it does with their results. Every operation is
/// scripted, because the handles are not addresses of objects.
class Random : public testing::Test {
protected:
    Random() {
        for (const operation what : {operation::instantiateRngOptim, operation::deleteRngOptim,
                                     operation::getRandUniformOptim, operation::getRngStateOptim,
                                     operation::setRngStateOptim, operation::deleteRngStateOptim}) {
            standin::answer_calls(what, [](const host_call&) { return answer{}; });
        }
    }

    static void answer_handle(operation what, std::uintptr_t number) {
        standin::answer_calls(what,
                              [=](const host_call&) { return answer{.address = handle(number)}; });
    }

    host_log host;
};

TEST_F(Random, ANewRecordHasNoGenerator) {
    EXPECT_EQ(rng_state{}.generator, nullptr);
    const std::vector<rng_state> several(3);
    for (const rng_state& each : several) {
        EXPECT_EQ(each.generator, nullptr);
    }
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Random, InstantiatesAGeneratorFromTheSeed) {
    rng_state rng;
    answer_handle(operation::instantiateRngOptim, 7);
    EXPECT_EQ(instantiaterng(rng, -5), 1);
    EXPECT_EQ(rng.generator, handle(7));
    EXPECT_THAT(host.calls(), ElementsAre(host_call{operation::instantiateRngOptim, {-5}}));
}

TEST_F(Random, PassesEverySeedToTheHost) {
    rng_state rng;
    for (const std::int32_t seed : {0, 1, std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::int32_t>::max()}) {
        answer_handle(operation::instantiateRngOptim, 7);
        EXPECT_EQ(instantiaterng(rng, seed), 1);
        EXPECT_EQ(host.calls().back(), (host_call{operation::instantiateRngOptim, {seed}}));
    }
}

TEST_F(Random, FailsWhenTheHostMakesNoGenerator) {
    rng_state rng{handle(3)};
    answer_handle(operation::instantiateRngOptim, 0);
    EXPECT_EQ(instantiaterng(rng, 1), 0);
    EXPECT_EQ(rng.generator, nullptr);
}

TEST_F(Random, ReplacesAGeneratorWithoutDeletingIt) {
    rng_state rng{handle(3)};
    answer_handle(operation::instantiateRngOptim, 8);
    EXPECT_EQ(instantiaterng(rng, 1), 1);
    EXPECT_EQ(rng.generator, handle(8));
    EXPECT_THAT(host.calls(), ElementsAre(host_call{operation::instantiateRngOptim, {1}}));
}

TEST_F(Random, TheHandleIsNullWhileTheHostMakesAGenerator) {
    rng_state rng{handle(3)};
    void* during_call = handle(99);
    standin::answer_calls(operation::instantiateRngOptim, [&](const host_call&) {
        during_call = rng.generator;
        return answer{.address = handle(4)};
    });
    EXPECT_EQ(instantiaterng(rng, 1), 1);
    EXPECT_EQ(during_call, nullptr);
    EXPECT_EQ(rng.generator, handle(4));
}

TEST_F(Random, DeletesAGeneratorOnce) {
    rng_state rng{handle(3)};
    deleterng(rng);
    EXPECT_EQ(rng.generator, nullptr);
    deleterng(rng);
    EXPECT_THAT(host.calls(), ElementsAre(call_with(operation::deleteRngOptim, 3)));
}

TEST_F(Random, RequestsOneNumberPerCall) {
    const rng_state rng{handle(3)};
    standin::answer_calls(operation::getRandUniformOptim,
                          [](const host_call&) { return answer{.reals = {0.25}}; });
    EXPECT_EQ(rand_number(rng), 0.25);
    EXPECT_THAT(host.calls(),
                ElementsAre(host_call{operation::getRandUniformOptim, {1}, {}, {}, {handle(3)}}));
}

TEST_F(Random, ReturnsTheLargestRealWhenTheHostWritesNoNumber) {
    EXPECT_EQ(rand_number(rng_state{handle(3)}), largest);
    EXPECT_EQ(host.calls().size(), 1U);
}

TEST_F(Random, ReturnsTheLargestRealWithoutAGenerator) {
    EXPECT_EQ(rand_number(rng_state{}), largest);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Random, TakesASnapshot) {
    const rng_state rng{handle(3)};
    saved_state state = handle(99);
    answer_handle(operation::getRngStateOptim, 6);
    EXPECT_EQ(getrngstate(rng, state), 1);
    EXPECT_EQ(state, handle(6));
    EXPECT_THAT(host.calls(), ElementsAre(call_with(operation::getRngStateOptim, 3)));
}

TEST_F(Random, FailsWhenTheHostMakesNoSnapshot) {
    const rng_state rng{handle(3)};
    saved_state state = handle(99);
    answer_handle(operation::getRngStateOptim, 0);
    EXPECT_EQ(getrngstate(rng, state), 0);
    EXPECT_EQ(state, nullptr);
}

TEST_F(Random, CallsTheHostForASnapshotOfANullGenerator) {
    saved_state state = handle(99);
    answer_handle(operation::getRngStateOptim, 0);
    EXPECT_EQ(getrngstate(rng_state{}, state), 0);
    EXPECT_EQ(state, nullptr);
    answer_handle(operation::getRngStateOptim, 5);
    EXPECT_EQ(getrngstate(rng_state{}, state), 1);
    EXPECT_EQ(state, handle(5));
    EXPECT_THAT(host.calls(), ElementsAre(call_with(operation::getRngStateOptim, 0),
                                          call_with(operation::getRngStateOptim, 0)));
}

TEST_F(Random, TheHandleOfTheSnapshotIsNullWhileTheHostTakesIt) {
    saved_state state = handle(99);
    void* during_call = handle(99);
    standin::answer_calls(operation::getRngStateOptim, [&](const host_call&) {
        during_call = state;
        return answer{.address = handle(4)};
    });
    EXPECT_EQ(getrngstate(rng_state{handle(1)}, state), 1);
    EXPECT_EQ(during_call, nullptr);
}

TEST_F(Random, TheSnapshotMayAliasTheHandleOfTheGenerator) {
    rng_state rng{handle(3)};
    answer_handle(operation::getRngStateOptim, 6);
    EXPECT_EQ(getrngstate(rng, rng.generator), 1);
    EXPECT_EQ(rng.generator, handle(6));
    EXPECT_THAT(host.calls(), ElementsAre(call_with(operation::getRngStateOptim, 3)));
}

TEST_F(Random, RestoresASnapshotRepeatedly) {
    const rng_state rng{handle(3)};
    const saved_state state = handle(6);
    setrngstate(rng, state);
    setrngstate(rng, state);
    EXPECT_EQ(state, handle(6));
    const host_call restored = {operation::setRngStateOptim, {}, {}, {}, {handle(3), handle(6)}};
    EXPECT_THAT(host.calls(), ElementsAre(restored, restored));
}

TEST_F(Random, RestoresNothingWithoutAGeneratorOrASnapshot) {
    setrngstate(rng_state{}, handle(6));
    setrngstate(rng_state{handle(3)}, nullptr);
    setrngstate(rng_state{}, nullptr);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Random, DeletesASnapshotAndKeepsTheStaleHandle) {
    const saved_state state = handle(6);
    deleterngstate(state);
    EXPECT_EQ(state, handle(6));
    deleterngstate(state);
    EXPECT_THAT(host.calls(), ElementsAre(call_with(operation::deleteRngStateOptim, 6),
                                          call_with(operation::deleteRngStateOptim, 6)));
}

TEST_F(Random, DoesNotDeleteANullSnapshot) {
    deleterngstate(nullptr);
    EXPECT_THAT(host.calls(), IsEmpty());
}

std::vector<double> draws(const rng_state& rng, int n) {
    std::vector<double> numbers;
    for (int i = 0; i < n; ++i) {
        numbers.push_back(rand_number(rng));
    }
    return numbers;
}

/// Tests with generators of the stand-in, whose operations are not scripted.
class RandomNumbers : public testing::Test {
protected:
    void SetUp() override { standin::reset(); }
    void TearDown() override {
        EXPECT_THAT(standin::live_objects(), IsEmpty());
        standin::reset();
    }
};

TEST_F(RandomNumbers, RepeatAfterASnapshotIsRestored) {
    rng_state rng;
    ASSERT_EQ(instantiaterng(rng, 42), 1);
    draws(rng, 5);
    saved_state state = nullptr;
    ASSERT_EQ(getrngstate(rng, state), 1);
    const std::vector<double> first = draws(rng, 20);
    for (int again = 0; again < 2; ++again) {
        setrngstate(rng, state);
        EXPECT_EQ(draws(rng, 20), first);
    }
    deleterngstate(state);
    deleterng(rng);
    EXPECT_EQ(rand_number(rng), largest);
}

TEST_F(RandomNumbers, DependOnTheSeed) {
    rng_state a;
    rng_state b;
    rng_state other;
    ASSERT_EQ(instantiaterng(a, 7), 1);
    ASSERT_EQ(instantiaterng(b, 7), 1);
    ASSERT_EQ(instantiaterng(other, -7), 1);
    const std::vector<double> numbers = draws(a, 10);
    EXPECT_EQ(draws(b, 10), numbers);
    EXPECT_NE(draws(other, 10), numbers);
    for (rng_state* each : {&a, &b, &other}) {
        deleterng(*each);
    }
}

TEST_F(RandomNumbers, FailuresOfTheHostReachTheCaller) {
    rng_state rng;
    standin::fail_call(operation::instantiateRngOptim, 1);
    EXPECT_EQ(instantiaterng(rng, 1), 0);
    EXPECT_EQ(rng.generator, nullptr);

    ASSERT_EQ(instantiaterng(rng, 1), 1);
    saved_state state = nullptr;
    standin::fail_call(operation::getRngStateOptim, 1);
    EXPECT_EQ(getrngstate(rng, state), 0);
    EXPECT_EQ(state, nullptr);

    standin::fail_call(operation::getRandUniformOptim, 2);
    EXPECT_LT(rand_number(rng), 1.0);
    EXPECT_EQ(rand_number(rng), largest);
    EXPECT_LT(rand_number(rng), 1.0);
    deleterng(rng);
}

using initialise_procedure = void (*)(rng_state&, const std::int32_t&);

/// The inline procedure, and the symbol of the shared library.
std::vector<initialise_procedure> inline_and_exported() {
    return {_rng_stateinitialise,
            zktarn::testing::exported<initialise_procedure>(
                "_ZN6zktarn6random20_rng_stateinitialiseERNS0_9rng_stateERKi")};
}

class RngStateInitialise : public testing::TestWithParam<initialise_procedure> {};

TEST_P(RngStateInitialise, WritesNothingForACountBelowOne) {
    int generator = 0;
    rng_state record{&generator};
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        GetParam()(record, count);
        EXPECT_EQ(record.generator, &generator);
    }
}

TEST_P(RngStateInitialise, SetsExactlyCountHandlesToNull) {
    int generator = 0;
    for (std::int32_t count = 1; count <= 40; ++count) {
        std::vector<rng_state> records(static_cast<std::size_t>(count) + 2, {&generator});
        GetParam()(records[1], count);
        EXPECT_EQ(records.front().generator, &generator);
        for (std::size_t i = 1; i <= static_cast<std::size_t>(count); ++i) {
            ASSERT_EQ(records[i].generator, nullptr) << i << " of " << count;
        }
        EXPECT_EQ(records.back().generator, &generator);
    }
}

INSTANTIATE_TEST_SUITE_P(InlineAndExported, RngStateInitialise,
                         testing::ValuesIn(inline_and_exported()));

TEST(RngStateInitialiseForms, AreTwoFunctions) {
    EXPECT_NE(inline_and_exported()[0], inline_and_exported()[1]);
}

} // namespace
