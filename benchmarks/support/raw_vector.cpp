#include "support/raw_vector.hpp"

#include <cmath>

// The machine's own fused multiply-add, wherever the benchmark runs.
#ifdef __x86_64__
#define ZKTARN_FUSED [[gnu::target("fma")]]
#else
#define ZKTARN_FUSED
#endif

namespace zktarn::bench {

namespace {

/// Adds beta * y without a branch on membership.
ZKTARN_FUSED void add(raw_vector& x, const raw_vector& y, double beta) {
    double* const coef = x.coef;
    std::int32_t* const ind = x.ind;
    std::int32_t* const elm = x.elm;
    const double* const y_coef = y.coef;
    const std::int32_t* const y_ind = y.ind;
    std::int32_t nz = x.nz;
    for (std::int32_t k = 0; k < y.nz; ++k) {
        const std::int32_t j = y_ind[k];
        const std::int32_t member = elm[j];
        const double old = member != 0 ? coef[j] : 0.0;
        coef[j] = __builtin_fma(beta, y_coef[j], old);
        ind[nz] = j;
        nz += 1 - member;
        elm[j] = 1;
    }
    x.nz = nz;
}

} // namespace

void raw_drop_zeros(raw_vector& v) {
    const double* const coef = v.coef;
    std::int32_t* const ind = v.ind;
    std::int32_t* const elm = v.elm;
    std::int32_t nz = v.nz;
    for (std::int32_t k = 0; k < nz;) {
        const std::int32_t j = ind[k];
        if (coef[j] != 0.0) {
            ++k;
        } else {
            ind[k] = ind[--nz];
            elm[j] = 0;
        }
    }
    v.nz = nz;
}

void raw_combine(raw_vector& x, const raw_vector& y, double beta) {
    add(x, y, beta);
    raw_drop_zeros(x);
}

void raw_scale_and_combine(raw_vector& x, const raw_vector& y, double alpha, double beta) {
    for (std::int32_t k = 0; k < x.nz; ++k) {
        x.coef[x.ind[k]] *= alpha;
    }
    raw_combine(x, y, beta);
}

void raw_sym_diff(raw_vector& x, const raw_vector& y) {
    std::int32_t* const ind = x.ind;
    std::int32_t* const elm = x.elm;
    std::int32_t nz = x.nz;
    std::int32_t common = 0;
    for (std::int32_t k = 0; k < y.nz; ++k) {
        const std::int32_t j = y.ind[k];
        const std::int32_t member = elm[j];
        ind[nz] = j;
        nz += 1 - member;
        common += member;
        elm[j] = 1 - member;
    }
    if (common != 0) {
        for (std::int32_t k = 0; k < nz;) {
            if (elm[ind[k]] != 0) {
                ++k;
            } else {
                ind[k] = ind[--nz];
            }
        }
    }
    x.nz = nz;
}

void raw_mod2(raw_vector& v) {
    for (std::int32_t k = 0; k < v.nz; ++k) {
        double& value = v.coef[v.ind[k]];
        value = static_cast<double>(static_cast<std::int64_t>(value) & 1);
    }
    raw_drop_zeros(v);
}

void raw_mod2_by_fmod(raw_vector& v) {
    for (std::int32_t k = 0; k < v.nz; ++k) {
        double& value = v.coef[v.ind[k]];
        value = std::fmod(std::fabs(value), 2.0) < 0.5 ? 0.0 : 1.0;
    }
    raw_drop_zeros(v);
}

bool raw_identical(const raw_vector& a, const raw_vector& b, double tol) {
    if (a.nz != b.nz) {
        return false;
    }
    for (std::int32_t k = 0; k < a.nz; ++k) {
        const std::int32_t j = a.ind[k];
        if (b.elm[j] == 0 || std::fabs(a.coef[j] - b.coef[j]) > tol) {
            return false;
        }
    }
    return true;
}

} // namespace zktarn::bench
