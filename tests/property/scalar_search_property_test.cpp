// The scalar search over random sets, call by call as the literal rules have it.
#include <cmath>
#include <cstdint>
#include <functional>
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

TEST(ScalarSearchProperty, AgreesWithTheRulesCallByCall) {
    number_draws draw(20261130);
    const std::int64_t cases = scaled(300'000);
    for (std::int64_t i = 0; i < cases; ++i) {
        std::vector<element> elements(draw.below(8));
        const std::uint64_t kind = draw.below(4);
        for (element& each : elements) {
            const double plain = kind == 0   ? draw.sign() * (1.0 + draw.whole(40)) / 6.0
                                 : kind == 1 ? draw.sign() * draw.whole(1000) / 100.0
                                             : draw.value();
            each = {plain, static_cast<flag>(draw.below(3)) - 1,
                    static_cast<flag>(draw.below(3)) - 1};
        }
        const double eps = draw.tolerance();
        const double max_den = draw.chance(4) ? 5.0 : 1.0 + draw.whole(10'000);
        static constexpr double bounds[] = {1000.0, 1e6,   0.9, 0.0, 1.0,
                                            30.0,   1e300, inf, nan, -1.0};
        const double max_scalar = bounds[draw.below(std::size(bounds))];
        const bool skip_marked = draw.chance(2);
        const bool selected_only = draw.chance(2);

        recorded_set ours{elements};
        flag found = -1;
        double scalar = -1.0;
        util::find_scalar_integral(ours.size(), ours, eps, max_den, max_scalar, found, scalar,
                                   flag{skip_marked}, flag{selected_only});
        recorded_set theirs{elements};
        const reference::search_result rule =
            reference::find_scalar_integral({theirs.size(), std::ref(theirs), eps, max_den,
                                             max_scalar, skip_marked, selected_only});
        ASSERT_TRUE(found == (rule.found ? 1 : 0) && same_bits(scalar, rule.scalar))
            << "case " << i << ": " << scalar << " for " << rule.scalar;
        ASSERT_EQ(ours.calls, theirs.calls) << "case " << i;
    }
}

TEST(ScalarSearchProperty, WhatItFindsMakesDecimalsIntegral) {
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
            // The tolerance, grown by what the scalar may have grown after the element was
            // accepted.
            const double product = value * scalar;
            ASSERT_NEAR(product, std::round(product), 1e-9 * scalar * 1000.0) << value;
            ASSERT_GE(std::fabs(product), 0.5);
        }
    }
}

} // namespace
