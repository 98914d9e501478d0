#include <algorithm>
#include <cmath>

#include "zktarn/vector/detail/vectors_combine.hpp"
#include "zktarn/vector/detail/vectors_combine_variants.hpp"

namespace zktarn::vector_mod {

namespace detail {

bool combine_portable(vector& x, const vector& y, const combination& by) noexcept {
    return combine_coefficients(x, y, by);
}

#ifdef ZKTARN_COMBINE_DISPATCHES

[[gnu::target("avx2,fma")]] bool combine_fused(vector& x, const vector& y,
                                               const combination& by) noexcept {
    return combine_coefficients(x, y, by);
}

namespace {

using combine_function = bool (*)(vector&, const vector&, const combination&) noexcept;

// Runs while the library is being loaded, before anything of the process is ready, sanitizers
// included.
extern "C" __attribute__((no_sanitize("address", "undefined"), used)) combine_function
zktarn_resolve_combine() noexcept {
    __builtin_cpu_init();
    constexpr combine_function variants[] = {combine_portable, combine_fused};
    const bool avx2 = __builtin_cpu_supports("avx2") != 0;
    const bool fma = __builtin_cpu_supports("fma") != 0;
    return variants[avx2 & fma];
}

} // namespace

bool combine(vector& x, const vector& y, const combination& by) noexcept
    __attribute__((ifunc("zktarn_resolve_combine")));

#else

bool combine(vector& x, const vector& y, const combination& by) noexcept {
    return combine_portable(x, y, by);
}

#endif

namespace {

/// Lists the indices of y that x does not have.
void merge_support(vector& x, const vector& y) noexcept {
    if (x.elm.present()) {
        std::int32_t* const marks = x.elm.data;
        append_where(
            x, y.ind.data, y.nz,
            [=](std::int64_t j) {
                const std::int32_t mark = marks[j - 1];
                marks[j - 1] = std::max(mark, 1);
                return std::int32_t{mark < 1};
            },
            [=](std::int64_t j) { __builtin_prefetch(marks + j - 1, 1); });
    } else if (x.ind.present()) {
        for (std::int32_t k = 0, count = y.nz; k < count; ++k) {
            vector_add_nz(x, y.ind.data[k]);
        }
    }
}

/// What is left of a combination when there is nothing to add up.
[[gnu::noinline]] void combine_supports(vector& x, const vector& y,
                                        const combination& by) noexcept {
    if (x.coef.present() && by.scales) {
        scale_entries(x, by.alpha);
    }
    if (by.adds) {
        merge_support(x, y);
    }
    if (x.coef.present()) {
        vector_rem_zeros(x);
    }
}

} // namespace

} // namespace detail

void vectors_combine(vector& x, const vector& y, const double& alpha, const double& beta,
                     const double& tol) noexcept {
    ZKTARN_CHECK(detail::is_sound(x));
    ZKTARN_CHECK(detail::is_sound(y) && detail::lists_elements(y, x));
    ZKTARN_CHECK(!(std::fabs(beta) > tol) || detail::has_room_for(x, y));
    const detail::combination by{alpha, beta, std::fabs(alpha - 1.0) > tol, std::fabs(beta) > tol};
    if (!x.coef.present() || !y.coef.present()) {
        detail::combine_supports(x, y, by);
    } else if (detail::combine(x, y, by)) {
        vector_rem_zeros(x);
    }
}

} // namespace zktarn::vector_mod
