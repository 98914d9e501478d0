#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

// Conversion of reals to integers, defined for every real: truncation toward zero, saturation at
// both ends of the range, NaN to 0. The plain conversion is undefined outside the range, and
// processors differ there.

namespace zktarn::util::detail {

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

} // namespace zktarn::util::detail
