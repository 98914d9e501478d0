#ifndef ZKTARN_TESTS_VIA_H
#define ZKTARN_TESTS_VIA_H

/*
 * The numeric, vector, sorting and random procedures, called from another language. calls.c
 * implements them in C, calls.f90 in Fortran; each calls the procedure of the same name.
 */

#include "zktarn_util.h"

#ifdef __cplusplus
extern "C" {
#endif

zktarn_flag via_instantiaterng(zktarn_rng_state* rng, int32_t seed);
void via_deleterng(zktarn_rng_state* rng);
double via_rand_number(const zktarn_rng_state* rng);
zktarn_flag via_getrngstate(const zktarn_rng_state* rng, zktarn_saved_state* state);
void via_setrngstate(const zktarn_rng_state* rng, zktarn_saved_state state);
void via_deleterngstate(zktarn_saved_state state);
void via_rng_stateinitialise(zktarn_rng_state* first, int32_t count);
void via_sort(int32_t first, int32_t last, zktarn_exchange_procedure exchange, void* context);
double via_fractional(double x);
void via_epsilon_is_int_scalar(double x, double scalar, double eps, zktarn_flag* is_int,
                               double* nearest);
void via_epsilon_is_int(double x, double eps, zktarn_flag* is_int, double* nearest);
double via_epsilon_fractionality(double x, double eps);
double via_epsilon_floor(double x, double eps);
double via_epsilon_ceiling(double x, double eps);
zktarn_flag via_is_even_real(double x, double eps);
void via_xcopy_i1(const int8_t* source, int8_t* destination, int32_t n);
void via_xcopy_i4(const int32_t* source, int32_t* destination, int32_t n);
void via_xcopy_r8(const double* source, double* destination, int32_t n);
void via_xzero_i4(int32_t* array, int32_t n);
void via_xzero_r8(double* array, int32_t n);
void via_get_rational_rep(double x, double eps, double max_den, zktarn_flag* found, double* num,
                          double* den);
double via_xgcd_r8(double a, double b, double eps);
int32_t via_xgcd_i4(int32_t a, int32_t b);
void via_find_scalar_integral(int32_t n, zktarn_element_supplier get_element, void* context,
                              double eps, double max_den, double max_scalar, zktarn_flag* found,
                              double* scalar, const zktarn_flag* skip_marked,
                              const zktarn_flag* selected_only);
double via_vector_get_coef(const zktarn_vector* v, int32_t j);
void via_vector_add_nz(zktarn_vector* v, int32_t j, const double* value);
void via_vector_rem_nz(zktarn_vector* v, int32_t k);
void via_vector_clear(zktarn_vector* v);
void via_vector_clean_index(zktarn_vector* v);
void via_vector_rem_zeros(zktarn_vector* v);
void via_vectors_combine(zktarn_vector* x, const zktarn_vector* y, double alpha, double beta,
                         double tol);
void via_vectors_calc_sym_diff(zktarn_vector* x, const zktarn_vector* y);
void via_vector_mod2(zktarn_vector* v, double tol);
zktarn_flag via_vectors_are_identical(const zktarn_vector* a, const zktarn_vector* b, double tol);
zktarn_flag via_is_even_int(int32_t n);
int32_t via_vector_get_nz(const zktarn_vector* v);
void via_vector_set_nz(zktarn_vector* v, int32_t n);
int32_t via_vector_get_ind(const zktarn_vector* v, int32_t k);
void via_vector_set_ind(zktarn_vector* v, int32_t k, int32_t j);
void via_vector_set_coef(zktarn_vector* v, int32_t j, double value);
zktarn_flag via_vector_is_elm(const zktarn_vector* v, int32_t j);
void via_vector_set_elm(zktarn_vector* v, int32_t j);
void via_vector_rem_elm(zktarn_vector* v, int32_t j);

#ifdef __cplusplus
}
#endif

#endif
