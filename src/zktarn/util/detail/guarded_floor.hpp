#pragma once

#include <cmath>
#include <cstdint>

#include "zktarn/util/detail/truncate.hpp"

/// The one rule by which every floor and ceiling of the library is taken.

namespace zktarn::util::detail {

/// The floor of base + offset.
///
/// It is exact while |base| < 2^31 - 1; a sum beyond 64 bits, which takes a huge offset, saturates
/// there. From that magnitude on the sum, less 1 for a negative base, is truncated toward zero,
/// which has no effect beyond 2^52, where every real is an integer. So for a large negative base an
/// integral sum comes out 1 below its floor; every other sum comes out right.
///
/// A sum that is not a number gives 0.0.
inline double guarded_floor(double base, double offset) noexcept {
    constexpr double exact_below = 2147483647.0;          // 2^31 - 1
    constexpr double integral_above = 4503599627370496.0; // 2^52

    if (std::fabs(base) < exact_below) {
        const double sum = base + offset;
        const double truncated = static_cast<double>(truncate_i64(sum));
        // Where the truncated value has to be lowered it is either small or the lower end of the
        // 64-bit range; 1.0 comes off the first exactly and leaves the second as it is.
        return sum < truncated ? truncated - 1.0 : truncated;
    }
    const double sum = base <= -exact_below ? (base - 1.0) + offset : base + offset;
    return std::fabs(sum) > integral_above ? sum : static_cast<double>(truncate_i64(sum));
}

/// The ceiling of base - offset, by the same rule on the negated base.
inline double guarded_ceiling(double base, double offset) noexcept {
    return -guarded_floor(-base, offset);
}

/// An integer next to a real, and whether it is near enough.
struct integer_decision {
    bool is_integer;
    double nearest;
};

/// Whether `value` is within `eps` of the floor or the ceiling that `offset` gives it, the floor
/// first. `nearest` means something only where it is.
inline integer_decision decide_integer(double value, double eps, double offset) noexcept {
    const double floor = guarded_floor(value, offset);
    if (value - floor <= eps) {
        return {true, floor};
    }
    const double ceiling = guarded_ceiling(value, offset);
    return {ceiling - value <= eps, ceiling};
}

/// 0 when `value` is within `eps` of an even integer, else 1. The integer is brought to 32 bits
/// before its parity is looked at, so from 2147483647 on, the end of that range, it counts as odd.
inline std::int64_t modulo_2_by_rule(double value, double eps) noexcept {
    const integer_decision decision = decide_integer(value, eps, eps);
    return decision.is_integer ? truncate_i32(std::fabs(decision.nearest) + 0.5) & 1 : 1;
}

/// The same, fast and without a branch on the outcome for values that are integral by their floor.
///
/// While value and value + eps lie strictly within +-(2^31 - 1) the guarded floor is a plain one,
/// and lies there too, where nothing saturates: its own lowest bit is the parity.
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
