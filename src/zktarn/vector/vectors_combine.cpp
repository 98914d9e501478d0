#include "zktarn/vector/vector_mod.hpp"

#include <algorithm>
#include <cmath>

#include "zktarn/vector/detail/combine_in_blocks.hpp"
#include "zktarn/vector/detail/combine_marked.hpp"
#include "zktarn/vector/detail/combine_unmarked.hpp"
#include "zktarn/vector/detail/vectors_combine_variants.hpp"

namespace zktarn::vector_mod {

namespace detail {

namespace {

using combine_function = void (*)(vector&, const vector&, double, double, bool) noexcept;

/// Chooses among the methods for arrays that do not stay in the cache.
template <combine_function in_list_order>
[[gnu::always_inline]] inline void combine_in_other_ways(vector& x, const vector& y,
                                                         const factors& weights) noexcept {
    if (&x == &y) {
        combine_with_itself(x, weights);
    } else if (!x.elm.present()) {
        combine_unmarked(x, y, weights);
    } else if (suits_blocks(x, y)) {
        combine_in_blocks(x, y, weights);
    } else {
        in_list_order(x, y, weights.alpha, weights.beta, weights.scales);
    }
}

/// Whether x has marks, is another record than y, and has arrays that are in the cache.
[[gnu::always_inline]] inline bool suits_cache(const vector& x, const vector& y) noexcept {
    return x.elm.present() && &x != &y && is_in_cache(x.elm.extent[0], y.nz);
}

// Separate functions, so that the loops keep their pointers in registers and short calls save few
// registers.
[[gnu::noinline]] void combine_in_list_order_portable(vector& x, const vector& y, double alpha,
                                                      double beta, bool scales) noexcept {
    combine_in_list_order(x, y, {alpha, beta, scales});
}

[[gnu::noinline]] void combine_otherwise_portable(vector& x, const vector& y, double alpha,
                                                  double beta, bool scales) noexcept {
    combine_in_other_ways<combine_in_list_order_portable>(x, y, {alpha, beta, scales});
}

} // namespace

void combine_portable(vector& x, const vector& y, double alpha, double beta, bool scales) noexcept {
    if (!suits_cache(x, y)) {
        combine_otherwise_portable(x, y, alpha, beta, scales);
        return;
    }
    combine_in_cache(x, y, {alpha, beta, scales});
}

#ifdef ZKTARN_COMBINE_DISPATCHES

namespace {

[[gnu::noinline, gnu::target("avx2,fma")]] void
combine_in_list_order_fused(vector& x, const vector& y, double alpha, double beta,
                            bool scales) noexcept {
    combine_in_list_order(x, y, {alpha, beta, scales});
}

[[gnu::noinline, gnu::target("avx2,fma")]] void combine_otherwise_fused(vector& x, const vector& y,
                                                                        double alpha, double beta,
                                                                        bool scales) noexcept {
    combine_in_other_ways<combine_in_list_order_fused>(x, y, {alpha, beta, scales});
}

} // namespace

[[gnu::target("avx2,fma")]] void combine_fused(vector& x, const vector& y, double alpha,
                                               double beta, bool scales) noexcept {
    if (!suits_cache(x, y)) {
        combine_otherwise_fused(x, y, alpha, beta, scales);
        return;
    }
    combine_in_cache(x, y, {alpha, beta, scales});
}

namespace {

// Runs while the library is being loaded, before anything of the process is ready, sanitizers
// included.
extern "C" __attribute__((no_sanitize("address", "undefined"), used)) combine_function
zktarn_resolve_combine() noexcept {
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") != 0;
    const bool fma = __builtin_cpu_supports("fma") != 0;
    return avx2 && fma ? combine_fused : combine_portable;
}

} // namespace

void combine(vector& x, const vector& y, double alpha, double beta, bool scales) noexcept
    __attribute__((ifunc("zktarn_resolve_combine")));

#else

void combine(vector& x, const vector& y, double alpha, double beta, bool scales) noexcept {
    combine_portable(x, y, alpha, beta, scales);
}

#endif

namespace {

/// Lists the indices of y that x does not have.
void merge_support(vector& x, const vector& y) noexcept {
    if (x.elm.present()) {
        std::int32_t* const elm = x.elm.data;
        append_if_new(
            x, y.ind.data,
            y.nz, [=](std::int64_t j) __attribute__((always_inline)) { prefetch_write(elm, j); },
            [=](std::int64_t j) __attribute__((always_inline)) {
                const membership known(elm[j - 1]);
                elm[j - 1] = known.after_add();
                return known.is_new;
            });
    } else if (x.ind.present()) {
        for (std::int64_t k = 0, count = y.nz; k < count; ++k) {
            vector_add_nz(x, y.ind.data[k]);
        }
    }
}

/// A combination in which no sums are formed: y is not added, or coefficients are missing.
[[gnu::noinline]] void combine_without_sums(vector& x, const vector& y, const factors& weights,
                                            bool merges) noexcept {
    // Entries may have been zero before the call; only a scaling pass would have found them.
    bool drop = x.coef.present();
    if (drop && weights.scales) {
        drop = scale_entries(x, weights.alpha);
    }
    if (merges) {
        merge_support(x, y);
        drop = x.coef.present();
    }
    if (drop && x.nz >= 1) {
        drop_zeros(x, x.nz);
    }
}

} // namespace

} // namespace detail

void vectors_combine(vector& x, const vector& y, const double& alpha, const double& beta,
                     const double& tol) noexcept {
    ZKTARN_CHECK(detail::is_readable(x));
    ZKTARN_CHECK(detail::is_readable(y) && detail::lists_elements(y, x));
    ZKTARN_CHECK(!(std::fabs(beta) > tol) || detail::has_room_for(x, y));
    const bool scales = std::fabs(alpha - 1.0) > tol;
    const bool adds = std::fabs(beta) > tol;
    if (adds && x.coef.present() && y.coef.present()) {
        detail::combine(x, y, alpha, beta, scales);
    } else {
        detail::combine_without_sums(x, y, {alpha, beta, scales}, adds);
    }
}

} // namespace zktarn::vector_mod
