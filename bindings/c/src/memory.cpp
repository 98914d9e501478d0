#include "zktarn/memory/memory_mod.hpp"

#include "arguments.hpp"

using namespace zktarn;
using c::cpp;

zktarn_flag zktarn_allocmem_l4_1d_array(zktarn_l4_1d_array* array, int64_t n) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_l4_1d_array(cpp(array), n);
}

zktarn_flag zktarn_allocmem_i8_1d_array(zktarn_i8_1d_array* array, int64_t n) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_i8_1d_array(cpp(array), n);
}

zktarn_flag zktarn_allocmem_i4_1d_array(zktarn_i4_1d_array* array, int64_t n) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_i4_1d_array(cpp(array), n);
}

zktarn_flag zktarn_allocmem_i2_1d_array(zktarn_i2_1d_array* array, int64_t n) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_i2_1d_array(cpp(array), n);
}

zktarn_flag zktarn_allocmem_i1_1d_array(zktarn_i1_1d_array* array, int64_t n) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_i1_1d_array(cpp(array), n);
}

zktarn_flag zktarn_allocmem_r8_1d_array(zktarn_r8_1d_array* array, int64_t n) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_r8_1d_array(cpp(array), n);
}

zktarn_flag zktarn_allocmem_i4_2d_array(zktarn_i4_2d_array* array, int64_t rows, int64_t columns) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_i4_2d_array(cpp(array), {rows, columns});
}

zktarn_flag zktarn_allocmem_r8_2d_array(zktarn_r8_2d_array* array, int64_t rows, int64_t columns) {
    return c::any_null(array) ? 0 : memory_mod::allocmem_r8_2d_array(cpp(array), {rows, columns});
}

void zktarn_freemem_l4_1d_array(zktarn_l4_1d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_l4_1d_array(cpp(array));
    }
}

void zktarn_freemem_i8_1d_array(zktarn_i8_1d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_i8_1d_array(cpp(array));
    }
}

void zktarn_freemem_i4_1d_array(zktarn_i4_1d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_i4_1d_array(cpp(array));
    }
}

void zktarn_freemem_i2_1d_array(zktarn_i2_1d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_i2_1d_array(cpp(array));
    }
}

void zktarn_freemem_i1_1d_array(zktarn_i1_1d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_i1_1d_array(cpp(array));
    }
}

void zktarn_freemem_r8_1d_array(zktarn_r8_1d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_r8_1d_array(cpp(array));
    }
}

void zktarn_freemem_i4_2d_array(zktarn_i4_2d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_i4_2d_array(cpp(array));
    }
}

void zktarn_freemem_r8_2d_array(zktarn_r8_2d_array* array) {
    if (!c::any_null(array)) {
        memory_mod::freemem_r8_2d_array(cpp(array));
    }
}

void* zktarn_mallocate(int64_t nbytes) {
    return memory_mod::mallocate(nbytes);
}

void zktarn_mdeallocate(void* address) {
    memory_mod::mdeallocate(address);
}
