#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "property/reference/util_reference.hpp"

/// Literal reference of the operations on sparse vectors: the steps without shortcuts.

namespace zktarn::reference {

/// A sparse vector with arrays indexed from 1; position 0 is unused.
struct sparse_vector {
    std::optional<std::vector<double>> coef;
    std::optional<std::vector<std::int32_t>> ind;
    std::optional<std::vector<std::int32_t>> elm;
    std::int32_t nz = 0;

    bool marks_mode() const { return elm.has_value(); }
    bool list_mode() const { return !elm && ind; }

    double& c(std::int32_t j) { return coef->at(static_cast<std::size_t>(j)); }
    double c(std::int32_t j) const { return coef->at(static_cast<std::size_t>(j)); }
    std::int32_t& i(std::int32_t k) { return ind->at(static_cast<std::size_t>(k)); }
    std::int32_t i(std::int32_t k) const { return ind->at(static_cast<std::size_t>(k)); }
    std::int32_t& m(std::int32_t j) { return elm->at(static_cast<std::size_t>(j)); }
    std::int32_t m(std::int32_t j) const { return elm->at(static_cast<std::size_t>(j)); }
};

/// The first list position of j, or 0.
inline std::int32_t search(const sparse_vector& v, std::int32_t j) {
    for (std::int32_t k = 1; k <= v.nz; ++k) {
        if (v.i(k) == j) {
            return k;
        }
    }
    return 0;
}

inline double vector_get_coef(const sparse_vector& v, std::int32_t j) {
    if (v.marks_mode()) {
        return v.m(j) < 1 ? 0.0 : v.c(j);
    }
    if (v.list_mode()) {
        return search(v, j) == 0 ? 0.0 : v.c(j);
    }
    return v.c(j);
}

inline void vector_add_nz(sparse_vector& v, std::int32_t j, std::optional<double> value = {}) {
    if (v.marks_mode()) {
        if (v.m(j) < 1) {
            v.i(v.nz + 1) = j;
            if (value) {
                v.c(j) = *value;
            }
            v.m(j) = 1;
            v.nz += 1;
        } else if (value) {
            v.c(j) = *value;
        }
    } else if (v.list_mode()) {
        if (search(v, j) == 0) {
            v.i(v.nz + 1) = j;
            v.nz += 1;
        }
        if (value) {
            v.c(j) = *value;
        }
    } else if (value) {
        v.c(j) = *value;
    }
}

inline void vector_rem_nz(sparse_vector& v, std::int32_t k) {
    const std::int32_t j = v.i(k);
    v.i(k) = v.i(v.nz);
    v.m(j) = 0;
    v.nz -= 1;
}

inline void vector_clean_index(sparse_vector& v) {
    for (std::int32_t k = 1; k <= v.nz; ++k) {
        v.m(v.i(k)) = 0;
    }
}

inline void vector_clear(sparse_vector& v) {
    vector_clean_index(v);
    v.nz = 0;
}

inline void vector_rem_zeros(sparse_vector& v) {
    if (v.nz < 1) {
        return;
    }
    std::int32_t k = 1;
    std::int32_t m = v.nz;
    while (k <= m) {
        const std::int32_t j = v.i(k);
        const bool keep =
            v.marks_mode() ? v.m(j) >= 1 && v.c(j) != 0.0 : vector_get_coef(v, j) != 0.0;
        if (keep) {
            k += 1;
            continue;
        }
        v.i(k) = v.i(m);
        if (v.marks_mode()) {
            v.m(j) = 0;
        }
        m -= 1;
        v.nz = m;
    }
}

inline void vectors_combine(sparse_vector& x, const sparse_vector& y, double alpha, double beta,
                            double tol) {
    if (&x == &y) {
        const sparse_vector copy = y;
        vectors_combine(x, copy, alpha, beta, tol);
        return;
    }
    if (x.coef && std::fabs(alpha - 1.0) > tol && x.nz >= 1) {
        const std::int32_t count = x.nz;
        for (std::int32_t k = 1; k <= count; ++k) {
            const std::int32_t j = x.i(k);
            x.c(j) = alpha * vector_get_coef(x, j);
        }
    }
    if (std::fabs(beta) > tol && y.nz >= 1) {
        const std::int32_t count = y.nz;
        for (std::int32_t k = 1; k <= count; ++k) {
            const std::int32_t j = y.i(k);
            if (x.coef && y.coef) {
                const double xv = vector_get_coef(x, j);
                const double yv = vector_get_coef(y, j);
                vector_add_nz(x, j, std::fma(beta, yv, xv));
            } else {
                vector_add_nz(x, j);
            }
        }
    }
    if (x.coef) {
        vector_rem_zeros(x);
    }
}

inline void vectors_calc_sym_diff(sparse_vector& x, const sparse_vector& y) {
    if (&x == &y) {
        const sparse_vector copy = y;
        vectors_calc_sym_diff(x, copy);
        return;
    }
    if (y.nz < 1) {
        return;
    }
    std::int32_t common = 0;
    const std::int32_t count = y.nz;
    for (std::int32_t k = 1; k <= count; ++k) {
        const std::int32_t j = y.i(k);
        if (x.m(j) < 1) {
            x.i(x.nz + 1) = j;
            x.m(j) = 1;
            x.nz += 1;
        } else {
            common += 1;
            x.m(j) = 0;
        }
    }
    if (common < 1) {
        return;
    }
    std::int32_t removed = 0;
    std::int32_t k = 1;
    std::int32_t m = x.nz;
    for (;;) {
        const std::int32_t j = x.i(k);
        if (x.m(j) <= 0) {
            x.i(k) = x.i(m);
            x.m(j) = 0;
            m -= 1;
            x.nz = m;
            removed += 1;
            if (k > m) {
                return;
            }
        } else {
            if (removed == common || k + 1 > m) {
                return;
            }
            k += 1;
        }
    }
}

inline void vector_mod2(sparse_vector& v, double tol) {
    if (v.nz < 1) {
        return;
    }
    std::int32_t zeros = 0;
    for (std::int32_t k = 1; k <= v.nz; ++k) {
        const std::int32_t j = v.i(k);
        if (is_even_real(vector_get_coef(v, j), tol)) {
            v.c(j) = 0.0;
            zeros += 1;
        } else {
            v.c(j) = 1.0;
        }
    }
    if (zeros >= 1) {
        vector_rem_zeros(v);
    }
}

inline bool vectors_are_identical(const sparse_vector& a, const sparse_vector& b, double tol) {
    if (a.nz != b.nz) {
        return false;
    }
    if (a.nz < 1) {
        return true;
    }
    for (std::int32_t k = 1; k <= a.nz; ++k) {
        const std::int32_t j = a.i(k);
        const double av = vector_get_coef(a, j);
        if (b.m(j) < 1) {
            return false;
        }
        if (std::fabs(av - b.c(j)) > tol) {
            return false;
        }
    }
    return true;
}

} // namespace zktarn::reference
