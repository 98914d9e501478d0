#pragma once

#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// The greatest integer that is at most `x + tolerance`; exact for every finite `x`. Integers are
/// recognised first, because `epsilon_floor` alone returns n - 1 for an integer n <= -2147483647.
inline double floor_of(double x, double tolerance) {
    zktarn::flag is_integer = 0;
    double nearest = 0.0;
    zktarn::util::epsilon_is_int(x, tolerance, is_integer, nearest);
    return is_integer != 0 ? nearest : zktarn::util::epsilon_floor(x, tolerance);
}

/// The least integer that is at least `x - tolerance`; never -0.0.
inline double ceiling_of(double x, double tolerance) {
    return 0.0 - floor_of(-x, tolerance);
}

} // namespace zero_half
