#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Typed arrays, and raw blocks, in the host's memory.
///
/// `allocmem_<type>_<rank>_array` attaches a new block to an array, `freemem_<type>_<rank>_array`
/// gives it back; `mallocate` and `mdeallocate` do the same for untyped bytes. The middle of a name
/// is the element type:
///
///     l4  logical flag in 32 bits, true when nonzero        i8  64-bit signed integer
///     i4  32-bit signed integer                             i2  16-bit signed integer
///     i1   8-bit signed integer                             r8  64-bit IEEE 754 real
///
/// No state of its own: each call works on the given array and makes at most one host call. Two
/// threads may work on different arrays as far as the host's memory manager allows.

namespace zktarn::memory_mod {

/// An element of type l4: a logical flag in a 32-bit word, true when nonzero.
using logical4 = std::int32_t;

/// Attaches a new block of `n` elements to `array`.
///
/// @param array  out. What it held before is dropped unseen, not released: release it first.
/// @param n      in. Element count; any value.
///
/// Returns 1 and leaves `array` present, extent n and lower bound 1, the elements uninitialised.
/// Returns 1 and leaves it absent, without a host call, when n < 1: an empty request succeeds.
/// Returns 0 and leaves it absent when the host has no memory, and, without a host call, when the
/// byte count does not fit a signed 64-bit integer. While absent, extents and bounds are untouched.
ZKTARN_API flag allocmem_l4_1d_array(array_1d<logical4>& array, const std::int64_t& n) noexcept;
ZKTARN_API flag allocmem_i8_1d_array(array_1d<std::int64_t>& array, const std::int64_t& n) noexcept;
ZKTARN_API flag allocmem_i4_1d_array(array_1d<std::int32_t>& array, const std::int64_t& n) noexcept;
ZKTARN_API flag allocmem_i2_1d_array(array_1d<std::int16_t>& array, const std::int64_t& n) noexcept;
ZKTARN_API flag allocmem_i1_1d_array(array_1d<std::int8_t>& array, const std::int64_t& n) noexcept;
ZKTARN_API flag allocmem_r8_1d_array(array_1d<double>& array, const std::int64_t& n) noexcept;

/// Attaches a new block of rows x columns elements to `array`, stored column by column.
///
/// @param array  out. As in one dimension.
/// @param shape  in. Rows and columns; any values.
///
/// As in one dimension, with the product rows x columns, taken exactly, in place of n. Only the
/// product is tested, so two negative extents ask for a block: shape (-2, -3) attaches six elements
/// and records the extents (-2, -3).
ZKTARN_API flag allocmem_i4_2d_array(array_2d<std::int32_t>& array,
                                     const matrix_shape& shape) noexcept;
ZKTARN_API flag allocmem_r8_2d_array(array_2d<double>& array, const matrix_shape& shape) noexcept;

/// Gives the block of `array` back to the host.
///
/// @param array  in/out. Made by the matching `allocmem_` procedure, its address and lower bounds
///               unchanged since; or absent, and then nothing happens.
///
/// Leaves `array` absent; extents and lower bounds keep their values and mean nothing.
ZKTARN_API void freemem_l4_1d_array(array_1d<logical4>& array) noexcept;
ZKTARN_API void freemem_i8_1d_array(array_1d<std::int64_t>& array) noexcept;
ZKTARN_API void freemem_i4_1d_array(array_1d<std::int32_t>& array) noexcept;
ZKTARN_API void freemem_i2_1d_array(array_1d<std::int16_t>& array) noexcept;
ZKTARN_API void freemem_i1_1d_array(array_1d<std::int8_t>& array) noexcept;
ZKTARN_API void freemem_r8_1d_array(array_1d<double>& array) noexcept;
ZKTARN_API void freemem_i4_2d_array(array_2d<std::int32_t>& array) noexcept;
ZKTARN_API void freemem_r8_2d_array(array_2d<double>& array) noexcept;

/// Returns the address of a new, uninitialised block of `nbytes` bytes, which the caller owns until
/// `mdeallocate`; null when the host has no memory, and, without a host call, when nbytes < 1.
[[nodiscard]] ZKTARN_API void* mallocate(const std::int64_t& nbytes) noexcept;

/// Gives a block that `mallocate` returned back to the host.
///
/// @param address  in. Handed to the host as it is, null included, and not cleared: unlike after
///                 `freemem_`, the caller drops the address itself.
ZKTARN_API void mdeallocate(void* const& address) noexcept;

} // namespace zktarn::memory_mod
