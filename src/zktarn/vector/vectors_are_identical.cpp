#include "zktarn/vector/vector_mod.hpp"

#include <cmath>

namespace zktarn::vector_mod {

flag vectors_are_identical(const vector& a, const vector& b, const double& tol) noexcept {
    if (a.nz != b.nz) {
        return 0;
    }
    ZKTARN_CHECK(a.nz < 1 || (a.coef.present() && detail::is_sound(a)));
    ZKTARN_CHECK(a.nz < 1 || (b.coef.present() && b.elm.present() && detail::is_sound(b) &&
                              detail::lists_elements(a, b)));
    const double eps = tol;
    const std::int32_t* const marks = a.elm.data;
    for (std::int32_t k = 0; k < a.nz; ++k) {
        const std::int64_t i = std::int64_t{a.ind.data[k]} - 1;
        const double ours = marks == nullptr || marks[i] >= 1 ? a.coef.data[i] : 0.0;
        if (b.elm.data[i] < 1 || std::fabs(ours - b.coef.data[i]) > eps) {
            return 0;
        }
    }
    return 1;
}

} // namespace zktarn::vector_mod
