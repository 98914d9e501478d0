#pragma once

#include <cstdint>

#include "via.h"
#include "zktarn/optional_address.hpp"

namespace zktarn::util {

inline double fractional(const double& x) {
    return via_fractional(x);
}
inline void epsilon_is_int(const double& x, const double& eps, flag& is_int,
                           optional_ref<double> nearest = {}) {
    via_epsilon_is_int(x, eps, &is_int, address_of(nearest));
}
inline void epsilon_is_int_scalar(const double& x, const double& scalar, const double& eps,
                                  flag& is_int, optional_ref<double> nearest = {}) {
    via_epsilon_is_int_scalar(x, scalar, eps, &is_int, address_of(nearest));
}
inline double epsilon_fractionality(const double& x, const double& eps) {
    return via_epsilon_fractionality(x, eps);
}
inline double epsilon_floor(const double& x, const double& eps) {
    return via_epsilon_floor(x, eps);
}
inline double epsilon_ceiling(const double& x, const double& eps) {
    return via_epsilon_ceiling(x, eps);
}
inline flag is_even_real(const double& x, const double& eps) {
    return via_is_even_real(x, eps);
}
inline flag is_even_int(const std::int32_t& n) {
    return via_is_even_int(n);
}

} // namespace zktarn::util
