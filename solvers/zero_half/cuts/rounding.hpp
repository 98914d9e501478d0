#pragma once

#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// The greatest integer at most `x + tolerance`. The library's floor is for what a solver has in
/// its columns: of an integer of -2147483647 or less it is one too low. So integers are found
/// first.
inline double floor_of(double x, double tolerance) {
    zktarn::flag is_integer = 0;
    double nearest = 0.0;
    zktarn::util::epsilon_is_int(x, tolerance, is_integer, nearest);
    return is_integer != 0 ? nearest : zktarn::util::epsilon_floor(x, tolerance);
}

/// The least integer at least `x - tolerance`.
inline double ceiling_of(double x, double tolerance) {
    return 0.0 - floor_of(-x, tolerance);
}

} // namespace zero_half
