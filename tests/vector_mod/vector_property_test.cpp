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

#include "support/scale.hpp"
#include "vector_mod/mirrored_vector.hpp"
#include "zktarn/vector/vector_mod.hpp"
#include "zktarn/vector/vectors_combine_variants_internal.hpp"

namespace {

using namespace zktarn;
using zktarn::testing::form;
using zktarn::testing::mirrored_vector;
using zktarn::testing::scaled;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

class generator {
public:
    explicit generator(std::uint64_t seed) : engine_(seed) {}

    std::int32_t below(std::int32_t n) {
        return static_cast<std::int32_t>(engine_() % static_cast<std::uint64_t>(n));
    }
    std::int32_t between(std::int32_t low, std::int32_t high) {
        return low + below(high - low + 1);
    }
    bool chance(std::int32_t one_in) { return below(one_in) == 0; }

    double value() {
        static constexpr double special[] = {
            0.0,          -0.0,         nan,          inf,   -inf,        5e-324,
            -5e-324,      2.5,          0.5,          1e300, 1e-300,      4096.0,
            2147483646.0, 2147483647.0, 2147483648.0, -3e9,  1.0 + 1e-10, 2.0 - 1e-10};
        if (chance(6)) {
            return special[below(std::size(special))];
        }
        return between(-4, 4);
    }

    double factor() {
        static constexpr double usual[] = {1.0,  -1.0,      0.0, 2.0, 0.5,
                                           -3.0, 1.0 / 3.0, nan, inf, 1e-12};
        return chance(3) ? value() : usual[below(std::size(usual))];
    }

    double tolerance() {
        static constexpr double usual[] = {0.0, 1e-9,  1e-6,  0.25, 0.5, 1.0,
                                           2.0, 1e300, -1e-9, nan,  inf};
        return usual[chance(2) ? below(3) : below(std::size(usual))];
    }

