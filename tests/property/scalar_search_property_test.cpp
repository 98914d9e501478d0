// Compares the scalar search on random sets with the literal reference: results and calls.
#include <cmath>
#include <cstdint>
#include <functional>
#include <iterator>
#include <vector>

#include <gtest/gtest.h>

#include "property/number_draws.hpp"
#include "property/reference/rational_reference.hpp"
#include "support/recorded_set.hpp"
#include "support/scale.hpp"
#include "zktarn/util/scalar_search.hpp"

namespace {

using zktarn::flag;
using zktarn::testing::element;
using zktarn::testing::inf;
using zktarn::testing::nan;
using zktarn::testing::number_draws;
using zktarn::testing::recorded_set;
using zktarn::testing::same_bits;
using zktarn::testing::scaled;
namespace reference = zktarn::reference;
namespace util = zktarn::util;

struct search {
    std::vector<element> elements;
    double eps;
    double max_den;
    double max_scalar;
    bool skip_marked = false;
    bool selected_only = false;
};

void expect_agreement(const search& each) {
    recorded_set ours{each.elements};
    flag found = -1;
    double scalar = -1.0;
    util::find_scalar_integral(ours.size(), ours, each.eps, each.max_den, each.max_scalar, found,
                               scalar, flag{each.skip_marked}, flag{each.selected_only});
    recorded_set theirs{each.elements};
    const reference::search_result rule =
        reference::find_scalar_integral({theirs.size(), std::ref(theirs), each.eps, each.max_den,
                                         each.max_scalar, each.skip_marked, each.selected_only});
    ASSERT_TRUE(found == (rule.found ? 1 : 0) && same_bits(scalar, rule.scalar))
        << scalar << " for " << rule.scalar;
    ASSERT_EQ(ours.calls, theirs.calls);
}

template <class Draw>
void expect_agreement_on_many(std::uint64_t seed, std::int64_t cases, Draw search_of) {
    number_draws draw(seed);
    const std::int64_t count = scaled(cases);
    for (std::int64_t i = 0; i < count; ++i) {
        SCOPED_TRACE(i);
        ASSERT_NO_FATAL_FAILURE(expect_agreement(search_of(draw)));
    }
}

TEST(ScalarSearchProperty, AgreesWithTheReferenceCallByCall) {
    expect_agreement_on_many(20261130, 300'000, [](number_draws& draw) {
        search each;
        each.elements.resize(draw.below(8));
        const std::uint64_t kind = draw.below(4);
        for (element& member : each.elements) {
            const double plain = kind == 0   ? draw.sign() * (1.0 + draw.whole(40)) / 6.0
                                 : kind == 1 ? draw.sign() * draw.whole(1000) / 100.0
                                             : draw.value();
            member = {plain, static_cast<flag>(draw.below(3)) - 1,
                      static_cast<flag>(draw.below(3)) - 1};
        }
        each.eps = draw.tolerance();
        each.max_den = draw.chance(4) ? 5.0 : 1.0 + draw.whole(10'000);
        static constexpr double bounds[] = {1000.0, 1e6,   0.9, 0.0, 1.0,
                                            30.0,   1e300, inf, nan, -1.0};
        each.max_scalar = bounds[draw.below(std::size(bounds))];
        each.skip_marked = draw.chance(2);
        each.selected_only = draw.chance(2);
        return each;
    });
}

// Tolerances and products near the limits of the table of factors, and bounds that end the doubling
// at each step.
TEST(ScalarSearchProperty, AgreesWithTheReferenceAtTheLimitsOfTheTable) {
    expect_agreement_on_many(20261207, 150'000, [](number_draws& draw) {
        static constexpr double tolerances[] = {
            0x1p-11, 0x1.0000000000001p-11, 0x1.fffffffffffffp-12, 0x1p-12, 0x1p-10, 0x1p-9, 1e-9,
            0.0};
        search each;
        each.eps = tolerances[draw.below(std::size(tolerances))];
        each.elements.resize(1 + draw.below(3));
        for (element& member : each.elements) {
            const double factor = 1.0 + 2.0 * draw.whole(11);
            const double integer = 1.0 + draw.whole(std::uint64_t{1} << draw.below(36));
            const double off = draw.chance(2) ? 0.0 : draw.sign() * each.eps * draw.uniform();
            member = {std::ldexp(integer + off, -static_cast<int>(draw.below(40))) / factor};
        }
        each.max_den = 1000.0;
        each.max_scalar = std::ldexp(1.0 + draw.uniform(), static_cast<int>(draw.below(60)) - 8);
        return each;
    });
}

TEST(ScalarSearchProperty, TheScalarMakesDecimalsIntegral) {
    number_draws draw(20261201);
    const std::int64_t cases = scaled(100'000);
    const double eps = 1e-9;
    for (std::int64_t i = 0; i < cases; ++i) {
        std::vector<double> values(1 + draw.below(6));
        for (double& value : values) {
            value = draw.sign() * (1.0 + draw.whole(999)) / (draw.chance(2) ? 100.0 : 8.0);
        }
        const auto supply = [&](const std::int32_t& index, double& value, flag& marked,
                                flag& selected) {
            value = values[static_cast<std::size_t>(index - 1)];
            marked = 0;
            selected = 1;
        };
        flag found = 0;
        double scalar = 0.0;
        util::find_scalar_integral(static_cast<std::int32_t>(values.size()), supply, eps, 1000.0,
                                   1e6, found, scalar);
        ASSERT_EQ(found, 1);
        for (const double value : values) {
            // After an element is accepted, its error grows with the scalar.
            const double product = value * scalar;
            ASSERT_NEAR(product, std::round(product), 1e-9 * scalar * 1000.0) << value;
            ASSERT_GE(std::fabs(product), 0.5);
        }
    }
}

} // namespace
