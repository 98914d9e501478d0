#include "zktarn/util/integrality.hpp"

#include <cmath>

#include "zktarn/util/detail/guarded_floor.hpp"

namespace zktarn::util {

namespace {

void report(detail::integer_decision decision, flag& is_int,
            optional_ref<double> nearest) noexcept {
    is_int = decision.is_integer ? 1 : 0;
    if (decision.is_integer && nearest) {
        *nearest = decision.nearest;
    }
}

} // namespace

double fractional(const double& x) noexcept {
    constexpr double integral_above = 4503599627370496.0; // 2^52
    const double magnitude = std::fabs(x);
    if (magnitude > integral_above) {
        return std::fabs(x - x);
    }
    if (magnitude < 0.5) {
        return magnitude;
    }
    const double rounded = static_cast<double>(detail::truncate_i64(x + std::copysign(0.5, x)));
    return std::fabs(rounded - x);
}

void epsilon_is_int(const double& x, const double& eps, flag& is_int,
                    optional_ref<double> nearest) noexcept {
    report(detail::decide_integer(x, eps, eps), is_int, nearest);
}

void epsilon_is_int_scalar(const double& x, const double& scalar, const double& eps, flag& is_int,
                           optional_ref<double> nearest) noexcept {
    report(detail::decide_integer(x * scalar, eps, 0.0), is_int, nearest);
}

double epsilon_fractionality(const double& x, const double& eps) noexcept {
    return x - detail::guarded_floor(x, eps);
}

double epsilon_floor(const double& x, const double& eps) noexcept {
    return detail::guarded_floor(x, eps);
}

double epsilon_ceiling(const double& x, const double& eps) noexcept {
    return detail::guarded_ceiling(x, eps);
}

flag is_even_real(const double& x, const double& eps) noexcept {
    return 1 - detail::modulo_2(x, eps);
}

} // namespace zktarn::util
