#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "zktarn/types.hpp"

// Reals to integers: conversions, floors, ceilings and integrality decisions. Inline, so that the
// library in C contains them and needs no second call.

namespace zktarn::util::detail {

// Conversions, defined for every real: truncation toward zero, saturation at both ends of the
// range, NaN to 0. The plain conversion is undefined outside the range, and processors differ
// there.
// -------------------------------------------------------------------------------------------

inline std::int64_t truncate_i64(double value) noexcept {
    using limits = std::numeric_limits<std::int64_t>;
    // 2^63 - 1 is not a double; 2^63 is.
    constexpr double range_end = 0x1p63;
    if (std::fabs(value) < range_end) [[likely]] {
        return static_cast<std::int64_t>(value);
    }
    if (std::isnan(value)) {
        return 0;
    }
    return std::signbit(value) ? limits::min() : limits::max();
}

inline std::int32_t truncate_i32(double value) noexcept {
    using limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(truncate_i64(value), limits::min(), limits::max()));
}

// Guarded floors and ceilings
// -------------------------------------------------------------------------------------------

/// The floor of base + offset, by the rule that integrality.hpp states.
///
/// For a base of -(2^31 - 1) or less, 1 is subtracted before truncation toward zero, which is the
/// floor of a fractional sum and 1 less than the floor of an integral one. Beyond 2^52 every real
/// is an integer and truncation has no effect.
inline double guarded_floor(double base, double offset) noexcept {
    constexpr double exact_below = 2147483647.0;          // 2^31 - 1
    constexpr double integral_above = 4503599627370496.0; // 2^52

    if (std::fabs(base) < exact_below) {
        const double sum = base + offset;
        const double truncated = static_cast<double>(truncate_i64(sum));
        // A truncated value above the sum is small, so 1.0 is subtracted exactly; or it is -2^63
        // in place of a lesser sum, and stays -2^63.
        return sum < truncated ? truncated - 1.0 : truncated;
    }
    const double sum = base <= -exact_below ? (base - 1.0) + offset : base + offset;
    return std::fabs(sum) > integral_above ? sum : static_cast<double>(truncate_i64(sum));
}

/// The ceiling of base - offset: the negated guarded floor of the negated base.
inline double guarded_ceiling(double base, double offset) noexcept {
    return -guarded_floor(-base, offset);
}

// Integrality within a tolerance
// -------------------------------------------------------------------------------------------

/// Whether a real is integral within a tolerance, and the integer tested last.
struct integer_decision {
    bool is_integer;
    double nearest;
};

/// Whether `value` is within `eps` of its guarded floor or, failing that, of its guarded ceiling,
/// both taken with `offset`.
inline integer_decision decide_integer(double value, double eps, double offset) noexcept {
    const double floor = guarded_floor(value, offset);
    if (value - floor <= eps) {
        return {true, floor};
    }
    const double ceiling = guarded_ceiling(value, offset);
    return {ceiling - value <= eps, ceiling};
}

/// The rule of `epsilon_is_int`: the tolerance is also the offset.
inline integer_decision decide_integer(double value, double eps) noexcept {
    return decide_integer(value, eps, eps);
}

/// The rule of `epsilon_is_int_scalar`: floor and ceiling of the product are taken without offset.
inline integer_decision decide_scaled(double value, double scalar, double eps) noexcept {
    return decide_integer(value * scalar, eps, 0.0);
}

/// The distance of `value` above its guarded floor.
inline double fractionality(double value, double eps) noexcept {
    return value - guarded_floor(value, eps);
}

/// Writes a decision to the outputs of `epsilon_is_int`.
inline void report(const integer_decision& decision, flag& is_int,
                   optional_ref<double> nearest) noexcept {
    is_int = decision.is_integer ? 1 : 0;
    if (decision.is_integer && nearest) {
        *nearest = decision.nearest;
    }
}

/// The distance of `value` to its nearest integer; NaN for infinities and NaN.
inline double distance_to_integer(double value) noexcept {
    constexpr double integral_above = 4503599627370496.0; // 2^52
    const double magnitude = std::fabs(value);
    if (magnitude > integral_above) {
        return std::fabs(value - value);
    }
    if (magnitude < 0.5) {
        return magnitude;
    }
    const double rounded = static_cast<double>(truncate_i64(value + std::copysign(0.5, value)));
    return std::fabs(rounded - value);
}

// Parity
// -------------------------------------------------------------------------------------------

/// 0 if `value` is within `eps` of an even integer, else 1. The integer is converted to 32 bits
/// with saturation, so 2147483647 and everything above it counts as odd.
inline std::int64_t modulo_2_by_rule(double value, double eps) noexcept {
    const integer_decision decision = decide_integer(value, eps);
    return decision.is_integer ? truncate_i32(std::fabs(decision.nearest) + 0.5) & 1 : 1;
}

/// The same, without a branch on the parity of a value near its floor.
///
/// If value and value + eps are within +-(2^31 - 1), the guarded floor is the plain floor and no
/// conversion saturates, so the parity of the floor is its lowest bit.
[[gnu::always_inline]] inline std::int64_t modulo_2(double value, double eps) noexcept {
    constexpr double limit = 2147483647.0; // 2^31 - 1
    const double sum = value + eps;
    if (std::fabs(value) < limit && std::fabs(sum) < limit) [[likely]] {
        std::int64_t floor = static_cast<std::int64_t>(sum);
        floor -= static_cast<std::int64_t>(sum < static_cast<double>(floor));
        if (value - static_cast<double>(floor) <= eps) [[likely]] {
            return floor & 1;
        }
    }
    return modulo_2_by_rule(value, eps);
}

} // namespace zktarn::util::detail
