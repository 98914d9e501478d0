#include "zktarn/vector/vector_mod.hpp"

#include "zktarn/util/detail/guarded_floor.hpp"
#include "zktarn/vector/detail/compact.hpp"

namespace zktarn::vector_mod {

namespace {

using util::detail::modulo_2;

/// The coefficient of element i, counted from 0, as it is found through the list.
double listed_coef(const vector& v, std::int64_t i) noexcept {
    const bool member = !v.elm.present() || v.elm.data[i] >= 1;
    return member ? v.coef.data[i] : 0.0;
}

/// Reduces an entry when it is first looked at and drops it when it comes out as zero. To look
/// twice does no harm as long as 0 and 1 are their own remainders.
struct reducing_judge {
    vector& v;
    double tol;

    std::uint64_t dead(const std::int32_t* block, std::int64_t count) const noexcept {
        const std::uint64_t word =
            detail::answers(block, count, [this](std::int64_t j) { return 1 - reduce(j - 1); });
        if (v.elm.present()) {
            detail::clear_marks(v.elm.data, block, word);
        }
        return word;
    }
    static void removed(const std::int32_t*, const std::int32_t*) noexcept {}

    std::int64_t reduce(std::int64_t i) const noexcept {
        const std::int64_t remainder = modulo_2(listed_coef(v, i), tol);
        v.coef.data[i] = static_cast<double>(remainder);
        return remainder;
    }
};

/// The rule as it stands, for tolerances that make integers of each other.
void reduce_then_drop(vector& v, double tol) noexcept {
    bool drop = false;
    for (std::int32_t k = 0; k < v.nz; ++k) {
        const std::int64_t i = std::int64_t{v.ind.data[k]} - 1;
        const std::int64_t remainder = modulo_2(listed_coef(v, i), tol);
        v.coef.data[i] = static_cast<double>(remainder);
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
        v.nz = detail::compact(v.ind.data, v.nz, detail::to_the_end, reducing_judge{v, eps});
    } else {
        reduce_then_drop(v, eps);
    }
}

} // namespace zktarn::vector_mod
