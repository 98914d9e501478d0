#pragma once

#include <cstdint>

#include "via.h"
#include "zktarn/function_ref.hpp"
#include "zktarn/types.hpp"
#include "zktarn/vector/vector_type.hpp"

/// Takes the place of the header of the library: each procedure calls the one of the same name in
/// via.h.

namespace zktarn {

/// The address of an optional argument; null if it is absent.
template <class T>
T* address_of(optional_ref<T> argument) {
    return argument.present() ? &*argument : nullptr;
}

} // namespace zktarn

namespace zktarn::util {

inline double fractional(const double& x) {
    return via_fractional(x);
}
inline void epsilon_is_int(const double& x, const double& eps, flag& is_int,
                           optional_ref<double> nearest = {}) {
    via_epsilon_is_int(x, eps, &is_int, address_of(nearest));
}
inline void epsilon_is_int_scalar(const double& x, const double& scalar, const double& eps,
                                  flag& is_int, optional_ref<double> nearest = {}) {
    via_epsilon_is_int_scalar(x, scalar, eps, &is_int, address_of(nearest));
}
inline double epsilon_fractionality(const double& x, const double& eps) {
    return via_epsilon_fractionality(x, eps);
}
inline double epsilon_floor(const double& x, const double& eps) {
    return via_epsilon_floor(x, eps);
}
inline double epsilon_ceiling(const double& x, const double& eps) {
    return via_epsilon_ceiling(x, eps);
}
inline flag is_even_real(const double& x, const double& eps) {
    return via_is_even_real(x, eps);
}
inline flag is_even_int(const std::int32_t& n) {
    return via_is_even_int(n);
}

inline void get_rational_rep(const double& x, const double& eps, const double& max_den, flag& found,
                             double& num, double& den) {
    via_get_rational_rep(x, eps, max_den, &found, &num, &den);
}

inline double xgcd_r8(const double& a, const double& b, const double& eps) {
    return via_xgcd_r8(a, b, eps);
}
inline std::int32_t xgcd_i4(const std::int32_t& a, const std::int32_t& b) {
    return via_xgcd_i4(a, b);
}

using element_supplier =
    function_ref<void(const std::int32_t& index, double& value, flag& marked, flag& selected)>;

inline void supply(std::int32_t index, double* value, flag* marked, flag* selected, void* context) {
    (*static_cast<element_supplier*>(context))(index, *value, *marked, *selected);
}

inline void find_scalar_integral(const std::int32_t& n, element_supplier get_element,
                                 const double& eps, const double& max_den, const double& max_scalar,
                                 flag& found, double& scalar,
                                 optional_ref<const flag> skip_marked = {},
                                 optional_ref<const flag> selected_only = {}) {
    via_find_scalar_integral(n, supply, &get_element, eps, max_den, max_scalar, &found, &scalar,
                             address_of(skip_marked), address_of(selected_only));
}

inline void xcopy_i1(const std::int8_t* source, std::int8_t* destination, const std::int32_t& n) {
    via_xcopy_i1(source, destination, n);
}
inline void xcopy_i4(const std::int32_t* source, std::int32_t* destination, const std::int32_t& n) {
    via_xcopy_i4(source, destination, n);
}
inline void xcopy_r8(const double* source, double* destination, const std::int32_t& n) {
    via_xcopy_r8(source, destination, n);
}
inline void xzero_i4(std::int32_t* array, const std::int32_t& n) {
    via_xzero_i4(array, n);
}
inline void xzero_r8(double* array, const std::int32_t& n) {
    via_xzero_r8(array, n);
}

} // namespace zktarn::util

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

namespace zktarn::sorting_mod {

using exchange_procedure = function_ref<flag(std::int32_t a, std::int32_t b)>;

inline flag exchange_by(std::int32_t a, std::int32_t b, void* context) {
    return (*static_cast<exchange_procedure*>(context))(a, b);
}

inline void sort(const std::int32_t& first, const std::int32_t& last, exchange_procedure exchange) {
    via_sort(first, last, exchange_by, &exchange);
}

} // namespace zktarn::sorting_mod

namespace zktarn::random {

using rng_state = ::zktarn_rng_state;
using saved_state = ::zktarn_saved_state;

inline flag instantiaterng(rng_state& rng, const std::int32_t& seed) {
    return via_instantiaterng(&rng, seed);
}
inline void deleterng(rng_state& rng) {
    via_deleterng(&rng);
}
inline double rand_number(const rng_state& rng) {
    return via_rand_number(&rng);
}
inline flag getrngstate(const rng_state& rng, saved_state& state) {
    return via_getrngstate(&rng, &state);
}
inline void setrngstate(const rng_state& rng, const saved_state& state) {
    via_setrngstate(&rng, state);
}
inline void deleterngstate(const saved_state& state) {
    via_deleterngstate(state);
}
inline void _rng_stateinitialise(rng_state& first, const std::int32_t& count) {
    via_rng_stateinitialise(&first, count);
}

} // namespace zktarn::random
