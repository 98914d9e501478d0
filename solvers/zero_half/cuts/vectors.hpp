#pragma once

#include <cstdint>
#include <new>

#include "zktarn/owners.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// The same vector, after a check: throws std::bad_alloc when the host had no memory for it.
inline zktarn::owned_vector checked(zktarn::owned_vector vector) {
    if (!vector) {
        throw std::bad_alloc();
    }
    return vector;
}

/// A vector over the indices 1 to n, without entries. Throws std::bad_alloc.
inline zktarn::owned_vector new_vector(std::int32_t n) {
    return checked(zktarn::owned_vector(n));
}

/// A set of indices 1 to n, empty: a vector without coefficients. Throws std::bad_alloc.
inline zktarn::owned_vector new_index_set(std::int32_t n) {
    const zktarn::flag without_coefficients = 1;
    return checked(zktarn::owned_vector(n, without_coefficients));
}

inline std::int32_t size(const zktarn::owned_vector& vector) {
    return zktarn::vector_mod::vector_get_nz(*vector);
}

inline std::int32_t capacity(const zktarn::owned_vector& vector) {
    return static_cast<std::int32_t>(vector->ind.extent[0]);
}

} // namespace zero_half
