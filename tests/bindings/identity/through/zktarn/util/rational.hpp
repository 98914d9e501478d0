#pragma once

#include "via.h"
#include "zktarn/types.hpp"

namespace zktarn::util {

inline void get_rational_rep(const double& x, const double& eps, const double& max_den, flag& found,
                             double& num, double& den) {
    via_get_rational_rep(x, eps, max_den, &found, &num, &den);
}

} // namespace zktarn::util