    template <class Container>
    void shuffle(Container& items) {
        std::shuffle(items.begin(), items.end(), engine_);
    }

private:
    std::mt19937_64 engine_;
};

/// How far a vector is from what its invariants promise.
enum class state { consistent, inconsistent };

/// Fills a vector with `count` listed entries. An inconsistent one may list an index without a mark
/// or twice, and may have marks of any value.
void fill(generator& draw, mirrored_vector& v, std::int32_t count, state how) {
    const std::int32_t n = v.capacity;
    if (v.record.coef.present()) {
        for (std::int32_t j = 1; j <= n; ++j) {
            v.set_coef(j, draw.value());
        }
    }
    const bool marks = v.record.elm.present();
    if (marks) {
        for (std::int32_t j = 1; j <= n; ++j) {
            v.set_elm(j, how == state::inconsistent && draw.chance(20) ? draw.between(-3, 0) : 0);
        }
    }
    if (!v.record.ind.present()) {
        return;
    }
    std::vector<std::int32_t> indices(static_cast<std::size_t>(n));
    for (std::int32_t j = 1; j <= n; ++j) {
        indices[static_cast<std::size_t>(j - 1)] = j;
    }
    draw.shuffle(indices);
    for (std::int32_t k = 1; k <= count; ++k) {
        std::int32_t j = indices[static_cast<std::size_t>(k - 1)];
        if (how == state::inconsistent && draw.chance(12)) {
            j = draw.between(1, n);
        }
        v.set_ind(k, j);
        if (marks) {
            const bool odd = how == state::inconsistent && draw.chance(10);
            v.set_elm(j, odd ? draw.between(-2, 3) : 1);
        }
    }
    v.set_nz(count);
}

/// How many indices of y would be appended to x at the most.
std::int32_t appended(const mirrored_vector& x, const mirrored_vector& y) {
    std::int32_t count = 0;
    for (std::int32_t k = 1; k <= y.mirror.nz; ++k) {
        const std::int32_t j = y.mirror.i(k);
        const bool member =
            x.mirror.marks_mode() ? x.mirror.m(j) >= 1 : reference::search(x.mirror, j) != 0;
        count += member ? 0 : 1;
    }
    return count;
}

/// Room in the list of x for whatever y brings along. A symmetric difference may append an index
/// more than once, when y lists it more than once.
bool has_room(const mirrored_vector& x, const mirrored_vector& y) {
    return !x.mirror.ind || x.mirror.nz + appended(x, y) <= x.capacity;
}

/// No index twice in a list.
bool distinct(const mirrored_vector& v) {
    for (std::int32_t k = 1; k <= v.mirror.nz; ++k) {
        if (reference::search(v.mirror, v.mirror.i(k)) != k) {
            return false;
        }
    }
    return true;
}

/// One random operation that the contents of the vectors allow, on both. Returns its name.
const char* step(generator& draw, mirrored_vector& x, mirrored_vector& y, state how) {
    using namespace vector_mod;
    const std::int32_t j = draw.between(1, x.capacity);
    const double value = draw.value();
    const double tol = draw.tolerance();
    const bool listed = x.mirror.ind.has_value();
    const bool marks = x.mirror.elm.has_value();
    const bool coef = x.mirror.coef.has_value();
    const bool room = !listed || x.mirror.nz < x.capacity;
    switch (draw.below(11)) {
    case 0:
        if (room) {
            vector_add_nz(x.record, j);
            reference::vector_add_nz(x.mirror, j);
        }
        return "vector_add_nz without value";
    case 1:
        if (room && coef) {
            vector_add_nz(x.record, j, value);
            reference::vector_add_nz(x.mirror, j, value);
        }
        return "vector_add_nz";
    case 2:
        if (marks && listed && x.mirror.nz >= 1) {
            const std::int32_t k = draw.between(1, x.mirror.nz);
            vector_rem_nz(x.record, k);
            reference::vector_rem_nz(x.mirror, k);
        }
        return "vector_rem_nz";
    case 3:
        if (coef && listed) {
            vector_rem_zeros(x.record);
            reference::vector_rem_zeros(x.mirror);
        }
        return "vector_rem_zeros";
    case 4:
        if (how == state::inconsistent && marks && listed) {
            vector_clean_index(x.record);
            reference::vector_clean_index(x.mirror);
        }
        return "vector_clean_index";
    case 5:
        if (marks && listed && draw.chance(4)) {
            vector_clear(x.record);
            reference::vector_clear(x.mirror);
        }
        return "vector_clear";
    case 6:
        if (coef && listed) {
            vector_mod2(x.record, tol);
            reference::vector_mod2(x.mirror, tol);
        }
        return "vector_mod2";
    case 7:
        if (marks && listed && (y.mirror.ind || y.mirror.nz < 1) && has_room(x, y)) {
            // What is appended twice needs room twice.
            if (distinct(y)) {
                vectors_calc_sym_diff(x.record, y.record);
                reference::vectors_calc_sym_diff(x.mirror, y.mirror);
            }
        }
        return "vectors_calc_sym_diff";
    case 8:
        if (y.mirror.elm && coef && y.mirror.coef && listed) {
            EXPECT_EQ(vectors_are_identical(x.record, y.record, tol),
                      reference::vectors_are_identical(x.mirror, y.mirror, tol) ? 1 : 0);
        }
        return "vectors_are_identical";
    case 9:
        if (coef) {
            EXPECT_TRUE(std::bit_cast<std::uint64_t>(vector_get_coef(x.record, j)) ==
                            std::bit_cast<std::uint64_t>(reference::vector_get_coef(x.mirror, j)) ||
                        std::isnan(vector_get_coef(x.record, j)));
        }
        return "vector_get_coef";
    default:
        if (has_room(x, y)) {
            const double alpha = draw.factor();
            const double beta = draw.factor();
            vectors_combine(x.record, y.record, alpha, beta, tol);
            reference::vectors_combine(x.mirror, y.mirror, alpha, beta, tol);
        }
        return "vectors_combine";
    }
}

form form_of(std::int32_t bits) {
    // Marks with a list, a list, neither; with and without coefficients.
    const std::int32_t mode = bits % 3;
    return {.coef = bits < 3, .ind = mode != 2, .elm = mode == 0};
}

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
        const char* const name = turned ? step(draw, y, x, how) : step(draw, x, y, how);
        ASSERT_TRUE(x.agrees()) << name << ", round " << round;
        ASSERT_TRUE(y.agrees()) << name << ", round " << round;
    }
}

class VectorProperty : public ::testing::TestWithParam<state> {};

TEST_P(VectorProperty, AgreesWithTheReferenceInEveryMode) {
    const std::int64_t seeds = scaled(400);
    for (std::int64_t seed = 0; seed < seeds; ++seed) {
        for (std::int32_t forms = 0; forms < 36; ++forms) {
            generator draw(static_cast<std::uint64_t>(seed * 36 + forms));
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
        generator draw(static_cast<std::uint64_t>(1'000'000 + seed));
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
        generator draw(static_cast<std::uint64_t>(2'000'000 + seed));
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
            generator draw(static_cast<std::uint64_t>(3'000'000 + seed));
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
