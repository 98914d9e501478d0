#ifndef ZKTARN_BENCH_BINDINGS_CALLS_H
#define ZKTARN_BENCH_BINDINGS_CALLS_H

#include "zktarn_util.h"

/*
 * Loops of calls, each written in C and in Fortran: over the n entries of `indices`, which are
 * indices of v, or over n reals. The C loops of accessors exist twice: with inline accessors, and
 * with calls of the library (`_exported`).
 */

#ifdef __cplusplus
extern "C" {
#endif

void c_add_nz(zktarn_vector* v, const int32_t* indices, int32_t n);
double c_get_coef(const zktarn_vector* v, const int32_t* indices, int32_t n);
int64_t c_is_elm(const zktarn_vector* v, const int32_t* indices, int32_t n);
int64_t c_is_elm_exported(const zktarn_vector* v, const int32_t* indices, int32_t n);
void c_set_coef(zktarn_vector* v, const int32_t* indices, int32_t n);
int64_t c_get_ind(const zktarn_vector* v);
int64_t c_epsilon_is_int(const double* values, int32_t n);
void c_combine(zktarn_vector* x, const zktarn_vector* y, int32_t n);
void c_sort(double* keys, int32_t n);

void fortran_add_nz(zktarn_vector* v, const int32_t* indices, int32_t n);
double fortran_get_coef(const zktarn_vector* v, const int32_t* indices, int32_t n);
int64_t fortran_is_elm(const zktarn_vector* v, const int32_t* indices, int32_t n);
int64_t fortran_epsilon_is_int(const double* values, int32_t n);
void fortran_combine(zktarn_vector* x, zktarn_vector* y, int32_t n);
void fortran_sort(double* keys, int32_t n);

#ifdef __cplusplus
}
#endif

#endif
