#include "arguments.hpp"
#include "zktarn/vector/vector_mod.hpp"
#include "zktarn/vector/vector_type.hpp"

using namespace zktarn;
using c::cpp;

zktarn_flag zktarn_vector_alloc(zktarn_vector** vec, int32_t n, const zktarn_flag* no_coef,
                                const zktarn_flag* no_ind, const zktarn_flag* no_elm) {
    if (c::any_null(vec)) {
        return 0;
    }
    return vector_type::vector_alloc(cpp(vec), n, c::optional(no_coef), c::optional(no_ind),
                                     c::optional(no_elm));
}

void zktarn_vector_free(zktarn_vector** vec) {
    if (!c::any_null(vec)) {
        vector_type::vector_free(cpp(vec));
    }
}

void zktarn_vectorinitialise(zktarn_vector* first, int32_t count) {
    if (c::has_records(first, count)) {
        vector_type::_vectorinitialise(cpp(first), count);
    }
}

int32_t zktarn_vector_get_nz(const zktarn_vector* v) {
    return c::any_null(v) ? 0 : vector_mod::vector_get_nz(cpp(v));
}

void zktarn_vector_set_nz(zktarn_vector* v, int32_t n) {
    if (!c::any_null(v)) {
        vector_mod::vector_set_nz(cpp(v), n);
    }
}

int32_t zktarn_vector_get_ind(const zktarn_vector* v, int32_t k) {
    return c::any_null(v) ? 0 : vector_mod::vector_get_ind(cpp(v), k);
}

void zktarn_vector_set_ind(zktarn_vector* v, int32_t k, int32_t j) {
    if (!c::any_null(v)) {
        vector_mod::vector_set_ind(cpp(v), k, j);
    }
}

void zktarn_vector_set_coef(zktarn_vector* v, int32_t j, double value) {
    if (!c::any_null(v)) {
        vector_mod::vector_set_coef(cpp(v), j, value);
    }
}

double zktarn_vector_get_coef(const zktarn_vector* v, int32_t j) {
    return c::any_null(v) ? 0.0 : vector_mod::vector_get_coef(cpp(v), j);
}

zktarn_flag zktarn_vector_is_elm(const zktarn_vector* v, int32_t j) {
    return c::any_null(v) ? 0 : vector_mod::vector_is_elm(cpp(v), j);
}

void zktarn_vector_set_elm(zktarn_vector* v, int32_t j) {
    if (!c::any_null(v)) {
        vector_mod::vector_set_elm(cpp(v), j);
    }
}

void zktarn_vector_rem_elm(zktarn_vector* v, int32_t j) {
    if (!c::any_null(v)) {
        vector_mod::vector_rem_elm(cpp(v), j);
    }
}

void zktarn_vector_add_nz(zktarn_vector* v, int32_t j, const double* value) {
    if (!c::any_null(v)) {
        vector_mod::vector_add_nz(cpp(v), j, c::optional(value));
    }
}

void zktarn_vector_rem_nz(zktarn_vector* v, int32_t k) {
    if (!c::any_null(v)) {
        vector_mod::vector_rem_nz(cpp(v), k);
    }
}

void zktarn_vector_clear(zktarn_vector* v) {
    if (!c::any_null(v)) {
        vector_mod::vector_clear(cpp(v));
    }
}

void zktarn_vector_clean_index(zktarn_vector* v) {
    if (!c::any_null(v)) {
        vector_mod::vector_clean_index(cpp(v));
    }
}

void zktarn_vector_rem_zeros(zktarn_vector* v) {
    if (!c::any_null(v)) {
        vector_mod::vector_rem_zeros(cpp(v));
    }
}

void zktarn_vectors_combine(zktarn_vector* x, const zktarn_vector* y, double alpha, double beta,
                            double tol) {
    if (!c::any_null(x, y)) {
        vector_mod::vectors_combine(cpp(x), cpp(y), alpha, beta, tol);
    }
}

void zktarn_vectors_calc_sym_diff(zktarn_vector* x, const zktarn_vector* y) {
    if (!c::any_null(x, y)) {
        vector_mod::vectors_calc_sym_diff(cpp(x), cpp(y));
    }
}

void zktarn_vector_mod2(zktarn_vector* v, double tol) {
    if (!c::any_null(v)) {
        vector_mod::vector_mod2(cpp(v), tol);
    }
}

zktarn_flag zktarn_vectors_are_identical(const zktarn_vector* a, const zktarn_vector* b,
                                         double tol) {
    return c::any_null(a, b) ? 0 : vector_mod::vectors_are_identical(cpp(a), cpp(b), tol);
}
