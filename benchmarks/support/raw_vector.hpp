#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/sparse_problem.hpp"

/// Sparse vectors as three raw arrays and a count. The loops do the library's operations for
/// vectors that keep their invariants, without any other check.

namespace zktarn::bench {

struct raw_vector {
    explicit raw_vector(std::int32_t n)
        : coef_store(static_cast<std::size_t>(n) + 1), ind_store(static_cast<std::size_t>(n) + 1),
          elm_store(static_cast<std::size_t>(n) + 1), coef(coef_store.data()),
          ind(ind_store.data()), elm(elm_store.data()) {}

    void load(const std::vector<entry>& entries) {
        for (std::int32_t k = 0; k < nz; ++k) {
            elm[ind[k]] = 0;
        }
        nz = 0;
        for (const entry& each : entries) {
            ind[nz++] = each.index;
            elm[each.index] = 1;
            coef[each.index] = each.value;
        }
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
    void load(const sparse_problem& source) {
        x.load(source.x);
        y.load(source.y);
    }
    raw_vector x;
    raw_vector y;
};

// The jobs, out of line as the library's procedures are.
//
// `raw_` is the ideal: it does not read the marks of listed entries. `marked_` is the same loop,
// but reads them, as the library's contract requires. `limit_` is `marked_` with prefetches in
// every pass: the limit of the contract.

/// x := alpha * x + beta * y, with one fused multiply-add for each entry of y and no branch on
/// membership; then a pass that drops zeros. There is no scaling pass when alpha is 1.
void raw_combine(raw_vector& x, const raw_vector& y, double alpha, double beta);
void marked_combine(raw_vector& x, const raw_vector& y, double alpha, double beta);
void limit_combine(raw_vector& x, const raw_vector& y, double alpha, double beta);

/// Appends the indices only y has and unmarks those both have, with no branch on membership; then a
/// pass drops unmarked entries. No coefficients.
void raw_sym_diff(raw_vector& x, const raw_vector& y);
void limit_sym_diff(raw_vector& x, const raw_vector& y);

/// Unmarks every listed index and empties the list.
void raw_clear(raw_vector& v);

/// Converts each coefficient to an integer and stores its lowest bit; then a pass that drops zeros.
void raw_mod2(raw_vector& v);
void limit_mod2(raw_vector& v);

/// The same with the remainder from `std::fmod`, which needs no range.
void raw_mod2_by_fmod(raw_vector& v);

/// Drops entries that are zero; the last entry moves to the position of each.
void raw_drop_zeros(raw_vector& v);
void marked_drop_zeros(raw_vector& v);
void limit_drop_zeros(raw_vector& v);

/// Looks up each index of a among the marks of b and compares coefficients, until one differs.
bool raw_identical(const raw_vector& a, const raw_vector& b, double tol);
bool marked_identical(const raw_vector& a, const raw_vector& b, double tol);
bool limit_identical(const raw_vector& a, const raw_vector& b, double tol);

/// The sum of x's coefficients at the indices of y.
double raw_sum_at(const raw_vector& x, const raw_vector& y);

/// Stores y's coefficients in x, and lists and marks indices that x lacks.
void raw_store_at(raw_vector& x, const raw_vector& y);

/// `raw_combine` without marks: searches the list of x for each index of y, entry by entry.
void raw_combine_lists(raw_vector& x, const raw_vector& y, double beta);

} // namespace zktarn::bench
