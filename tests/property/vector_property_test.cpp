// Random operations on two vectors, on the library's records and on the reference, compared after
// every step.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "property/vector_script.hpp"
#include "support/scale.hpp"
#include "zktarn/vector/detail/reduce_in_blocks.hpp"
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
        ASSERT_TRUE(done.results_agree) << done.operation << ", round " << round;
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
        if (v.record.elm.present() && v.record.coef.present()) {
            EXPECT_EQ(vector_mod::vectors_are_identical(v.record, v.record, tol),
                      reference::vectors_are_identical(v.mirror, v.mirror, tol) ? 1 : 0);
        }
        if (v.record.elm.present() && v.mirror.nz > 1 && draw.chance(2)) {
            // The last entry repeats an earlier one and leaves its own index unlisted.
            v.set_elm(v.mirror.i(v.mirror.nz), 0);
            v.set_ind(v.mirror.nz, v.mirror.i(draw.between(1, v.mirror.nz - 1)));
        }
        if (v.record.elm.present() && has_room_for_difference(v, v)) {
            vector_mod::vectors_calc_sym_diff(v.record, v.record);
            reference::vectors_calc_sym_diff(v.mirror, v.mirror);
            ASSERT_TRUE(v.agrees()) << "seed " << seed;
        }
    }
}

// Every way of the combination at every size that its vectors allow: lists around the room that
// blocks need, nearly full lists, and lists long enough for each to prefetch.
class CombineWays : public ::testing::TestWithParam<state> {};

TEST_P(CombineWays, AgreeWithTheReference) {
    const std::int64_t seeds = scaled(20'000);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        generator draw(4'000'000 + seed);
        const std::int32_t n = draw.chance(2) ? draw.between(1, 20) : draw.between(20, 400);
        mirrored_vector x(n, form_of(0));
        mirrored_vector y(n, form_of(draw.below(2)));
        const std::int32_t x_nz = draw.chance(2) ? draw.below(n + 1) : draw.below(n / 6 + 1);
        // About 3.5 positions an entry make room for blocks.
        const std::int32_t most = draw.chance(4) ? n : std::max(n / 4 - x_nz + 3, 0);
        fill(draw, x, x_nz, GetParam());
        fill(draw, y, std::min(draw.below(most + 1), n), GetParam());
        if (!has_room(x, y)) {
            continue;
        }
        const double alpha = draw.factor();
        const double beta = draw.factor();
        const double tol = draw.chance(2) ? 0.0 : draw.tolerance();
        const auto how = static_cast<way>(draw.below(ways));
        combine(how, x.record, y.record, alpha, beta, tol);
        reference::vectors_combine(x.mirror, y.mirror, alpha, beta, tol);
        ASSERT_TRUE(x.agrees() && y.agrees())
            << "seed " << seed << ", way " << static_cast<int>(how) << ", alpha " << alpha
            << ", beta " << beta << ", capacity " << n << ", nz " << x_nz << " and " << y.mirror.nz;
    }
}

INSTANTIATE_TEST_SUITE_P(, CombineWays, ::testing::Values(state::consistent, state::inconsistent),
                         [](const auto& parameter) {
                             return parameter.param == state::consistent ? "Consistent"
                                                                         : "Inconsistent";
                         });

// Reductions in blocks at any size that leaves room for the sorted entries, with repeated entries.
TEST_P(CombineWays, ReductionInBlocksAgreesWithTheReference) {
    const std::int64_t seeds = scaled(5000);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        generator draw(7'000'000 + seed);
        const std::int32_t n = draw.chance(2) ? draw.between(1, 20) : draw.between(20, 2000);
        mirrored_vector v(n, form_of(draw.below(3)));
        fill(draw, v, draw.below(n / 2 + 1), GetParam());
        const double tol = draw.chance(2) ? 1e-9 : 0.25;
        const bool suits = v.record.coef.present() && v.record.ind.present() &&
                           vector_mod::detail::has_room_for_blocks(v.record);
        if (suits) {
            vector_mod::detail::reduce_in_blocks(v.record, tol);
            reference::vector_mod2(v.mirror, tol);
        }
        ASSERT_TRUE(v.agrees()) << "seed " << seed << ", capacity " << n << ", tol " << tol;
    }
}

// The sizes at which the procedure itself reduces in blocks, and one less; lists without room for
// the sorted entries, and sorted ones.
TEST(ReductionSizes, AgreeWithTheReferenceAroundEachChange) {
    struct sizes_of_list {
        std::int32_t capacity;
        std::int32_t nz;
        bool sorted;
    };
    constexpr vector_mod::detail::reduction_limits least;
    constexpr auto capacity = static_cast<std::int32_t>(least.capacity);
    constexpr auto nz = static_cast<std::int32_t>(least.capacity / least.spacing);
    for (const auto& [n, count, sorted] :
         std::initializer_list<sizes_of_list>{{capacity - 1, nz, false},
                                              {capacity, nz - 1, false},
                                              {capacity, nz, false},
                                              {capacity, nz, true},
                                              {capacity, capacity / 3, false}}) {
        generator draw(n + count);
        mirrored_vector v(n, form_of(0));
        for (std::int32_t k = 1; k <= count; ++k) {
            const std::int32_t place = sorted ? k : (k * 3) % count + 1;
            v.set_ind(k, place * (n / count));
            // The ends of the list are dropped.
            const bool is_end = k == 1 || k == count;
            v.set_elm(place * (n / count), is_end || draw.below(20) != 0 ? 1 : 0);
            v.set_coef(place * (n / count), is_end ? 2.0 : draw.value());
        }
        v.set_nz(count);
        vector_mod::vector_mod2(v.record, 1e-9);
        reference::vector_mod2(v.mirror, 1e-9);
        EXPECT_TRUE(v.agrees()) << n << ", " << count;
    }
}

