// Random numbers on the stand-in host, from the first draw to the last snapshot.
#include <vector>

#include <gtest/gtest.h>

#include "zktarn/random/random.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn::random;
namespace standin = zktarn::standin;

std::vector<double> draws(const rng_state& rng, int n) {
    std::vector<double> numbers;
    for (int i = 0; i < n; ++i) {
        numbers.push_back(rand_number(rng));
    }
    return numbers;
}

class RandomOnTheStandIn : public testing::Test {
protected:
    void SetUp() override { standin::reset(); }
    void TearDown() override {
        EXPECT_TRUE(standin::live_objects().empty());
        standin::reset();
    }
};

TEST_F(RandomOnTheStandIn, ASnapshotBringsTheNumbersBack) {
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
    EXPECT_EQ(rand_number(rng), 1.7976931348623157e308);
}

TEST_F(RandomOnTheStandIn, TheSeedDecidesTheNumbers) {
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

TEST_F(RandomOnTheStandIn, FailuresOfTheHostAreReported) {
    rng_state rng;
    standin::fail_call(standin::operation::instantiateRngOptim, 1);
    EXPECT_EQ(instantiaterng(rng, 1), 0);
    EXPECT_EQ(rng.generator, nullptr);

    ASSERT_EQ(instantiaterng(rng, 1), 1);
    saved_state state = nullptr;
    standin::fail_call(standin::operation::getRngStateOptim, 1);
    EXPECT_EQ(getrngstate(rng, state), 0);
    EXPECT_EQ(state, nullptr);

    standin::fail_call(standin::operation::getRandUniformOptim, 2);
    EXPECT_LT(rand_number(rng), 1.0);
    EXPECT_EQ(rand_number(rng), 1.7976931348623157e308);
    EXPECT_LT(rand_number(rng), 1.0);
    deleterng(rng);
}

} // namespace
