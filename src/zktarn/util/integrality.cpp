#include "zktarn/util/integrality.hpp"

#include "zktarn/util/detail/to_integer.hpp"

namespace zktarn::util {

double fractional(const double& x) noexcept {
    return detail::distance_to_integer(x);
}

void epsilon_is_int(const double& x, const double& eps, flag& is_int,
                    optional_ref<double> nearest) noexcept {
    detail::report(detail::decide_integer(x, eps), is_int, nearest);
}

void epsilon_is_int_scalar(const double& x, const double& scalar, const double& eps, flag& is_int,
                           optional_ref<double> nearest) noexcept {
    detail::report(detail::decide_scaled(x, scalar, eps), is_int, nearest);
}

double epsilon_fractionality(const double& x, const double& eps) noexcept {
    return detail::fractionality(x, eps);
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