// The first capacity that needs larger blocks, with its last index listed.
TEST(CombineInBlocks, HoldTheLastIndex) {
    constexpr vector_mod::detail::block_limits least;
    const auto n = static_cast<std::int32_t>(least.capacity) + 1;
    generator draw(1);
    mirrored_vector x(n, form_of(0));
    mirrored_vector y(n, form_of(0));
    fill(draw, x, 100, state::consistent);
    fill(draw, y, static_cast<std::int32_t>(least.y_nz), state::consistent);
    for (mirrored_vector* const each : {&x, &y}) {
        each->set_elm(each->mirror.i(1), 0);
        each->set_elm(n, 1);
        each->set_ind(1, n);
    }
    vector_mod::vectors_combine(x.record, y.record, 1.0, 2.0, 0.0);
    reference::vectors_combine(x.mirror, y.mirror, 1.0, 2.0, 0.0);
    EXPECT_TRUE(x.agrees());
}

// Sparse lists in arrays large enough for the procedure itself to prefetch.
TEST_P(CombineWays, SparseListsOfTheLibraryAgreeWithTheReference) {
    const std::int64_t seeds = scaled(3000);
    constexpr auto large = static_cast<std::int32_t>(vector_mod::detail::prefetch_sparse_from);
    constexpr auto most = static_cast<std::int32_t>(2 * vector_mod::detail::lookahead);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        generator draw(5'000'000 + seed);
        mirrored_vector x(large, form_of(draw.below(3)));
        mirrored_vector y(large, form_of(draw.below(3)));
        fill(draw, x, draw.below(most), GetParam());
        fill(draw, y, draw.below(most), GetParam());
        const double alpha = draw.chance(2) ? 1.0 : draw.factor();
        const double beta = draw.factor();
        const double tol = draw.chance(2) ? 0.0 : draw.tolerance();
        if (!has_room(x, y)) {
            continue;
        }
        vector_mod::vectors_combine(x.record, y.record, alpha, beta, tol);
        reference::vectors_combine(x.mirror, y.mirror, alpha, beta, tol);
        ASSERT_TRUE(x.agrees() && y.agrees()) << "seed " << seed;
    }
}

// The sizes at which the procedure itself changes its way, and one less.
TEST(CombineSizes, AgreeWithTheReferenceAroundEachChange) {
    struct sizes_of_pair {
        std::int32_t capacity;
        std::int32_t x_nz;
        std::int32_t y_nz;
    };
    constexpr auto sparse = static_cast<std::int32_t>(vector_mod::detail::prefetch_sparse_from);
    constexpr auto cache = static_cast<std::int32_t>(vector_mod::detail::prefetch_from);
    constexpr vector_mod::detail::block_limits least;
    constexpr auto blocks = static_cast<std::int32_t>(least.capacity);
    constexpr auto y_nz = static_cast<std::int32_t>(least.y_nz);
    for (const auto& [capacity, x_count, y_count] :
         std::initializer_list<sizes_of_pair>{{sparse - 1, 500, 10},
                                              {sparse, 500, 10},
                                              {sparse, 500, sparse / 16},
                                              {sparse, 500, sparse / 16 + 1},
                                              {cache - 1, 500, cache / 8},
                                              {cache, 500, cache / 8},
                                              {blocks - 1, 3000, y_nz},
                                              {blocks, 3000, y_nz},
                                              {blocks, 3000, y_nz - 1},
                                              {blocks, 3000, blocks / 3},
                                              {blocks, 3000, blocks / 2}}) {
        for (const double alpha : {1.0, 3.0}) {
            generator draw(capacity + y_count);
            mirrored_vector x(capacity, form_of(0));
            mirrored_vector y(capacity, form_of(0));
            fill(draw, x, x_count, state::consistent);
            fill(draw, y, y_count, state::consistent);
            vector_mod::vectors_combine(x.record, y.record, alpha, -1.0, 1e-9);
            reference::vectors_combine(x.mirror, y.mirror, alpha, -1.0, 1e-9);
            ASSERT_TRUE(x.agrees()) << capacity << ": " << x_count << " and " << y_count;
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
            // Now and then arrays that do not stay in the cache.
            constexpr auto cache = static_cast<std::int32_t>(vector_mod::detail::prefetch_from);
            const std::int32_t n = seed % 100 == 9 ? cache : draw.between(1, 200);
            auto x = std::make_unique<mirrored_vector>(n, form_of(forms / 3));
            mirrored_vector y(n, form_of(forms % 3));
            fill(draw, *x, draw.below(n + 1), state::consistent);
            fill(draw, y, draw.below(n + 1), state::consistent);
            const double alpha = draw.factor();
            const double beta = draw.factor();
            variant(x->record, y.record, alpha, beta, draw.chance(2));
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
