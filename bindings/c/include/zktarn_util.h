#ifndef ZKTARN_UTIL_H
#define ZKTARN_UTIL_H

/*
 * The library in C: every procedure of zktarn_util, as C11 and as C++.
 *
 * The C++ headers hold the contract of each procedure: ranges, results in every case, cost. Here a
 * comment gives what differs, and how a call fails. The rules below hold for all of them.
 *
 *  - A procedure is named zktarn_ and its name, without a leading underscore.
 *  - Inputs travel by value, outputs and records by address.
 *  - An optional argument is an address that may be NULL: an absent input flag counts as 0, an
 *    absent output is not written. No other address may be NULL, except that of an empty text or
 *    array. A checked build (ZKTARN_CHECKED) reports such a NULL through the host's assertion and
 *    then returns 0, 0.0 or NULL; an ordinary build does not test for it.
 *  - A zktarn_flag is written as 1 or 0 and read as true when it is not 0.
 *  - Element indices j, list positions k and array elements count from 1.
 *  - A text is an address and a length: no terminating zero is read or written.
 *  - A callback gets the context that was passed with it, unchanged. It must return normally: no
 *    longjmp, no C++ exception.
 */

#include <stddef.h>
#include <stdint.h>

/* ZKTARN_VERSION_STRING is the version of the headers; zktarn_version() gives that of the library.
 */
#include "zktarn/version.hpp"

#ifdef ZKTARN_C_BUILDING
#define ZKTARN_C_API __attribute__((visibility("default")))
#else
#define ZKTARN_C_API
#endif

/* Marks a result that reports a failure, or that is the only effect of the call. */
#define ZKTARN_C_RESULT __attribute__((warn_unused_result))

