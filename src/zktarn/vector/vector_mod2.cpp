#include "zktarn/vector/vector_mod.hpp"

#include "zktarn/vector/detail/reduce_in_blocks.hpp"

namespace zktarn::vector_mod {

namespace {

/// For tol >= 0.5, where 0 and 1 are within tol of each other, so that the remainder of a remainder
/// differs: first reduces every entry, then drops.
void reduce_then_drop(vector& v, double tol) noexcept {
    bool drop = false;
    for (std::int64_t k = 0; k < v.nz; ++k) {
        const std::int64_t j = v.ind.data[k];
        const std::int64_t remainder = detail::remainder(v, j, tol);
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
    if (!(eps < 0.5)) {
        reduce_then_drop(v, eps);
    } else if (detail::suits_reduction_in_blocks(v)) {
        detail::reduce_in_blocks(v, eps);
    } else {
        v.nz = static_cast<std::int32_t>(
            detail::compact(v.ind.data, {v.nz, v.nz}, detail::reducing_entries{v, eps}));
    }
}

} // namespace zktarn::vector_mod
