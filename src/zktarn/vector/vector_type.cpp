#include "zktarn/vector/vector_type.hpp"

#include <cstddef>
#include <cstring>
#include <new>

#include "zktarn/memory/memory_mod.hpp"

namespace zktarn::vector_type {

namespace {

using memory_mod::allocmem_i4_1d_array;
using memory_mod::allocmem_r8_1d_array;
using memory_mod::freemem_i4_1d_array;
using memory_mod::freemem_r8_1d_array;

bool wanted(optional_ref<const flag> omit) noexcept {
    return omit.value_or(0) == 0;
}

} // namespace

flag vector_alloc(vector*& vec, const std::int32_t& n, optional_ref<const flag> no_coef,
                  optional_ref<const flag> no_ind, optional_ref<const flag> no_elm) noexcept {
    const bool with_coef = wanted(no_coef);
    const bool with_ind = wanted(no_ind);
    const bool with_elm = wanted(no_elm);
    const std::int64_t capacity = n;

    vec = new (std::nothrow) vector;
    if (vec == nullptr) {
        return 0;
    }
    if ((with_coef && allocmem_r8_1d_array(vec->coef, capacity) == 0) ||
        (with_ind && allocmem_i4_1d_array(vec->ind, capacity) == 0) ||
        (with_elm && allocmem_i4_1d_array(vec->elm, capacity) == 0)) {
        vector_free(vec);
        return 0;
    }
    if (vec->elm.present()) {
        std::memset(vec->elm.data, 0, static_cast<std::size_t>(capacity) * sizeof(std::int32_t));
    }
    return 1;
}

void vector_free(vector*& vec) noexcept {
    if (vec == nullptr) {
        return;
    }
    freemem_r8_1d_array(vec->coef);
    freemem_i4_1d_array(vec->ind);
    freemem_i4_1d_array(vec->elm);
    delete vec;
    vec = nullptr;
}

} // namespace zktarn::vector_type
