// Random operations on two vectors, on the library's records and on the reference, compared after
// every step.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "property/vector_script.hpp"
#include "support/scale.hpp"
#include "zktarn/vector/detail/vectors_combine_variants.hpp"

namespace {

using namespace zktarn;
using namespace zktarn::testing;

class generator : public zktarn::testing::choices {
public:
    explicit generator(std::int64_t seed) : engine_(static_cast<std::uint64_t>(seed)) {}
    std::uint64_t word() override { return engine_(); }

private:
    std::mt19937_64 engine_;
};

struct sizes {
    std::int32_t capacity;
    std::int32_t rounds;
};

void run(generator& draw, sizes how_big, std::int32_t x_form, std::int32_t y_form, state how) {
    mirrored_vector x(how_big.capacity, form_of(x_form));
    mirrored_vector y(how_big.capacity, form_of(y_form));
    const std::int32_t n = how_big.capacity;
    // Full, nearly full and half empty lists.
    fill(draw, x, draw.chance(4) ? n - draw.below(std::min(n, 3)) : draw.below(n + 1), how);
    fill(draw, y, draw.below(n + 1), how);
    for (std::int32_t round = 0; round < how_big.rounds; ++round) {
        const bool turned = draw.chance(3);
        const outcome done = turned ? step(draw, y, x, how) : step(draw, x, y, how);
        ASSERT_TRUE(done.answers_agree) << done.operation << ", round " << round;
        ASSERT_TRUE(x.agrees()) << done.operation << ", round " << round;
        ASSERT_TRUE(y.agrees()) << done.operation << ", round " << round;
    }
}

class VectorProperty : public ::testing::TestWithParam<state> {};

TEST_P(VectorProperty, AgreesWithTheReferenceInEveryMode) {
    const std::int64_t seeds = scaled(400);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        for (std::int32_t forms = 0; forms < 36; ++forms) {
            generator draw(seed * 36 + forms);
            const std::int32_t n = draw.chance(3) ? draw.between(1, 8) : draw.between(1, 300);
            SCOPED_TRACE(::testing::Message()
                         << "seed " << seed << ", forms " << forms << ", capacity " << n);
            run(draw, {n, 30}, forms / 6, forms % 6, GetParam());
            if (HasFatalFailure() || HasNonfatalFailure()) {
                return;
            }
        }
    }
}

TEST_P(VectorProperty, AgreesWithTheReferenceOnLongLists) {
    const std::int64_t seeds = scaled(1500);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        generator draw(1'000'000 + seed);
        const std::int32_t n = draw.between(200, 2000);
        SCOPED_TRACE(::testing::Message() << "seed " << seed << ", capacity " << n);
        run(draw, {n, 8}, 0, 0, GetParam());
        if (HasFatalFailure() || HasNonfatalFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, VectorProperty,
                         ::testing::Values(state::consistent, state::inconsistent),
                         [](const auto& parameter) {
                             return parameter.param == state::consistent ? "Consistent"
                                                                         : "Inconsistent";
                         });

TEST(SameRecord, CountsAsACopyTakenBefore) {
    const std::int64_t seeds = scaled(20'000);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        generator draw(2'000'000 + seed);
        const std::int32_t n = draw.between(1, 200);
        mirrored_vector v(n, form_of(draw.below(6)));
        fill(draw, v, draw.below(n + 1), state::consistent);
        // A few entries that are listed but not marked, with room for them to be listed again.
        if (v.record.elm.present()) {
            for (std::int32_t k = 1; k <= v.mirror.nz; ++k) {
                if (draw.chance(10)) {
                    v.set_elm(v.mirror.i(k), -draw.below(3));
                }
            }
        }
        const double alpha = draw.factor();
        const double beta = draw.factor();
        const double tol = draw.tolerance();
        if (has_room(v, v)) {
            vector_mod::vectors_combine(v.record, v.record, alpha, beta, tol);
            reference::vectors_combine(v.mirror, v.mirror, alpha, beta, tol);
        }
        ASSERT_TRUE(v.agrees()) << "seed " << seed << ", alpha " << alpha << ", beta " << beta;
        if (v.record.elm.present() && distinct(v) && has_room(v, v)) {
            if (v.record.coef.present()) {
                EXPECT_EQ(vector_mod::vectors_are_identical(v.record, v.record, tol),
                          reference::vectors_are_identical(v.mirror, v.mirror, tol) ? 1 : 0);
            }
            vector_mod::vectors_calc_sym_diff(v.record, v.record);
            reference::vectors_calc_sym_diff(v.mirror, v.mirror);
            ASSERT_TRUE(v.agrees()) << "seed " << seed;
        }
    }
}

#ifdef ZKTARN_COMBINE_DISPATCHES
TEST(CombineVariants, GiveTheSameBits) {
    if (!__builtin_cpu_supports("fma") || !__builtin_cpu_supports("avx2")) {
        GTEST_SKIP() << "this processor runs the portable variant only";
    }
    const std::int64_t seeds = scaled(20'000);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        const std::int32_t forms = static_cast<std::int32_t>(seed % 9);
        const auto combined = [&](auto variant) {
            generator draw(3'000'000 + seed);
            const std::int32_t n = draw.between(1, 200);
            auto x = std::make_unique<mirrored_vector>(n, form_of(forms / 3));
            mirrored_vector y(n, form_of(forms % 3));
            fill(draw, *x, draw.below(n + 1), state::consistent);
            fill(draw, y, draw.below(n + 1), state::consistent);
            const vector_mod::detail::combination by{draw.factor(), draw.factor(), true, true};
            variant(x->record, y.record, by);
            // The mirror only carries the other variant's result to the comparison.
            return x;
        };
        const auto portable = combined(vector_mod::detail::combine_portable);
        const auto fused = combined(vector_mod::detail::combine_fused);
        for (std::int32_t j = 1; j <= fused->capacity; ++j) {
            portable->mirror.c(j) = fused->record.coef(j);
            if (fused->record.elm.present()) {
                portable->mirror.m(j) = fused->record.elm(j);
            }
            if (fused->record.ind.present()) {
                portable->mirror.i(j) = fused->record.ind(j);
            }
        }
        portable->mirror.nz = fused->record.nz;
        ASSERT_TRUE(portable->agrees()) << "seed " << seed;
    }
}
#endif

} // namespace
