#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

/// Literal reference of integrality within a tolerance: the steps without shortcuts.

namespace zktarn::reference {

inline std::int64_t to_int64(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= 0x1p63) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (value <= -0x1p63) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return static_cast<std::int64_t>(value);
}

inline std::int32_t to_int32(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= 2147483647.0) {
        return std::numeric_limits<std::int32_t>::max();
    }
    if (value <= -2147483648.0) {
        return std::numeric_limits<std::int32_t>::min();
    }
    return static_cast<std::int32_t>(value);
}

inline double guarded_floor(double b, double e) {
    if (std::fabs(b) < 2147483647.0) {
        const double sum = b + e;
        std::int64_t whole = to_int64(sum);
        if (sum < static_cast<double>(whole) && whole != std::numeric_limits<std::int64_t>::min()) {
            whole -= 1;
        }
        return static_cast<double>(whole);
    }
    if (b >= 0.0 || std::isnan(b)) {
        const double t = b + e;
        return std::fabs(t) > 4503599627370496.0 ? t : static_cast<double>(to_int64(t));
    }
    const double t = (b + (-1.0)) + e;
    return std::fabs(t) > 4503599627370496.0 ? t : static_cast<double>(to_int64(t));
}

inline double fractional(double x) {
    if (std::fabs(x) > 4503599627370496.0) {
        return std::fabs(x - x);
    }
    if (std::fabs(x) < 0.5) {
        return std::fabs(0.0 - x);
    }
    const double moved = x > 0.0 ? x + 0.5 : x + -0.5;
    return std::fabs(static_cast<double>(to_int64(moved)) - x);
}

inline double epsilon_floor(double x, double eps) {
    return guarded_floor(x, eps);
}

inline double epsilon_ceiling(double x, double eps) {
    return -guarded_floor(-x, eps);
}

inline double epsilon_fractionality(double x, double eps) {
    return x - guarded_floor(x, eps);
}

/// The nearest integer if it is within the tolerance.
inline std::optional<double> epsilon_is_int(double x, double eps) {
    const double f = guarded_floor(x, eps);
    if (x - f <= eps) {
        return f;
    }
    const double c = -guarded_floor(-x, eps);
    if (c - x <= eps) {
        return c;
    }
    return std::nullopt;
}

inline std::optional<double> epsilon_is_int_scalar(double x, double scalar, double eps) {
    const double p = x * scalar;
    const double f = guarded_floor(p, 0.0);
    if (p - f <= eps) {
        return f;
    }
    const double c = -guarded_floor(-p, 0.0);
    if (c - p <= eps) {
        return c;
    }
    return std::nullopt;
}

inline bool is_even_real(double x, double eps) {
    const std::optional<double> nearest = epsilon_is_int(x, eps);
    if (!nearest) {
        return false;
    }
    return (to_int32(std::fabs(*nearest) + 0.5) & 1) == 0;
}

} // namespace zktarn::reference
