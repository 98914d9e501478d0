#include "bindings_calls.h"

void c_add_nz(zktarn_vector* v, const int32_t* indices, int32_t n) {
    const double value = 1.5;
    for (int32_t i = 0; i < n; ++i) {
        zktarn_vector_add_nz(v, indices[i], &value);
    }
}

double c_get_coef(const zktarn_vector* v, const int32_t* indices, int32_t n) {
    double sum = 0.0;
    for (int32_t i = 0; i < n; ++i) {
        sum += zktarn_vector_get_coef(v, indices[i]);
    }
    return sum;
}

int64_t c_is_elm(const zktarn_vector* v, const int32_t* indices, int32_t n) {
    int64_t count = 0;
    for (int32_t i = 0; i < n; ++i) {
        count += zktarn_vector_is_elm(v, indices[i]);
    }
    return count;
}

void c_set_coef(zktarn_vector* v, const int32_t* indices, int32_t n) {
    for (int32_t i = 0; i < n; ++i) {
        zktarn_vector_set_coef(v, indices[i], i);
    }
}

int64_t c_get_ind(const zktarn_vector* v) {
    int64_t sum = 0;
    for (int32_t k = 1; k <= zktarn_vector_get_nz(v); ++k) {
        sum += zktarn_vector_get_ind(v, k);
    }
    return sum;
}

int64_t c_epsilon_is_int(const double* values, int32_t n) {
    int64_t count = 0;
    for (int32_t i = 0; i < n; ++i) {
        zktarn_flag is_int;
        double nearest;
        zktarn_epsilon_is_int(values[i], 1e-9, &is_int, &nearest);
        count += is_int;
    }
    return count;
}

void c_combine(zktarn_vector* x, const zktarn_vector* y, int32_t n) {
    for (int32_t i = 0; i < n; ++i) {
        zktarn_vectors_combine(x, y, 1.0, i % 2 == 0 ? 1.0 : -1.0, 1e-9);
    }
}

static zktarn_flag exchange(int32_t a, int32_t b, void* context) {
    double* const keys = context;
    const double lower = keys[a - 1];
    if (!(keys[b - 1] < lower)) {
        return 0;
    }
    keys[a - 1] = keys[b - 1];
    keys[b - 1] = lower;
    return 1;
}

void c_sort(double* keys, int32_t n) {
    zktarn_sort(1, n, exchange, keys);
}
