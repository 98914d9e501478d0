#pragma once

#include <cstdint>

#include "via.h"

namespace zktarn::util {

inline double xgcd_r8(const double& a, const double& b, const double& eps) {
    return via_xgcd_r8(a, b, eps);
}
inline std::int32_t xgcd_i4(const std::int32_t& a, const std::int32_t& b) {
    return via_xgcd_i4(a, b);
}

} // namespace zktarn::util
