/* Integrality, fractions, divisors, the scalar search, sorting, plain arrays, generators. */

#include <float.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include "check.h"
#include "zktarn_standin.h"
#include "zktarn_util.h"

static void test_integrality(void) {
    zktarn_flag is_int = -1;
    double nearest = -7.0;
    zktarn_epsilon_is_int(2.9999999999, 1e-6, &is_int, &nearest);
    CHECK(is_int == 1 && nearest == 3.0);
    zktarn_epsilon_is_int(2.5, 1e-6, &is_int, NULL);
    CHECK(is_int == 0);
    nearest = -7.0;
    zktarn_epsilon_is_int_scalar(0.5, 4.0, 1e-6, &is_int, &nearest);
    CHECK(is_int == 1 && nearest == 2.0);
    zktarn_epsilon_is_int_scalar(0.5, 3.0, 1e-6, &is_int, NULL);
    CHECK(is_int == 0);
    CHECK(zktarn_fractional(2.75) == 0.25);
    CHECK(zktarn_epsilon_fractionality(2.25, 1e-6) == 0.25);
    CHECK(zktarn_epsilon_floor(2.9999999999, 1e-6) == 3.0);
    CHECK(zktarn_epsilon_ceiling(2.0000000001, 1e-6) == 2.0);
    CHECK(zktarn_is_even_real(4.0, 1e-6) == 1 && zktarn_is_even_real(3.0, 1e-6) == 0);
    CHECK(zktarn_is_even_int(4) == 1 && zktarn_is_even_int(-3) == 0);
}

static void test_fractions(void) {
    zktarn_flag found = -1;
    double num = -1.0;
    double den = -1.0;
    zktarn_get_rational_rep(0.25, 1e-9, 1000.0, &found, &num, &den);
    CHECK(found == 1 && num == 25.0 && den == 100.0);
    zktarn_get_rational_rep(NAN, 1e-9, 1000.0, &found, &num, &den);
    CHECK(found == 0 && num == 0.0 && den == 0.0);
    CHECK(zktarn_xgcd_r8(12.0, 18.0, 1e-9) == 6.0 && zktarn_xgcd_r8(1.0, 2.0, -1.0) == 0.0);
    CHECK(zktarn_xgcd_i4(12, -18) == 6 && zktarn_xgcd_i4(INT32_MIN, 2) == 0);
}

struct elements {
    const double* values;
    int calls;
};

static void supply(int32_t index, double* value, zktarn_flag* marked, zktarn_flag* selected,
                   void* context) {
    struct elements* const elements = context;
    elements->calls += 1;
    *value = elements->values[index - 1];
    *marked = index == 3;
    *selected = index != 2;
}

/* The second and the third element have no scalar, so the search must exclude both. */
static void test_scalar_search(void) {
    static const double values[] = {0.5, 0.7071067811865476, 0.5773502691896257};
    static const zktarn_flag yes = 1;
    static const zktarn_flag no = 0;
    const zktarn_flag* const flags[] = {NULL, &no, &yes};
    for (int skip = 0; skip < 3; ++skip) {
        for (int selected = 0; selected < 3; ++selected) {
            struct elements elements = {values, 0};
            zktarn_flag found = -1;
            double scalar = -1.0;
            zktarn_find_scalar_integral(3, supply, &elements, 1e-9, 1000.0, 1000.0, &found, &scalar,
                                        flags[skip], flags[selected]);
            CHECK(elements.calls > 0);
            CHECK(found == (skip == 2 && selected == 2));
            CHECK(scalar == (found ? 2.0 : 0.0));
        }
    }
}

static zktarn_flag exchange(int32_t a, int32_t b, void* context) {
    double* const keys = context;
    if (!(keys[b] < keys[a])) {
        return 0;
    }
    const double lower = keys[b];
    keys[b] = keys[a];
    keys[a] = lower;
    return 1;
}

static zktarn_flag never(int32_t a, int32_t b, void* context) {
    CHECK(a < b && context == NULL);
    return 0;
}

static void test_sort(void) {
    double keys[1000];
    for (int i = 0; i < 1000; ++i) {
        keys[i] = (i * 7919) % 1000;
    }
    zktarn_sort(0, 999, exchange, keys);
    for (int i = 0; i < 1000; ++i) {
        CHECK(keys[i] == i);
    }
    zktarn_sort(5, 5, never, NULL);
    zktarn_sort(1, 9, never, NULL);
}

static void test_plain_arrays(void) {
    const int8_t bytes[3] = {1, 2, 3};
    const int32_t integers[3] = {4, 5, 6};
    const double reals[3] = {7.0, 8.0, 9.0};
    int8_t bytes_copied[3] = {0};
    int32_t integers_copied[3] = {0};
    double reals_copied[3] = {0};
    zktarn_xcopy_i1(bytes, bytes_copied, 2);
    zktarn_xcopy_i4(integers, integers_copied, 2);
    zktarn_xcopy_r8(reals, reals_copied, 2);
    CHECK(bytes_copied[1] == 2 && bytes_copied[2] == 0);
    CHECK(integers_copied[1] == 5 && integers_copied[2] == 0);
    CHECK(reals_copied[1] == 8.0 && reals_copied[2] == 0.0);
    zktarn_xzero_i4(integers_copied, 1);
    zktarn_xzero_r8(reals_copied, 1);
    CHECK(integers_copied[0] == 0 && integers_copied[1] == 5);
    CHECK(reals_copied[0] == 0.0 && reals_copied[1] == 8.0);
    zktarn_xcopy_i1(NULL, NULL, 0);
    zktarn_xcopy_i4(NULL, NULL, -1);
    zktarn_xcopy_r8(NULL, NULL, 0);
    zktarn_xzero_i4(NULL, 0);
    zktarn_xzero_r8(NULL, -1);
}

static void test_generators(void) {
    zktarn_rng_state rng = {NULL};
    CHECK(zktarn_rand_number(&rng) == DBL_MAX);
    zktarn_standin_fail_call(zktarn_op_instantiateRngOptim, 1);
    CHECK(zktarn_instantiaterng(&rng, 1) == 0 && rng.generator == NULL);
    CHECK(zktarn_instantiaterng(&rng, 42) == 1 && rng.generator != NULL);
    const double first = zktarn_rand_number(&rng);
    CHECK(first >= 0.0 && first <= 1.0);
    zktarn_saved_state state = NULL;
    zktarn_standin_fail_call(zktarn_op_getRngStateOptim, 1);
    CHECK(zktarn_getrngstate(&rng, &state) == 0 && state == NULL);
    CHECK(zktarn_getrngstate(&rng, &state) == 1 && state != NULL);
    const double second = zktarn_rand_number(&rng);
    zktarn_setrngstate(&rng, NULL);
    zktarn_setrngstate(&rng, state);
    CHECK(zktarn_rand_number(&rng) == second);
    zktarn_standin_fail_call(zktarn_op_getRandUniformOptim, 1);
    CHECK(zktarn_rand_number(&rng) == DBL_MAX);
    zktarn_deleterngstate(state);
    zktarn_deleterngstate(NULL);
    zktarn_deleterng(&rng);
    CHECK(rng.generator == NULL);
    zktarn_deleterng(&rng);
    zktarn_rng_state records[2] = {{records}, {records}};
    zktarn_rng_stateinitialise(records, 1);
    CHECK(records[0].generator == NULL && records[1].generator == records);
    CHECK(zktarn_standin_live_objects(NULL, 0) == 0);
}

int main(void) {
    test_integrality();
    test_fractions();
    test_scalar_search();
    test_sort();
    test_plain_arrays();
    test_generators();
    return failures();
}
