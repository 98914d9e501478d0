#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/util/detail/elements.hpp"

/// Copying and clearing of plain arrays.
///
/// Each procedure works on the first n elements; if n < 1 it touches nothing. Source and
/// destination must not overlap. Cost: O(n).

namespace zktarn::util {

/// Copies n 8-bit integers from `source` (in) to `destination` (out).
ZKTARN_API_INLINE void xcopy_i1(const std::int8_t* source, std::int8_t* destination,
                                const std::int32_t& n) noexcept {
    detail::copy_elements(source, destination, n);
}

/// Copies n 32-bit integers from `source` (in) to `destination` (out).
ZKTARN_API_INLINE void xcopy_i4(const std::int32_t* source, std::int32_t* destination,
                                const std::int32_t& n) noexcept {
    detail::copy_elements(source, destination, n);
}

/// Copies n 64-bit reals from `source` (in) to `destination` (out), bit for bit.
ZKTARN_API_INLINE void xcopy_r8(const double* source, double* destination,
                                const std::int32_t& n) noexcept {
    detail::copy_elements(source, destination, n);
}

/// Sets n 32-bit integers of `array` (out) to 0.
ZKTARN_API_INLINE void xzero_i4(std::int32_t* array, const std::int32_t& n) noexcept {
    detail::clear_elements(array, n);
}

/// Sets n 64-bit reals of `array` (out) to 0.0, all bits zero.
ZKTARN_API_INLINE void xzero_r8(double* array, const std::int32_t& n) noexcept {
    detail::clear_elements(array, n);
}

} // namespace zktarn::util
