/* The library built with checks: each NULL that a procedure does not accept is reported and does no
 * harm.
 */

#include "check.h"
#include "zktarn_standin.h"
#include "zktarn_util.h"

#ifndef ZKTARN_CHECKED
#error "this test is for a checked build"
#endif

static int reports = 0;

static void note(void* context) {
    (void)context;
    reports += 1;
}

#define REPORTS(call)                                                                              \
    do {                                                                                           \
        reports = 0;                                                                               \
        call;                                                                                      \
        CHECK(reports == 1 && #call);                                                              \
    } while (0)

#define REPORTS_AND_IS(call, expected)                                                             \
    do {                                                                                           \
        reports = 0;                                                                               \
        CHECK((call) == (expected));                                                               \
        CHECK(reports == 1 && #call);                                                              \
    } while (0)

static zktarn_flag exchange(int32_t a, int32_t b, void* context) {
    (void)context;
    return a == b;
}

static void supply(int32_t index, double* value, zktarn_flag* marked, zktarn_flag* selected,
                   void* context) {
    (void)context;
    *value = index;
    *marked = 0;
    *selected = 1;
}

static void test_arrays(void) {
    REPORTS_AND_IS(zktarn_allocmem_l4_1d_array(NULL, 1), 0);
    REPORTS_AND_IS(zktarn_allocmem_i8_1d_array(NULL, 1), 0);
    REPORTS_AND_IS(zktarn_allocmem_i4_1d_array(NULL, 1), 0);
    REPORTS_AND_IS(zktarn_allocmem_i2_1d_array(NULL, 1), 0);
    REPORTS_AND_IS(zktarn_allocmem_i1_1d_array(NULL, 1), 0);
    REPORTS_AND_IS(zktarn_allocmem_r8_1d_array(NULL, 1), 0);
    REPORTS_AND_IS(zktarn_allocmem_i4_2d_array(NULL, 1, 1), 0);
    REPORTS_AND_IS(zktarn_allocmem_r8_2d_array(NULL, 1, 1), 0);
    REPORTS(zktarn_freemem_l4_1d_array(NULL));
    REPORTS(zktarn_freemem_i8_1d_array(NULL));
    REPORTS(zktarn_freemem_i4_1d_array(NULL));
    REPORTS(zktarn_freemem_i2_1d_array(NULL));
    REPORTS(zktarn_freemem_i1_1d_array(NULL));
    REPORTS(zktarn_freemem_r8_1d_array(NULL));
    REPORTS(zktarn_freemem_i4_2d_array(NULL));
    REPORTS(zktarn_freemem_r8_2d_array(NULL));
}

static void test_bridge(void) {
    zktarn_flag stop = 0;
    const double value = 1.0;
    (void)stop;
    REPORTS(zktarn_cbinit(NULL));
    REPORTS(zktarn_cbfree(NULL));
    REPORTS_AND_IS(zktarn_qvinitcbarray(NULL, 1), 0);
    REPORTS(zktarn_qvfreecbarray(NULL));
    REPORTS(zktarn_addrealscalartoqvstruct(0, NULL, 1, value));
    REPORTS(zktarn_addrealvectoqvstruct(0, NULL, 1, &value, 1));
    REPORTS(zktarn_addrealvectoqvstruct(0, "v", 1, NULL, 1));
    REPORTS(zktarn_qvcalloutputfcn(0, NULL, 3, 0));
    REPORTS(zktarn_cbprintdisplay(0, 0, 1, NULL, 1));
    REPORTS(zktarn_lowercasee(NULL, 1));
    REPORTS(zktarn_cbstatusdatainitialise(NULL, 1));
    REPORTS(zktarn_cbdatainitialise(NULL, 1));
    REPORTS(zktarn_cbdatalistinitialise(NULL, 1));
    REPORTS(zktarn_cbdatalistcopy(NULL, 1));
    REPORTS(zktarn_cbdatalistfinalise(NULL, 1));
    REPORTS_AND_IS(zktarn_store_value(NULL, &value, 8, NULL, NULL, NULL), 0);
    zktarn_cbdatalist list = {0};
    REPORTS_AND_IS(zktarn_store_value(&list, NULL, 8, NULL, NULL, NULL), 0);
    REPORTS_AND_IS(zktarn_stored_value(NULL, NULL), NULL);
}

static void test_numbers(void) {
    zktarn_flag flag = 0;
    double real = 0.0;
    int32_t integers[1] = {0};
    int8_t bytes[1] = {0};
    REPORTS(zktarn_epsilon_is_int(1.0, 0.0, NULL, &real));
    REPORTS(zktarn_epsilon_is_int_scalar(1.0, 1.0, 0.0, NULL, &real));
    REPORTS(zktarn_get_rational_rep(1.0, 0.0, 1.0, NULL, &real, &real));
    REPORTS(zktarn_get_rational_rep(1.0, 0.0, 1.0, &flag, NULL, &real));
    REPORTS(zktarn_get_rational_rep(1.0, 0.0, 1.0, &flag, &real, NULL));
    REPORTS(zktarn_find_scalar_integral(1, NULL, NULL, 0.0, 1.0, 1.0, &flag, &real, NULL, NULL));
    REPORTS(zktarn_find_scalar_integral(1, supply, NULL, 0.0, 1.0, 1.0, NULL, &real, NULL, NULL));
    REPORTS(zktarn_find_scalar_integral(1, supply, NULL, 0.0, 1.0, 1.0, &flag, NULL, NULL, NULL));
    REPORTS(zktarn_xcopy_i1(NULL, bytes, 1));
    REPORTS(zktarn_xcopy_i1(bytes, NULL, 1));
    REPORTS(zktarn_xcopy_i4(NULL, integers, 1));
    REPORTS(zktarn_xcopy_i4(integers, NULL, 1));
    REPORTS(zktarn_xcopy_r8(NULL, &real, 1));
    REPORTS(zktarn_xcopy_r8(&real, NULL, 1));
    REPORTS(zktarn_xzero_i4(NULL, 1));
    REPORTS(zktarn_xzero_r8(NULL, 1));
    REPORTS(zktarn_sort(1, 2, NULL, NULL));
    zktarn_sort(1, 2, exchange, NULL);
    zktarn_rng_state rng = {NULL};
    zktarn_saved_state state = NULL;
    REPORTS_AND_IS(zktarn_instantiaterng(NULL, 1), 0);
    REPORTS(zktarn_deleterng(NULL));
    REPORTS_AND_IS(zktarn_rand_number(NULL), 0.0);
    REPORTS_AND_IS(zktarn_getrngstate(NULL, &state), 0);
    REPORTS_AND_IS(zktarn_getrngstate(&rng, NULL), 0);
    REPORTS(zktarn_setrngstate(NULL, state));
    REPORTS(zktarn_rng_stateinitialise(NULL, 1));
}

static void test_vectors(void) {
    zktarn_vector* v = NULL;
    CHECK(zktarn_vector_alloc(&v, 2, NULL, NULL, NULL) == 1);
    REPORTS_AND_IS(zktarn_vector_alloc(NULL, 1, NULL, NULL, NULL), 0);
    REPORTS(zktarn_vector_free(NULL));
    REPORTS(zktarn_vectorinitialise(NULL, 1));
    REPORTS_AND_IS(zktarn_vector_get_nz(NULL), 0);
    REPORTS(zktarn_vector_set_nz(NULL, 1));
    REPORTS_AND_IS(zktarn_vector_get_ind(NULL, 1), 0);
    REPORTS(zktarn_vector_set_ind(NULL, 1, 1));
    REPORTS(zktarn_vector_set_coef(NULL, 1, 1.0));
    REPORTS_AND_IS(zktarn_vector_get_coef(NULL, 1), 0.0);
    REPORTS_AND_IS(zktarn_vector_is_elm(NULL, 1), 0);
    REPORTS(zktarn_vector_set_elm(NULL, 1));
    REPORTS(zktarn_vector_rem_elm(NULL, 1));
    REPORTS(zktarn_vector_add_nz(NULL, 1, NULL));
    REPORTS(zktarn_vector_rem_nz(NULL, 1));
    REPORTS(zktarn_vector_clear(NULL));
    REPORTS(zktarn_vector_clean_index(NULL));
    REPORTS(zktarn_vector_rem_zeros(NULL));
    REPORTS(zktarn_vectors_combine(NULL, v, 1.0, 1.0, 0.0));
    REPORTS(zktarn_vectors_combine(v, NULL, 1.0, 1.0, 0.0));
    REPORTS(zktarn_vectors_calc_sym_diff(NULL, v));
    REPORTS(zktarn_vectors_calc_sym_diff(v, NULL));
    REPORTS(zktarn_vector_mod2(NULL, 0.0));
    REPORTS_AND_IS(zktarn_vectors_are_identical(NULL, v, 0.0), 0);
    REPORTS_AND_IS(zktarn_vectors_are_identical(v, NULL, 0.0), 0);
    /* Preconditions of accessors, which ordinary builds do not check. */
    REPORTS(zktarn_vector_set_nz(v, 3));
    zktarn_vector_free(&v);
}

/* An optional argument may be NULL, which is not reported. */
static void test_answers(void) {
    reports = 0;
    zktarn_vector* v = NULL;
    zktarn_vector_free(&v);
    zktarn_cbdata* cb = NULL;
    zktarn_cbfree(&cb);
    zktarn_deleterngstate(NULL);
    zktarn_mdeallocate(NULL);
    zktarn_lowercasee(NULL, 0);
    zktarn_xzero_r8(NULL, 0);
    CHECK(reports == 0);
}

int main(void) {
    zktarn_standin_set_assertion_handler(note, NULL);
    test_arrays();
    test_bridge();
    test_numbers();
    test_vectors();
    test_answers();
    return failures();
}
