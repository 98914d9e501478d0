#include "zktarn/memory/memory_mod.hpp"

#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::memory_mod {

namespace {

/// Allocates the block of an array of `count` elements and leaves the extents to the caller.
/// `count` is passed by value, because the argument may be an extent of the array itself.
template <class T, std::size_t Rank>
bool attach(host_array<T, Rank>& array, std::int64_t count) noexcept {
    std::int64_t nbytes = 0;
    if (__builtin_mul_overflow(count, static_cast<std::int64_t>(sizeof(T)), &nbytes)) {
        return false;
    }
    array.data = static_cast<T*>(host::qvMallocExOptim(nbytes));
    return array.present();
}

template <class T>
flag allocate(array_1d<T>& array, std::int64_t n) noexcept {
    array.data = nullptr;
    if (n < 1) {
        return 1;
    }
    if (!attach(array, n)) {
        return 0;
    }
    array.extent[0] = n;
    array.lower_bound[0] = 1;
    return 1;
}

template <class T>
flag allocate(array_2d<T>& array, matrix_shape shape) noexcept {
    array.data = nullptr;
    std::int64_t count = 0;
    if (__builtin_mul_overflow(shape.rows, shape.columns, &count)) {
        // The exact product does not fit 64 bits. If the signs differ it is far below 1, an empty
        // request; otherwise no host has that much memory.
        return (shape.rows ^ shape.columns) < 0 ? 1 : 0;
    }
    if (count < 1) {
        return 1;
    }
    if (!attach(array, count)) {
        return 0;
    }
    array.extent[0] = shape.rows;
    array.extent[1] = shape.columns;
    array.lower_bound[0] = 1;
    array.lower_bound[1] = 1;
    return 1;
}

template <class T, std::size_t Rank>
void release(host_array<T, Rank>& array) noexcept {
    if (array.present()) {
        host::qvFreeExOptim(array.data);
        array.data = nullptr;
    }
}

} // namespace

flag allocmem_l4_1d_array(array_1d<logical4>& array, const std::int64_t& n) noexcept {
    return allocate(array, n);
}

flag allocmem_i8_1d_array(array_1d<std::int64_t>& array, const std::int64_t& n) noexcept {
    return allocate(array, n);
}

flag allocmem_i4_1d_array(array_1d<std::int32_t>& array, const std::int64_t& n) noexcept {
    return allocate(array, n);
}

flag allocmem_i2_1d_array(array_1d<std::int16_t>& array, const std::int64_t& n) noexcept {
    return allocate(array, n);
}

flag allocmem_i1_1d_array(array_1d<std::int8_t>& array, const std::int64_t& n) noexcept {
    return allocate(array, n);
}

flag allocmem_r8_1d_array(array_1d<double>& array, const std::int64_t& n) noexcept {
    return allocate(array, n);
}

flag allocmem_i4_2d_array(array_2d<std::int32_t>& array, const matrix_shape& shape) noexcept {
    return allocate(array, shape);
}

flag allocmem_r8_2d_array(array_2d<double>& array, const matrix_shape& shape) noexcept {
    return allocate(array, shape);
}

void freemem_l4_1d_array(array_1d<logical4>& array) noexcept {
    release(array);
}

void freemem_i8_1d_array(array_1d<std::int64_t>& array) noexcept {
    release(array);
}

void freemem_i4_1d_array(array_1d<std::int32_t>& array) noexcept {
    release(array);
}

void freemem_i2_1d_array(array_1d<std::int16_t>& array) noexcept {
    release(array);
}

void freemem_i1_1d_array(array_1d<std::int8_t>& array) noexcept {
    release(array);
}

void freemem_r8_1d_array(array_1d<double>& array) noexcept {
    release(array);
}

void freemem_i4_2d_array(array_2d<std::int32_t>& array) noexcept {
    release(array);
}

void freemem_r8_2d_array(array_2d<double>& array) noexcept {
    release(array);
}

void* mallocate(const std::int64_t& nbytes) noexcept {
    return nbytes < 1 ? nullptr : host::qvMallocExOptim(nbytes);
}

void mdeallocate(void* const& address) noexcept {
    host::qvFreeExOptim(address);
}

} // namespace zktarn::memory_mod
