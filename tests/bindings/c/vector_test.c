/*
 * Vectors: every procedure, each optional argument present and absent, each failure. Built twice:
 * with the inline procedures of the header, and with those of the library.
 */

#include <math.h>
#include <string.h>

#include "check.h"
#include "zktarn_standin.h"
#include "zktarn_util.h"

static const zktarn_flag yes = 1;
static const zktarn_flag no = 0;

static zktarn_vector* make(int32_t n, const zktarn_flag* no_coef, const zktarn_flag* no_ind,
                           const zktarn_flag* no_elm) {
    zktarn_vector* v = NULL;
    CHECK(zktarn_vector_alloc(&v, n, no_coef, no_ind, no_elm) == 1);
    CHECK(v != NULL);
    return v;
}

static void add(zktarn_vector* v, int32_t j, double value) {
    zktarn_vector_add_nz(v, j, &value);
}

/* Each of the three flags absent, 0 and 1. */
static void test_alloc(void) {
    const zktarn_flag* const flags[] = {NULL, &no, &yes};
    for (int c = 0; c < 3; ++c) {
        for (int i = 0; i < 3; ++i) {
            for (int e = 0; e < 3; ++e) {
                zktarn_vector* v = make(4, flags[c], flags[i], flags[e]);
                CHECK((v->coef.data == NULL) == (c == 2));
                CHECK((v->ind.data == NULL) == (i == 2));
                CHECK((v->elm.data == NULL) == (e == 2));
                CHECK(zktarn_vector_get_nz(v) == 0);
                CHECK(c == 2 || (v->coef.extent[0] == 4 && v->coef.lower_bound[0] == 1));
                for (int32_t j = 1; e != 2 && j <= 4; ++j) {
                    CHECK(zktarn_vector_is_elm(v, j) == 0);
                }
                zktarn_vector_free(&v);
                CHECK(v == NULL);
            }
        }
    }
    zktarn_vector* none = NULL;
    zktarn_vector_free(&none);
    zktarn_vector* empty = make(0, NULL, NULL, NULL);
    CHECK(empty->coef.data == NULL && empty->ind.data == NULL && empty->elm.data == NULL);
    zktarn_vector_free(&empty);
}

static void test_alloc_failures(void) {
    for (int64_t k = 1; k <= 3; ++k) {
        zktarn_standin_fail_request(k);
        zktarn_vector* v = NULL;
        CHECK(zktarn_vector_alloc(&v, 4, NULL, NULL, NULL) == 0);
        CHECK(v == NULL);
        CHECK(zktarn_standin_live_blocks(NULL, 0) == 0);
    }
    zktarn_standin_reset();
}

static void test_components(void) {
    zktarn_vector* v = make(5, NULL, NULL, NULL);
    zktarn_vector_set_elm(v, 3);
    CHECK(zktarn_vector_is_elm(v, 3) == 1 && zktarn_vector_is_elm(v, 2) == 0);
    zktarn_vector_set_ind(v, 1, 3);
    CHECK(zktarn_vector_get_ind(v, 1) == 3);
    zktarn_vector_set_nz(v, 1);
    CHECK(zktarn_vector_get_nz(v) == 1);
    zktarn_vector_set_coef(v, 3, 2.5);
    CHECK(zktarn_vector_get_coef(v, 3) == 2.5);
    zktarn_vector_rem_elm(v, 3);
    CHECK(zktarn_vector_is_elm(v, 3) == 0 && zktarn_vector_get_coef(v, 3) == 0.0);
    zktarn_vector_free(&v);
}

static void test_entries(void) {
    zktarn_vector* v = make(5, NULL, NULL, NULL);
    add(v, 2, 1.5);
    add(v, 5, 0.0);
    zktarn_vector_set_coef(v, 4, -3.0);
    zktarn_vector_add_nz(v, 4, NULL); /* the coefficient stays */
    CHECK(zktarn_vector_get_nz(v) == 3 && zktarn_vector_get_coef(v, 4) == -3.0);
    zktarn_vector_rem_nz(v, 1);
    CHECK(zktarn_vector_get_nz(v) == 2 && zktarn_vector_get_ind(v, 1) == 4);
    CHECK(zktarn_vector_is_elm(v, 2) == 0);
    zktarn_vector_rem_zeros(v);
    CHECK(zktarn_vector_get_nz(v) == 1 && zktarn_vector_get_ind(v, 1) == 4);
    zktarn_vector_clean_index(v);
    CHECK(zktarn_vector_get_nz(v) == 1 && zktarn_vector_is_elm(v, 4) == 0);
    zktarn_vector_set_elm(v, 4);
    zktarn_vector_clear(v);
    CHECK(zktarn_vector_get_nz(v) == 0 && zktarn_vector_is_elm(v, 4) == 0);
    zktarn_vector_free(&v);
}

static void test_whole_vectors(void) {
    zktarn_vector* x = make(6, NULL, NULL, NULL);
    zktarn_vector* y = make(6, NULL, NULL, &yes);
    add(x, 1, 3.0);
    add(x, 2, 1.0);
    add(y, 2, 0.5);
    add(y, 6, 4.0);
    zktarn_vectors_combine(x, y, 1.0, -2.0, 1e-9);
    CHECK(zktarn_vector_get_nz(x) == 2);
    CHECK(zktarn_vector_get_coef(x, 1) == 3.0 && zktarn_vector_get_coef(x, 6) == -8.0);
    CHECK(zktarn_vector_get_coef(x, 2) == 0.0);
    CHECK(zktarn_vectors_are_identical(x, x, 0.0) == 1);
    CHECK(zktarn_vectors_are_identical(y, x, 0.0) == 0);
    zktarn_vector_mod2(x, 1e-9);
    CHECK(zktarn_vector_get_nz(x) == 1 && zktarn_vector_get_coef(x, 1) == 1.0);
    zktarn_vectors_calc_sym_diff(x, y);
    CHECK(zktarn_vector_get_nz(x) == 3);
    zktarn_vectors_calc_sym_diff(x, x);
    CHECK(zktarn_vector_get_nz(x) == 0);
    zktarn_vector_free(&x);
    zktarn_vector_free(&y);
}

static void test_initialise(void) {
    zktarn_vector records[3];
    memset(records, 0x55, sizeof records);
    zktarn_vectorinitialise(records, 2);
    for (int i = 0; i < 2; ++i) {
        CHECK(records[i].coef.data == NULL && records[i].ind.data == NULL);
        CHECK(records[i].elm.data == NULL && records[i].nz == 0);
    }
    CHECK(records[2].nz == 0x55555555);
    zktarn_vectorinitialise(NULL, 0);
}

int main(void) {
    test_alloc();
    test_alloc_failures();
    test_components();
    test_entries();
    test_whole_vectors();
    test_initialise();
    CHECK(zktarn_standin_live_blocks(NULL, 0) == 0);
    return failures();
}
