#include "zktarn/vector/vector_mod.hpp"

#include "zktarn/util/detail/guarded_floor.hpp"
#include "zktarn/vector/detail/compaction.hpp"
#include "zktarn/vector/detail/prefetch.hpp"

namespace zktarn::vector_mod {

namespace {

using util::detail::modulo_2;

/// The coefficient of a listed index: 0.0 when it has no mark.
[[gnu::always_inline]] inline double listed_coef(const vector& v, std::int64_t j) noexcept {
    const bool member = !v.elm.present() || v.elm.data[j - 1] >= 1;
    return member ? v.coef.data[j - 1] : 0.0;
}

/// Reduces each entry when it is tested, and drops it when the remainder is zero. A second test of
/// an entry gives the same result, because 0 and 1 are their own remainders for tol < 0.5.
struct reducing_entries {
    vector& v;
    double tol;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept {
        detail::prefetch_write(v.coef.data, j);
        if (v.elm.present()) {
            detail::prefetch_write(v.elm.data, j);
        }
    }
    [[gnu::always_inline]] bool drops(std::int64_t j) const noexcept {
        const std::int64_t remainder = modulo_2(listed_coef(v, j), tol);
        v.coef.data[j - 1] = static_cast<double>(remainder);
        return remainder == 0;
    }
    [[gnu::always_inline]] void tested(const std::int32_t* block,
                                       std::uint64_t word) const noexcept {
        if (v.elm.present()) {
            detail::clear_marks(v.elm.data, block, word);
        }
    }
    [[gnu::always_inline]] static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

/// For tol >= 0.5, where 0 and 1 are within tol of each other, so that the remainder of a remainder
/// differs: first reduces every entry, then drops.
void reduce_then_drop(vector& v, double tol) noexcept {
    bool drop = false;
    for (std::int64_t k = 0; k < v.nz; ++k) {
        const std::int64_t j = v.ind.data[k];
        const std::int64_t remainder = modulo_2(listed_coef(v, j), tol);
        v.coef.data[j - 1] = static_cast<double>(remainder);
        drop |= remainder == 0;
    }
    if (drop) {
        vector_rem_zeros(v);
    }
}

} // namespace

void vector_mod2(vector& v, const double& tol) noexcept {
    const double eps = tol;
    if (v.nz < 1) {
        return;
    }
    ZKTARN_CHECK(v.coef.present() && detail::has_one_capacity(v) && detail::lists_elements(v, v));
    if (eps < 0.5) {
        v.nz = static_cast<std::int32_t>(
            detail::compact(v.ind.data, {v.nz, v.nz}, reducing_entries{v, eps}));
    } else {
        reduce_then_drop(v, eps);
    }
}

} // namespace zktarn::vector_mod
