#pragma once

#include <cstddef>
#include <cstdint>

#include "zktarn/memory/memory_mod.hpp"

/// The procedures that allocate and release an array of a given element type and rank. Not part of
/// the interface.

namespace zktarn::detail {

template <class T, std::size_t Rank>
struct array_procedures; // undefined where `memory_mod` has no procedures for the type

template <>
struct array_procedures<std::int64_t, 1> {
    static constexpr auto& allocate = memory_mod::allocmem_i8_1d_array;
    static constexpr auto& release = memory_mod::freemem_i8_1d_array;
};

template <>
struct array_procedures<std::int32_t, 1> {
    static constexpr auto& allocate = memory_mod::allocmem_i4_1d_array;
    static constexpr auto& release = memory_mod::freemem_i4_1d_array;
};

template <>
struct array_procedures<std::int16_t, 1> {
    static constexpr auto& allocate = memory_mod::allocmem_i2_1d_array;
    static constexpr auto& release = memory_mod::freemem_i2_1d_array;
};

template <>
struct array_procedures<std::int8_t, 1> {
    static constexpr auto& allocate = memory_mod::allocmem_i1_1d_array;
    static constexpr auto& release = memory_mod::freemem_i1_1d_array;
};

template <>
struct array_procedures<double, 1> {
    static constexpr auto& allocate = memory_mod::allocmem_r8_1d_array;
    static constexpr auto& release = memory_mod::freemem_r8_1d_array;
};

template <>
struct array_procedures<std::int32_t, 2> {
    static constexpr auto& allocate = memory_mod::allocmem_i4_2d_array;
    static constexpr auto& release = memory_mod::freemem_i4_2d_array;
};

template <>
struct array_procedures<double, 2> {
    static constexpr auto& allocate = memory_mod::allocmem_r8_2d_array;
    static constexpr auto& release = memory_mod::freemem_r8_2d_array;
};

} // namespace zktarn::detail
