#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

/// Reals to integers, with a result for every real: truncation toward zero, the nearest end of the
/// range beyond it, and 0 for a not-a-number. A bare conversion is undefined beyond the range, and
/// the machines disagree there.

namespace zktarn::util::detail {

inline std::int64_t truncate_i64(double value) noexcept {
    using limits = std::numeric_limits<std::int64_t>;
    // The largest integer is no real; one more than it is. Whatever lies strictly within +-2^63
    // truncates into the range, and -2^63 itself is its lower end.
    constexpr double beyond = 9223372036854775808.0;
    if (std::fabs(value) < beyond) [[likely]] {
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

} // namespace zktarn::util::detail
