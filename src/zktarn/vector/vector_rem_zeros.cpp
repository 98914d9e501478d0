#include "zktarn/vector/detail/drop_zeros.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace zktarn::vector_mod {

void detail::drop_zeros(vector& v, std::int64_t kept_from) noexcept {
    std::int32_t* const list = v.ind.data;
    const double* const coef = v.coef.data;
    std::int64_t nz = 0;
    if (!v.elm.present()) {
        nz = drop<true>(list, v.nz, kept_from, listed_entries{coef});
    } else if (v.nz + kept_from <= v.ind.extent[0]) {
        nz = drop_collected(list, v.nz, kept_from, marked_entries{coef, v.elm.data});
    } else {
        nz = drop<true>(list, v.nz, kept_from, marked_entries{coef, v.elm.data});
    }
    v.nz = static_cast<std::int32_t>(nz);
}

void vector_rem_zeros(vector& v) noexcept {
    if (v.nz < 1) {
        return;
    }
    ZKTARN_CHECK(v.coef.present() && detail::has_one_capacity(v) && detail::lists_elements(v, v));
    detail::drop_zeros(v, v.nz);
}

} // namespace zktarn::vector_mod
