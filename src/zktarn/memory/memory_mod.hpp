#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Typed arrays and raw blocks in the host's memory.
///
/// `allocmem_<type>_<rank>_array` allocates an array, `freemem_<type>_<rank>_array` releases it.
/// `mallocate` and `mdeallocate` do the same for bytes without a type. Element types:
///
///     l4  logical value in 32 bits, true when nonzero       i8  64-bit signed integer
///     i4  32-bit signed integer                             i2  16-bit signed integer
///     i1   8-bit signed integer                             r8  64-bit IEEE 754 real
///
/// The module has no state: each procedure makes at most one host call. Different threads may work
/// on different arrays at once if the host's memory manager allows it.

namespace zktarn::memory_mod {

/// An element of type l4: a logical value, true when nonzero.
using logical4 = std::int32_t;

/// Allocates an array of n elements.
///
/// @param array  out. Overwritten: a block it held is not released.
/// @param n      in. Number of elements; any value.
///
///     n < 1                             returns 1, array absent, no host call
///     the byte count exceeds 2^63 - 1   returns 0, array absent, no host call
///     the host has no memory            returns 0, array absent
///     otherwise                         returns 1, array present with extent n and lower bound 1
///
/// The elements are uninitialised. Extents and lower bounds of an absent array are not written.
[[nodiscard]] ZKTARN_API flag allocmem_l4_1d_array(array_1d<logical4>& array,
                                                   const std::int64_t& n) noexcept;
[[nodiscard]] ZKTARN_API flag allocmem_i8_1d_array(array_1d<std::int64_t>& array,
                                                   const std::int64_t& n) noexcept;
[[nodiscard]] ZKTARN_API flag allocmem_i4_1d_array(array_1d<std::int32_t>& array,
                                                   const std::int64_t& n) noexcept;
[[nodiscard]] ZKTARN_API flag allocmem_i2_1d_array(array_1d<std::int16_t>& array,
                                                   const std::int64_t& n) noexcept;
[[nodiscard]] ZKTARN_API flag allocmem_i1_1d_array(array_1d<std::int8_t>& array,
                                                   const std::int64_t& n) noexcept;
[[nodiscard]] ZKTARN_API flag allocmem_r8_1d_array(array_1d<double>& array,
                                                   const std::int64_t& n) noexcept;

/// Allocates an array of rows x columns elements, stored column by column.
///
/// @param array  out. Overwritten: a block it held is not released.
/// @param shape  in. Rows and columns; any values.
///
/// The results are those of one dimension for n = rows x columns, without overflow. Only the
/// product is tested: shape (-2, -3) allocates six elements and sets the extents (-2, -3).
[[nodiscard]] ZKTARN_API flag allocmem_i4_2d_array(array_2d<std::int32_t>& array,
                                                   const matrix_shape& shape) noexcept;
[[nodiscard]] ZKTARN_API flag allocmem_r8_2d_array(array_2d<double>& array,
                                                   const matrix_shape& shape) noexcept;

/// Releases an array.
///
/// @param array  in/out. Allocated by the procedure of the same type and rank, with its data
///               address unchanged since; or absent, and then nothing happens.
///
/// Leaves the array absent. Extents and lower bounds keep their values, which mean nothing.
ZKTARN_API void freemem_l4_1d_array(array_1d<logical4>& array) noexcept;
ZKTARN_API void freemem_i8_1d_array(array_1d<std::int64_t>& array) noexcept;
ZKTARN_API void freemem_i4_1d_array(array_1d<std::int32_t>& array) noexcept;
ZKTARN_API void freemem_i2_1d_array(array_1d<std::int16_t>& array) noexcept;
ZKTARN_API void freemem_i1_1d_array(array_1d<std::int8_t>& array) noexcept;
ZKTARN_API void freemem_r8_1d_array(array_1d<double>& array) noexcept;
ZKTARN_API void freemem_i4_2d_array(array_2d<std::int32_t>& array) noexcept;
ZKTARN_API void freemem_r8_2d_array(array_2d<double>& array) noexcept;

/// Allocates a block of `nbytes` bytes, uninitialised. The caller owns it until `mdeallocate`.
///
/// @param nbytes  in. Any value.
///
/// Returns its address; null if the host has no memory, and, without a host call, if nbytes < 1.
[[nodiscard]] ZKTARN_API void* mallocate(const std::int64_t& nbytes) noexcept;

/// Releases a block that `mallocate` returned.
///
/// @param address  in. Passed to the host, null or not. Not set to null, unlike the address in
///                 `freemem_`: do not use it again.
ZKTARN_API void mdeallocate(void* const& address) noexcept;

} // namespace zktarn::memory_mod
