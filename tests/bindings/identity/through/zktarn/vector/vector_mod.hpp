#pragma once

#include <cstdint>

#include "via.h"
#include "zktarn/optional_address.hpp"
#include "zktarn/vector/vector_type.hpp"

namespace zktarn::vector_mod {

using vector_type::vector;

inline zktarn_vector* at(vector& v) {
    return reinterpret_cast<zktarn_vector*>(&v);
}
inline const zktarn_vector* at(const vector& v) {
    return reinterpret_cast<const zktarn_vector*>(&v);
}

inline std::int32_t vector_get_nz(const vector& v) {
    return via_vector_get_nz(at(v));
}
inline void vector_set_nz(vector& v, const std::int32_t& n) {
    via_vector_set_nz(at(v), n);
}
inline std::int32_t vector_get_ind(const vector& v, const std::int32_t& k) {
    return via_vector_get_ind(at(v), k);
}
inline void vector_set_ind(vector& v, const std::int32_t& k, const std::int32_t& j) {
    via_vector_set_ind(at(v), k, j);
}
inline void vector_set_coef(vector& v, const std::int32_t& j, const double& value) {
    via_vector_set_coef(at(v), j, value);
}
inline double vector_get_coef(const vector& v, const std::int32_t& j) {
    return via_vector_get_coef(at(v), j);
}
inline flag vector_is_elm(const vector& v, const std::int32_t& j) {
    return via_vector_is_elm(at(v), j);
}
inline void vector_set_elm(vector& v, const std::int32_t& j) {
    via_vector_set_elm(at(v), j);
}
inline void vector_rem_elm(vector& v, const std::int32_t& j) {
    via_vector_rem_elm(at(v), j);
}
inline void vector_add_nz(vector& v, const std::int32_t& j, optional_ref<const double> value = {}) {
    via_vector_add_nz(at(v), j, address_of(value));
}
inline void vector_rem_nz(vector& v, const std::int32_t& k) {
    via_vector_rem_nz(at(v), k);
}
inline void vector_clear(vector& v) {
    via_vector_clear(at(v));
}
inline void vector_clean_index(vector& v) {
    via_vector_clean_index(at(v));
}
inline void vector_rem_zeros(vector& v) {
    via_vector_rem_zeros(at(v));
}
inline void vectors_combine(vector& x, const vector& y, const double& alpha, const double& beta,
                            const double& tol) {
    via_vectors_combine(at(x), at(y), alpha, beta, tol);
}
inline void vectors_calc_sym_diff(vector& x, const vector& y) {
    via_vectors_calc_sym_diff(at(x), at(y));
}
inline void vector_mod2(vector& v, const double& tol) {
    via_vector_mod2(at(v), tol);
}
inline flag vectors_are_identical(const vector& a, const vector& b, const double& tol) {
    return via_vectors_are_identical(at(a), at(b), tol);
}

} // namespace zktarn::vector_mod
