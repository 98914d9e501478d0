#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// Values within this distance of an integer count as integers.
inline constexpr double integrality_tolerance = 1e-9;

/// A factor that makes all values integers; nothing when there is none of moderate size. It is 1
/// for integers: a smaller factor would be a fraction that is not exact.
inline std::optional<double> integral_scale(std::span<const double> values) {
    if (std::all_of(values.begin(), values.end(),
                    [](double value) { return std::trunc(value) == value; })) {
        return 1.0;
    }
    constexpr double largest_denominator = 10'000.0;
    constexpr double largest_scale = 1e7;
    zktarn::flag found = 0;
    double scale = 0.0;
    zktarn::util::find_scalar_integral(
        static_cast<std::int32_t>(values.size()),
        [&](const std::int32_t& i, double& value, zktarn::flag& marked, zktarn::flag& selected) {
            value = values[static_cast<std::size_t>(i - 1)];
            marked = 0;
            selected = 1;
        },
        integrality_tolerance, largest_denominator, largest_scale, found, scale);
    return found != 0 ? std::optional(scale) : std::nullopt;
}

inline double nearest_integer(double value) {
    constexpr double one_half = 0.5;
    return zktarn::util::epsilon_floor(value, one_half);
}

} // namespace zero_half
