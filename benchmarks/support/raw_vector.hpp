#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/sparse_problem.hpp"

/// Sparse vectors as a programmer in a hurry writes them: three raw arrays and a count, every
/// invariant taken for granted. They stand for the limit.

namespace zktarn::bench {

struct raw_vector {
    explicit raw_vector(std::int32_t n)
        : coef_store(static_cast<std::size_t>(n) + 1), ind_store(static_cast<std::size_t>(n) + 1),
          elm_store(static_cast<std::size_t>(n) + 1), coef(coef_store.data()),
          ind(ind_store.data()), elm(elm_store.data()) {}

    void load(const std::vector<entry>& entries) {
        clear();
        for (const entry& each : entries) {
            ind[nz++] = each.index;
            elm[each.index] = 1;
            coef[each.index] = each.value;
        }
    }

    void clear() {
        for (std::int32_t k = 0; k < nz; ++k) {
            elm[ind[k]] = 0;
        }
        nz = 0;
    }

    std::vector<double> coef_store;
    std::vector<std::int32_t> ind_store;
    std::vector<std::int32_t> elm_store;
    double* coef;
    std::int32_t* ind;
    std::int32_t* elm;
    std::int32_t nz = 0;
};

struct raw_pair {
    explicit raw_pair(std::int32_t n) : x(n), y(n) {}
    void load(const sparse_problem& from) {
        x.load(from.x);
        y.load(from.y);
    }
    raw_vector x;
    raw_vector y;
};

// The jobs, each one loop or two. They are out of line, as the library's procedures are.
void raw_combine(raw_vector& x, const raw_vector& y, double beta);
void raw_scale_and_combine(raw_vector& x, const raw_vector& y, double alpha, double beta);
void raw_sym_diff(raw_vector& x, const raw_vector& y);
void raw_mod2(raw_vector& v);
void raw_mod2_by_fmod(raw_vector& v);
void raw_drop_zeros(raw_vector& v);
bool raw_identical(const raw_vector& a, const raw_vector& b, double tol);

} // namespace zktarn::bench
