#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Copying and clearing of elements of any type. Not part of the interface.

namespace zktarn::util {

namespace detail {

template <class T>
inline void copy_elements(const T* source, T* destination, std::int32_t n) noexcept {
    if (n >= 1) {
        std::memcpy(destination, source, static_cast<std::size_t>(n) * sizeof(T));
    }
}

template <class T>
inline void clear_elements(T* array, std::int32_t n) noexcept {
    if (n >= 1) {
        std::memset(array, 0, static_cast<std::size_t>(n) * sizeof(T));
    }
}

} // namespace detail

} // namespace zktarn::util
