#include "zktarn/vector/vector_mod.hpp"

#include <cmath>

#include "zktarn/vector/detail/prefetch.hpp"

namespace zktarn::vector_mod {

namespace {

/// Shorter than in other loops, because each entry needs four cache lines.
constexpr std::int64_t ahead_of_use = detail::lookahead / 4;

} // namespace

flag vectors_are_identical(const vector& a, const vector& b, const double& tol) noexcept {
    if (a.nz != b.nz) {
        return 0;
    }
    ZKTARN_CHECK(a.nz < 1 || (a.coef.present() && detail::is_readable(a)));
    ZKTARN_CHECK(a.nz < 1 || (b.coef.present() && b.elm.present() && detail::is_readable(b) &&
                              detail::lists_elements(a, b)));
    const double eps = tol;
    const std::int32_t* const list = a.ind.data;
    const std::int32_t* const marks = a.elm.data;
    const double* const coef = a.coef.data;
    const std::int32_t* const b_marks = b.elm.data;
    const double* const b_coef = b.coef.data;
    const auto differs = [=](std::int64_t j) __attribute__((always_inline)) {
        const double value = marks == nullptr || marks[j - 1] >= 1 ? coef[j - 1] : 0.0;
        return b_marks[j - 1] < 1 || std::fabs(value - b_coef[j - 1]) > eps;
    };
    const std::int64_t count = a.nz;
    std::int64_t k = 0;
    for (; k < count - ahead_of_use; ++k) {
        const std::int64_t ahead = list[k + ahead_of_use];
        if (marks != nullptr) {
            detail::prefetch_read(marks, ahead);
        }
        detail::prefetch_read(coef, ahead);
        detail::prefetch_read(b_marks, ahead);
        detail::prefetch_read(b_coef, ahead);
        if (differs(list[k])) {
            return 0;
        }
    }
    for (; k < count; ++k) {
        if (differs(list[k])) {
            return 0;
        }
    }
    return 1;
}

} // namespace zktarn::vector_mod