#ifdef __cplusplus
extern "C" {
#endif

/* Types ---------------------------------------------------------------------------------------- */

/* A logical value: written as 1 (true) or 0 (false), true whenever it is not 0. */
typedef int64_t zktarn_flag;

/* An element of an l4 array: a logical value in 32 bits. */
typedef int32_t zktarn_logical4;

/*
 * Arrays in the host's memory. `data` is NULL while the array is absent; extents and lower bounds
 * then mean nothing. Element k of a one-dimensional array is data[k - 1]; element (i, j) of a
 * two-dimensional one is data[(i - 1) + (j - 1) * extent[0]]. Set a new record to {0}.
 */
typedef struct zktarn_l4_1d_array {
    zktarn_logical4* data;
    int64_t extent[1];
    int64_t lower_bound[1];
} zktarn_l4_1d_array;

typedef struct zktarn_i8_1d_array {
    int64_t* data;
    int64_t extent[1];
    int64_t lower_bound[1];
} zktarn_i8_1d_array;

typedef struct zktarn_i4_1d_array {
    int32_t* data;
    int64_t extent[1];
    int64_t lower_bound[1];
} zktarn_i4_1d_array;

typedef struct zktarn_i2_1d_array {
    int16_t* data;
    int64_t extent[1];
    int64_t lower_bound[1];
} zktarn_i2_1d_array;

typedef struct zktarn_i1_1d_array {
    int8_t* data;
    int64_t extent[1];
    int64_t lower_bound[1];
} zktarn_i1_1d_array;

typedef struct zktarn_r8_1d_array {
    double* data;
    int64_t extent[1];
    int64_t lower_bound[1];
} zktarn_r8_1d_array;

typedef struct zktarn_i4_2d_array {
    int32_t* data;
    int64_t extent[2];
    int64_t lower_bound[2];
} zktarn_i4_2d_array;

typedef struct zktarn_r8_2d_array {
    double* data;
    int64_t extent[2];
    int64_t lower_bound[2];
} zktarn_r8_2d_array;

/* A sparse vector; see zktarn/vector/vector_type.hpp for its three modes and their invariants. */
typedef struct zktarn_vector {
    zktarn_r8_1d_array coef; /* coefficients, by element index */
    zktarn_i4_1d_array ind;  /* listed element indices, by list position 1..nz */
    zktarn_i4_1d_array elm;  /* marks, by element index */
    int32_t nz;              /* number of listed entries */
} zktarn_vector;

/* A generator of the host; NULL when there is none. */
typedef struct zktarn_rng_state {
    void* generator;
} zktarn_rng_state;

/* A snapshot of a generator's state; NULL when there is none. */
typedef void* zktarn_saved_state;

/* An array that the host owns; 0 when there is none. */
typedef int64_t zktarn_array_handle;

/* Counters and measures of a solve; see zktarn/callbacks/callbacks_type_util.hpp. */
typedef struct zktarn_cbstatusdata {
    int32_t status;
    int32_t phase;
    int64_t iterations;
    int64_t nodes;
    int64_t cuts;
    double objective;
    double bound;
    double seconds;
} zktarn_cbstatusdata;

/* One element of a report. */
typedef struct zktarn_cbdataelm {
    int32_t quantity;
    int32_t index;
    double value;
} zktarn_cbdataelm;

/* State of a solve that its callbacks share. */
typedef struct zktarn_cbdata {
    int32_t nodes_explored;
    int32_t feasible_points;
    int32_t node;
    int32_t parent_node;
    int32_t depth;
    int32_t branching_variable;
    double lower_bound;
    double upper_bound;
    double gap;
    int32_t incumbent_node;
    int32_t cuts;
    int32_t restarts;
} zktarn_cbdata;

/* Header of the length-parameter block of a value whose size is known only at run time. */
typedef struct zktarn_parameter_block {
    zktarn_flag owned;
    int64_t count;
    int64_t value_size;
} zktarn_parameter_block;

/* The dynamic type of a value in a slot; zktarn_store_value needs none. */
typedef struct zktarn_value_type {
    int64_t size;
    zktarn_flag has_parameters;
    void (*copy)(void* first, const int32_t* count);
    void (*final)(void* value);
    void (*finalise)(void* first, const int32_t* count, zktarn_parameter_block* parameters);
} zktarn_value_type;

/* An owned value of any type; empty when `value` is NULL. */
typedef struct zktarn_value_slot {
    void* value;
    const zktarn_value_type* type;
    zktarn_parameter_block* parameters;
} zktarn_value_slot;

/* A value and two handles of the solver. */
typedef struct zktarn_cbdatalist {
    zktarn_value_slot slot;
    int64_t first_handle;
    int64_t second_handle;
} zktarn_cbdatalist;

/* Codes that the bridge interprets; see zktarn/callbacks/callbacks_util.hpp. */
enum {
    ZKTARN_STOPPED_BY_OUTPUT_FUNCTION = 3,
    ZKTARN_POLL_FOR_INTERRUPTS = 1,
    ZKTARN_DISPLAY_OFF = 0,
    ZKTARN_DISPLAY_FINAL = 1
};

/* Procedures of the caller --------------------------------------------------------------------- */

/*
 * Compares the elements at positions a < b. Exchanges them and returns 1 when they are out of
 * order; leaves them and returns 0 otherwise.
 */
typedef zktarn_flag (*zktarn_exchange_procedure)(int32_t a, int32_t b, void* context);

/* Supplies element `index`, 1 <= index <= n; the same each time. */
typedef void (*zktarn_element_supplier)(int32_t index, double* value, zktarn_flag* marked,
                                        zktarn_flag* selected, void* context);

/*
 * Makes a value that was just copied bit for bit independent of the original, and returns 1. If it
 * fails, it releases what it has allocated and returns 0; the copy then counts as empty.
 */
typedef zktarn_flag (*zktarn_value_copy)(void* value, void* context);

/* Releases what the components of a value own, not its bytes. */
typedef void (*zktarn_value_destroy)(void* value, void* context);

/* assert_mod ----------------------------------------------------------------------------------- */

ZKTARN_C_API void zktarn_tarnassert(zktarn_flag condition);

/* callbacks_type_util -------------------------------------------------------------------------- */

ZKTARN_C_API void zktarn_cbstatusdatainitialise(zktarn_cbstatusdata* first, int32_t count);
ZKTARN_C_API void zktarn_cbdatainitialise(zktarn_cbdata* first, int32_t count);
/* Needed before any other use of a record that is not {0}. */
ZKTARN_C_API void zktarn_cbdatalistinitialise(zktarn_cbdatalist* first, int32_t count);
/* If memory for a copy is missing, the slot of that copy is empty. */
ZKTARN_C_API void zktarn_cbdatalistcopy(zktarn_cbdatalist* first, int32_t count);
ZKTARN_C_API void zktarn_cbdatalistfinalise(zktarn_cbdatalist* first, int32_t count);

/* callbacks_util ------------------------------------------------------------------------------- */

/* If memory is missing, *cb is NULL. zktarn_cbfree releases the record. */
ZKTARN_C_API void zktarn_cbinit(zktarn_cbdata** cb);
/* Returns 0 if the host cannot make the struct. zktarn_qvfreecbarray destroys it. */
ZKTARN_C_API ZKTARN_C_RESULT zktarn_array_handle zktarn_qvinitcbarray(const char* phase,
                                                                      size_t phase_length);
ZKTARN_C_API void zktarn_addrealscalartoqvstruct(zktarn_array_handle structure, const char* name,
                                                 size_t name_length, double value);
ZKTARN_C_API void zktarn_addrealvectoqvstruct(zktarn_array_handle structure, const char* name,
                                              size_t name_length, const double* values, int64_t n);
ZKTARN_C_API void zktarn_qvcalloutputfcn(zktarn_array_handle structure, zktarn_flag* stop,
                                         int32_t status, int32_t ctrlc);
ZKTARN_C_API void zktarn_cbprintdisplay(int32_t status, int32_t ctrlc, int32_t display,
                                        const char* line, size_t line_length);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_cbhasinterrupt(int32_t status, int32_t ctrlc);
ZKTARN_C_API void zktarn_lowercasee(char* text, size_t text_length);

/* memory_mod ----------------------------------------------------------------------------------- */

/* Each returns 0 if the host has no memory or the byte count exceeds 2^63 - 1. */
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_l4_1d_array(zktarn_l4_1d_array* array,
                                                                     int64_t n);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_i8_1d_array(zktarn_i8_1d_array* array,
                                                                     int64_t n);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_i4_1d_array(zktarn_i4_1d_array* array,
                                                                     int64_t n);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_i2_1d_array(zktarn_i2_1d_array* array,
                                                                     int64_t n);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_i1_1d_array(zktarn_i1_1d_array* array,
                                                                     int64_t n);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_r8_1d_array(zktarn_r8_1d_array* array,
                                                                     int64_t n);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_i4_2d_array(zktarn_i4_2d_array* array,
                                                                     int64_t rows, int64_t columns);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_allocmem_r8_2d_array(zktarn_r8_2d_array* array,
                                                                     int64_t rows, int64_t columns);
ZKTARN_C_API void zktarn_freemem_l4_1d_array(zktarn_l4_1d_array* array);
ZKTARN_C_API void zktarn_freemem_i8_1d_array(zktarn_i8_1d_array* array);
ZKTARN_C_API void zktarn_freemem_i4_1d_array(zktarn_i4_1d_array* array);
ZKTARN_C_API void zktarn_freemem_i2_1d_array(zktarn_i2_1d_array* array);
ZKTARN_C_API void zktarn_freemem_i1_1d_array(zktarn_i1_1d_array* array);
ZKTARN_C_API void zktarn_freemem_r8_1d_array(zktarn_r8_1d_array* array);
ZKTARN_C_API void zktarn_freemem_i4_2d_array(zktarn_i4_2d_array* array);
ZKTARN_C_API void zktarn_freemem_r8_2d_array(zktarn_r8_2d_array* array);
/* Returns NULL if the host has no memory or nbytes < 1. */
ZKTARN_C_API ZKTARN_C_RESULT void* zktarn_mallocate(int64_t nbytes);
/* The address may be NULL; it is passed to the host. */
ZKTARN_C_API void zktarn_mdeallocate(void* address);

/* random --------------------------------------------------------------------------------------- */

/* Returns 0, with a NULL handle, if the host creates no generator. */
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_instantiaterng(zktarn_rng_state* rng, int32_t seed);
ZKTARN_C_API void zktarn_deleterng(zktarn_rng_state* rng);
/* Returns DBL_MAX if there is no generator or the host writes no number. */
ZKTARN_C_API double zktarn_rand_number(const zktarn_rng_state* rng);
/* Returns 0, with *state NULL, if the host creates no snapshot. */
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_getrngstate(const zktarn_rng_state* rng,
                                                            zktarn_saved_state* state);
/* The state may be NULL, and then nothing happens. */
ZKTARN_C_API void zktarn_setrngstate(const zktarn_rng_state* rng, zktarn_saved_state state);
/* The state may be NULL, and then nothing happens. */
ZKTARN_C_API void zktarn_deleterngstate(zktarn_saved_state state);
ZKTARN_C_API void zktarn_rng_stateinitialise(zktarn_rng_state* first, int32_t count);

/* sorting_mod ---------------------------------------------------------------------------------- */

ZKTARN_C_API void zktarn_sort(int32_t first, int32_t last, zktarn_exchange_procedure exchange,
                              void* context);

/* util ----------------------------------------------------------------------------------------- */

ZKTARN_C_API ZKTARN_C_RESULT double zktarn_fractional(double x);
/* `nearest` may be NULL. */
ZKTARN_C_API void zktarn_epsilon_is_int_scalar(double x, double scalar, double eps,
                                               zktarn_flag* is_int, double* nearest);
/* `nearest` may be NULL. */
ZKTARN_C_API void zktarn_epsilon_is_int(double x, double eps, zktarn_flag* is_int, double* nearest);
ZKTARN_C_API ZKTARN_C_RESULT double zktarn_epsilon_fractionality(double x, double eps);
ZKTARN_C_API ZKTARN_C_RESULT double zktarn_epsilon_floor(double x, double eps);
ZKTARN_C_API ZKTARN_C_RESULT double zktarn_epsilon_ceiling(double x, double eps);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_is_even_real(double x, double eps);
ZKTARN_C_API void zktarn_xcopy_i1(const int8_t* source, int8_t* destination, int32_t n);
ZKTARN_C_API void zktarn_xcopy_i4(const int32_t* source, int32_t* destination, int32_t n);
ZKTARN_C_API void zktarn_xcopy_r8(const double* source, double* destination, int32_t n);
ZKTARN_C_API void zktarn_xzero_i4(int32_t* array, int32_t n);
ZKTARN_C_API void zktarn_xzero_r8(double* array, int32_t n);
/* If no fraction is found, *found is 0, *num and *den are 0.0. */
ZKTARN_C_API void zktarn_get_rational_rep(double x, double eps, double max_den, zktarn_flag* found,
                                          double* num, double* den);
/* Returns 0.0 for arguments out of range. */
ZKTARN_C_API ZKTARN_C_RESULT double zktarn_xgcd_r8(double a, double b, double eps);
/* Returns 0 for arguments out of range. */
ZKTARN_C_API ZKTARN_C_RESULT int32_t zktarn_xgcd_i4(int32_t a, int32_t b);
/* If no scalar is found, *found is 0, *scalar 0.0. `skip_marked`, `selected_only` may be NULL. */
ZKTARN_C_API void zktarn_find_scalar_integral(int32_t n, zktarn_element_supplier get_element,
                                              void* context, double eps, double max_den,
                                              double max_scalar, zktarn_flag* found, double* scalar,
                                              const zktarn_flag* skip_marked,
                                              const zktarn_flag* selected_only);

/* vector_mod ----------------------------------------------------------------------------------- */

ZKTARN_C_API ZKTARN_C_RESULT double zktarn_vector_get_coef(const zktarn_vector* v, int32_t j);
/* `value` may be NULL: coef(j) then stays as it is. */
ZKTARN_C_API void zktarn_vector_add_nz(zktarn_vector* v, int32_t j, const double* value);
ZKTARN_C_API void zktarn_vector_rem_nz(zktarn_vector* v, int32_t k);
ZKTARN_C_API void zktarn_vector_clear(zktarn_vector* v);
ZKTARN_C_API void zktarn_vector_clean_index(zktarn_vector* v);
ZKTARN_C_API void zktarn_vector_rem_zeros(zktarn_vector* v);
ZKTARN_C_API void zktarn_vectors_combine(zktarn_vector* x, const zktarn_vector* y, double alpha,
                                         double beta, double tol);
ZKTARN_C_API void zktarn_vectors_calc_sym_diff(zktarn_vector* x, const zktarn_vector* y);
ZKTARN_C_API void zktarn_vector_mod2(zktarn_vector* v, double tol);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_vectors_are_identical(const zktarn_vector* a,
                                                                      const zktarn_vector* b,
                                                                      double tol);

/* vector_type ---------------------------------------------------------------------------------- */

/* Returns 0, with *vec NULL, if memory is missing. Each flag may be NULL. */
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_vector_alloc(zktarn_vector** vec, int32_t n,
                                                             const zktarn_flag* no_coef,
                                                             const zktarn_flag* no_ind,
                                                             const zktarn_flag* no_elm);
/* *vec may be NULL, and is NULL afterwards. */
ZKTARN_C_API void zktarn_vector_free(zktarn_vector** vec);
ZKTARN_C_API void zktarn_vectorinitialise(zktarn_vector* first, int32_t count);

/* Procedures that a compiler inlines ----------------------------------------------------------- */

/*
 * The library exports these too, for other languages and for programs that take their addresses. In
 * a checked build they are not inlined: the library checks their arguments.
 */
#if defined(ZKTARN_C_BUILDING) || defined(ZKTARN_CHECKED)

ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_cbstopfromoutputfcn(int32_t status);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_cbhasoutputfcn(int32_t indicator);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_cbisdisplayoff(int32_t display);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_cbisdisplayfinal(int32_t display);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_cbisctrlcon(int32_t ctrlc);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_is_even_int(int32_t n);
ZKTARN_C_API ZKTARN_C_RESULT int32_t zktarn_vector_get_nz(const zktarn_vector* v);
ZKTARN_C_API void zktarn_vector_set_nz(zktarn_vector* v, int32_t n);
ZKTARN_C_API ZKTARN_C_RESULT int32_t zktarn_vector_get_ind(const zktarn_vector* v, int32_t k);
ZKTARN_C_API void zktarn_vector_set_ind(zktarn_vector* v, int32_t k, int32_t j);
ZKTARN_C_API void zktarn_vector_set_coef(zktarn_vector* v, int32_t j, double value);
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_vector_is_elm(const zktarn_vector* v, int32_t j);
ZKTARN_C_API void zktarn_vector_set_elm(zktarn_vector* v, int32_t j);
ZKTARN_C_API void zktarn_vector_rem_elm(zktarn_vector* v, int32_t j);

#else

ZKTARN_C_RESULT static inline zktarn_flag zktarn_cbstopfromoutputfcn(int32_t status) {
    return status == ZKTARN_STOPPED_BY_OUTPUT_FUNCTION ? 1 : 0;
}

ZKTARN_C_RESULT static inline zktarn_flag zktarn_cbhasoutputfcn(int32_t indicator) {
    return indicator > 0 ? 1 : 0;
}

ZKTARN_C_RESULT static inline zktarn_flag zktarn_cbisdisplayoff(int32_t display) {
    return display == ZKTARN_DISPLAY_OFF ? 1 : 0;
}

ZKTARN_C_RESULT static inline zktarn_flag zktarn_cbisdisplayfinal(int32_t display) {
    return display == ZKTARN_DISPLAY_FINAL ? 1 : 0;
}

ZKTARN_C_RESULT static inline zktarn_flag zktarn_cbisctrlcon(int32_t ctrlc) {
    return ctrlc == ZKTARN_POLL_FOR_INTERRUPTS ? 1 : 0;
}

ZKTARN_C_RESULT static inline zktarn_flag zktarn_is_even_int(int32_t n) {
    return (n & 1) == 0 ? 1 : 0;
}

ZKTARN_C_RESULT static inline int32_t zktarn_vector_get_nz(const zktarn_vector* v) {
    return v->nz;
}

static inline void zktarn_vector_set_nz(zktarn_vector* v, int32_t n) {
    v->nz = n;
}

ZKTARN_C_RESULT static inline int32_t zktarn_vector_get_ind(const zktarn_vector* v, int32_t k) {
    return v->ind.data[k - 1];
}

static inline void zktarn_vector_set_ind(zktarn_vector* v, int32_t k, int32_t j) {
    v->ind.data[k - 1] = j;
}

static inline void zktarn_vector_set_coef(zktarn_vector* v, int32_t j, double value) {
    v->coef.data[j - 1] = value;
}

ZKTARN_C_RESULT static inline zktarn_flag zktarn_vector_is_elm(const zktarn_vector* v, int32_t j) {
    return v->elm.data[j - 1] > 0 ? 1 : 0;
}

static inline void zktarn_vector_set_elm(zktarn_vector* v, int32_t j) {
    v->elm.data[j - 1] = 1;
}

static inline void zktarn_vector_rem_elm(zktarn_vector* v, int32_t j) {
    v->elm.data[j - 1] = 0;
}

#endif

/* Additional functions ------------------------------------------------------------------------- */

/* The version of the library in use, as "major.minor.patch". */
ZKTARN_C_API const char* zktarn_version(void);

/* Releases a record of zktarn_cbinit. *cb may be NULL, and is NULL afterwards. */
ZKTARN_C_API void zktarn_cbfree(zktarn_cbdata** cb);

/* Destroys a struct of zktarn_qvinitcbarray with its fields. *structure may be 0, and is 0
 * afterwards. */
ZKTARN_C_API void zktarn_qvfreecbarray(zktarn_array_handle* structure);

/*
 * Stores a copy of a value of n bytes in the slot of `list`, then destroys the previous value. The
 * slot becomes the owner of what the components of the value own; `value` may be NULL when n is 0.
 * `copy` and `destroy` run when the record is copied and finalised; each may be NULL. The context
 * is passed to both of them and must outlive every copy of the record.
 *
 * Returns 1. If memory is missing, returns 0, leaves the slot unchanged, and the caller still owns
 * the components.
 */
ZKTARN_C_API ZKTARN_C_RESULT zktarn_flag zktarn_store_value(zktarn_cbdatalist* list,
                                                            const void* value, size_t n,
                                                            zktarn_value_copy copy,
                                                            zktarn_value_destroy destroy,
                                                            void* context);

/*
 * The address of the value that zktarn_store_value stored, aligned for every type of C. NULL for an
 * empty slot, for a value that was stored in any other way, and for a copy whose copy procedure
 * failed. Writes the size of the value to *n, 0 for NULL; `n` may be NULL.
 */
ZKTARN_C_API ZKTARN_C_RESULT void* zktarn_stored_value(const zktarn_cbdatalist* list, size_t* n);

/* The address of element (i, j), 1 <= i <= extent[0], 1 <= j <= extent[1], of a present array. */
ZKTARN_C_RESULT static inline int32_t* zktarn_i4_2d_element(const zktarn_i4_2d_array* array,
                                                            int64_t i, int64_t j) {
    return array->data + (i - 1) + (j - 1) * array->extent[0];
}

/* The same for an array of reals. */
ZKTARN_C_RESULT static inline double* zktarn_r8_2d_element(const zktarn_r8_2d_array* array,
                                                           int64_t i, int64_t j) {
    return array->data + (i - 1) + (j - 1) * array->extent[0];
}

#ifdef __cplusplus
}
#endif

#endif
