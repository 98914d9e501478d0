#include "via.h"

zktarn_flag via_instantiaterng(zktarn_rng_state* rng, int32_t seed) {
    return zktarn_instantiaterng(rng, seed);
}

void via_deleterng(zktarn_rng_state* rng) {
    zktarn_deleterng(rng);
}

double via_rand_number(const zktarn_rng_state* rng) {
    return zktarn_rand_number(rng);
}

zktarn_flag via_getrngstate(const zktarn_rng_state* rng, zktarn_saved_state* state) {
    return zktarn_getrngstate(rng, state);
}

void via_setrngstate(const zktarn_rng_state* rng, zktarn_saved_state state) {
    zktarn_setrngstate(rng, state);
}

void via_deleterngstate(zktarn_saved_state state) {
    zktarn_deleterngstate(state);
}

void via_rng_stateinitialise(zktarn_rng_state* first, int32_t count) {
    zktarn_rng_stateinitialise(first, count);
}

void via_sort(int32_t first, int32_t last, zktarn_exchange_procedure exchange, void* context) {
    zktarn_sort(first, last, exchange, context);
}

double via_fractional(double x) {
    return zktarn_fractional(x);
}

void via_epsilon_is_int_scalar(double x, double scalar, double eps, zktarn_flag* is_int,
                               double* nearest) {
    zktarn_epsilon_is_int_scalar(x, scalar, eps, is_int, nearest);
}

void via_epsilon_is_int(double x, double eps, zktarn_flag* is_int, double* nearest) {
    zktarn_epsilon_is_int(x, eps, is_int, nearest);
}

double via_epsilon_fractionality(double x, double eps) {
    return zktarn_epsilon_fractionality(x, eps);
}

double via_epsilon_floor(double x, double eps) {
    return zktarn_epsilon_floor(x, eps);
}

double via_epsilon_ceiling(double x, double eps) {
    return zktarn_epsilon_ceiling(x, eps);
}

zktarn_flag via_is_even_real(double x, double eps) {
    return zktarn_is_even_real(x, eps);
}

void via_xcopy_i1(const int8_t* source, int8_t* destination, int32_t n) {
    zktarn_xcopy_i1(source, destination, n);
}

void via_xcopy_i4(const int32_t* source, int32_t* destination, int32_t n) {
    zktarn_xcopy_i4(source, destination, n);
}

void via_xcopy_r8(const double* source, double* destination, int32_t n) {
    zktarn_xcopy_r8(source, destination, n);
}

void via_xzero_i4(int32_t* array, int32_t n) {
    zktarn_xzero_i4(array, n);
}

void via_xzero_r8(double* array, int32_t n) {
    zktarn_xzero_r8(array, n);
}

void via_get_rational_rep(double x, double eps, double max_den, zktarn_flag* found, double* num,
                          double* den) {
    zktarn_get_rational_rep(x, eps, max_den, found, num, den);
}

double via_xgcd_r8(double a, double b, double eps) {
    return zktarn_xgcd_r8(a, b, eps);
}

int32_t via_xgcd_i4(int32_t a, int32_t b) {
    return zktarn_xgcd_i4(a, b);
}

void via_find_scalar_integral(int32_t n, zktarn_element_supplier get_element, void* context,
                              double eps, double max_den, double max_scalar, zktarn_flag* found,
                              double* scalar, const zktarn_flag* skip_marked,
                              const zktarn_flag* selected_only) {
    zktarn_find_scalar_integral(n, get_element, context, eps, max_den, max_scalar, found, scalar,
                                skip_marked, selected_only);
}

double via_vector_get_coef(const zktarn_vector* v, int32_t j) {
    return zktarn_vector_get_coef(v, j);
}

void via_vector_add_nz(zktarn_vector* v, int32_t j, const double* value) {
    zktarn_vector_add_nz(v, j, value);
}

void via_vector_rem_nz(zktarn_vector* v, int32_t k) {
    zktarn_vector_rem_nz(v, k);
}

void via_vector_clear(zktarn_vector* v) {
    zktarn_vector_clear(v);
}

void via_vector_clean_index(zktarn_vector* v) {
    zktarn_vector_clean_index(v);
}

void via_vector_rem_zeros(zktarn_vector* v) {
    zktarn_vector_rem_zeros(v);
}

void via_vectors_combine(zktarn_vector* x, const zktarn_vector* y, double alpha, double beta,
                         double tol) {
    zktarn_vectors_combine(x, y, alpha, beta, tol);
}

void via_vectors_calc_sym_diff(zktarn_vector* x, const zktarn_vector* y) {
    zktarn_vectors_calc_sym_diff(x, y);
}

void via_vector_mod2(zktarn_vector* v, double tol) {
    zktarn_vector_mod2(v, tol);
}

zktarn_flag via_vectors_are_identical(const zktarn_vector* a, const zktarn_vector* b, double tol) {
    return zktarn_vectors_are_identical(a, b, tol);
}

zktarn_flag via_is_even_int(int32_t n) {
    return zktarn_is_even_int(n);
}

int32_t via_vector_get_nz(const zktarn_vector* v) {
    return zktarn_vector_get_nz(v);
}

void via_vector_set_nz(zktarn_vector* v, int32_t n) {
    zktarn_vector_set_nz(v, n);
}

int32_t via_vector_get_ind(const zktarn_vector* v, int32_t k) {
    return zktarn_vector_get_ind(v, k);
}

void via_vector_set_ind(zktarn_vector* v, int32_t k, int32_t j) {
    zktarn_vector_set_ind(v, k, j);
}

void via_vector_set_coef(zktarn_vector* v, int32_t j, double value) {
    zktarn_vector_set_coef(v, j, value);
}

zktarn_flag via_vector_is_elm(const zktarn_vector* v, int32_t j) {
    return zktarn_vector_is_elm(v, j);
}

void via_vector_set_elm(zktarn_vector* v, int32_t j) {
    zktarn_vector_set_elm(v, j);
}

void via_vector_rem_elm(zktarn_vector* v, int32_t j) {
    zktarn_vector_rem_elm(v, j);
}
