#pragma once

#include <cstdint>
#include <new>

#include "zktarn/owners.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// Returns the vector unchanged, or throws std::bad_alloc if the host had no memory for it.
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

} // namespace zero_half
