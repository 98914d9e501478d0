// Built twice: against the inline procedure, and against the symbol of the shared library.
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "zktarn/random/random.hpp"

#ifdef ZKTARN_TEST_EXPORTED
#include "support/exported.hpp"
#endif

namespace {

using zktarn::random::rng_state;

void initialise(rng_state& first, std::int32_t count) {
#ifdef ZKTARN_TEST_EXPORTED
    using procedure = void (*)(rng_state&, const std::int32_t&);
    static const auto exported = zktarn::testing::exported<procedure>(
        "_ZN6zktarn6random20_rng_stateinitialiseERNS0_9rng_stateERKi");
    exported(first, count);
#else
    zktarn::random::_rng_stateinitialise(first, count);
#endif
}

TEST(RngStateInitialise, WritesNothingForACountBelowOne) {
    int generator = 0;
    rng_state record{&generator};
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        initialise(record, count);
        EXPECT_EQ(record.generator, &generator);
    }
}

TEST(RngStateInitialise, SetsARunOfHandlesToNullAndNoOther) {
    int generator = 0;
    for (std::int32_t count = 1; count <= 40; ++count) {
        std::vector<rng_state> records(static_cast<std::size_t>(count) + 2, {&generator});
        initialise(records[1], count);
        EXPECT_EQ(records.front().generator, &generator);
        for (std::size_t i = 1; i <= static_cast<std::size_t>(count); ++i) {
            ASSERT_EQ(records[i].generator, nullptr) << i << " of " << count;
        }
        EXPECT_EQ(records.back().generator, &generator);
    }
}

} // namespace
