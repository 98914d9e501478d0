// Built twice: against the inline procedure, and against the symbol of the shared library.
#include "zktarn/vector/vector_type.hpp"

#include <cstddef>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#ifdef ZKTARN_TEST_EXPORTED
#include "support/exported.hpp"
#endif

namespace {

using zktarn::vector_type::vector;

void initialise(vector& first, std::int32_t count) {
#ifdef ZKTARN_TEST_EXPORTED
    using procedure = void (*)(vector&, const std::int32_t&);
    static const auto exported = zktarn::testing::exported<procedure>(
        "_ZN6zktarn11vector_type17_vectorinitialiseERNS0_6vectorERKi");
    exported(first, count);
#else
    zktarn::vector_type::_vectorinitialise(first, count);
#endif
}

struct VectorInitialise : testing::Test {
    VectorInitialise() {
        for (vector& each : records) {
            each = {{&real, {8}, {9}}, {&integer, {10}, {11}}, {&integer, {12}, {13}}, 14};
        }
    }

    void expect_initialised(const vector& v) const {
        EXPECT_FALSE(v.coef.present());
        EXPECT_FALSE(v.ind.present());
        EXPECT_FALSE(v.elm.present());
        EXPECT_EQ(v.nz, 0);
        EXPECT_EQ(v.coef.extent[0], 8);
        EXPECT_EQ(v.ind.lower_bound[0], 11);
        EXPECT_EQ(v.elm.extent[0], 12);
    }

    void expect_untouched(const vector& v) const {
        EXPECT_EQ(v.coef.data, &real);
        EXPECT_EQ(v.ind.data, &integer);
        EXPECT_EQ(v.elm.data, &integer);
        EXPECT_EQ(v.nz, 14);
    }

    double real = 0.0;
    std::int32_t integer = 0;
    vector records[4];
};

TEST_F(VectorInitialise, WritesNothingForACountBelowOne) {
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        initialise(records[0], count);
        expect_untouched(records[0]);
    }
}

TEST_F(VectorInitialise, GivesOneRecordItsDefaults) {
    initialise(records[1], 1);
    expect_untouched(records[0]);
    expect_initialised(records[1]);
    expect_untouched(records[2]);
}

TEST_F(VectorInitialise, GivesARunOfRecordsTheirDefaults) {
    initialise(records[0], 3);
    expect_initialised(records[0]);
    expect_initialised(records[1]);
    expect_initialised(records[2]);
    expect_untouched(records[3]);
}

// Long enough for each of the loops into which a compiler may split the body.
TEST_F(VectorInitialise, GivesALongRunOfRecordsTheirDefaults) {
    for (std::int32_t count = 1; count <= 40; ++count) {
        std::vector<vector> run(static_cast<std::size_t>(count) + 2, records[0]);
        initialise(run[1], count);
        expect_untouched(run.front());
        for (std::int32_t i = 1; i <= count; ++i) {
            expect_initialised(run[static_cast<std::size_t>(i)]);
        }
        expect_untouched(run.back());
    }
}

TEST_F(VectorInitialise, ReadsTheCountBeforeItWrites) {
    records[0].nz = 2;
    initialise(records[0], records[0].nz);
    expect_initialised(records[1]);
    expect_untouched(records[2]);
}

TEST(VectorDefaults, AreTheInitialValuesOfTheRecord) {
    const vector v;
    EXPECT_FALSE(v.coef.present());
    EXPECT_FALSE(v.ind.present());
    EXPECT_FALSE(v.elm.present());
    EXPECT_EQ(v.nz, 0);
}

} // namespace
