#include "support/raw_vector.hpp"

#include <bit>
#include <cmath>

// Each loop with a fused multiply-add is compiled portably and, on x86-64, also for machines with
// the instruction.
#ifdef __x86_64__
#define ZKTARN_FUSED [[gnu::target("fma")]]
#else
#define ZKTARN_FUSED
#endif

namespace zktarn::bench {

namespace {

#ifdef __x86_64__
const bool machine_is_fused = __builtin_cpu_supports("fma") != 0;
#else
constexpr bool machine_is_fused = true;
#endif

/// `value` when `member` is 1, 0.0 when it is 0.
[[gnu::always_inline]] inline double masked(std::int32_t member, double value) {
    const std::uint64_t mask = std::uint64_t{0} - static_cast<std::uint64_t>(member);
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(value) & mask);
}

/// Whether a loop reads the marks of listed entries, which the invariants imply.
enum class marks { trusted, read };

/// How a loop works: which marks it reads, and how many entries ahead it prefetches (0: none).
struct access {
    marks listed = marks::trusted;
    std::int32_t ahead = 0;
};

constexpr access ideal{};
constexpr access reading_marks{marks::read, 0};
constexpr access limit{marks::read, 64};
// For operations that need four cache lines for each entry, which leave the first cache sooner.
constexpr access limit_of_four_lines{marks::read, 16};

template <access how>
[[gnu::always_inline]] inline void prefetch(const std::int32_t* marks, const double* coef,
                                            std::int32_t j) {
    if (how.ahead != 0) {
        if (marks != nullptr) {
            __builtin_prefetch(marks + j, 1);
        }
        if (coef != nullptr) {
            __builtin_prefetch(coef + j, 1);
        }
    }
}

template <access how>
[[gnu::always_inline]] inline void add(raw_vector& x, const raw_vector& y, double beta) {
    double* const coef = x.coef;
    std::int32_t* const ind = x.ind;
    std::int32_t* const elm = x.elm;
    const double* const y_coef = y.coef;
    const std::int32_t* const y_ind = y.ind;
    const std::int32_t* const y_elm = y.elm;
    const std::int32_t count = y.nz;
    std::int32_t nz = x.nz;
    for (std::int32_t k = 0; k < count; ++k) {
        if (how.ahead != 0 && k + how.ahead < count) {
            const std::int32_t next = y_ind[k + how.ahead];
            prefetch<how>(elm, coef, next);
            prefetch<how>(y_elm, y_coef, next);
        }
        const std::int32_t j = y_ind[k];
        const std::int32_t member = elm[j];
        const double added = how.listed == marks::trusted || y_elm[j] != 0 ? y_coef[j] : 0.0;
        coef[j] = __builtin_fma(beta, added, masked(member, coef[j]));
        ind[nz] = j;
        nz += 1 - member;
        elm[j] = 1;
    }
    x.nz = nz;
}

template <access how>
void add_anywhere(raw_vector& x, const raw_vector& y, double beta) {
    add<how>(x, y, beta);
}

template <access how>
ZKTARN_FUSED void add_fused(raw_vector& x, const raw_vector& y, double beta) {
    add<how>(x, y, beta);
}

/// Drops the entries for which `drops(j)` is true and calls `unmark(j)` for each.
template <access how, class Drops, class Unmark>
[[gnu::always_inline]] inline void drop(raw_vector& v, const double* coef, Drops drops,
                                        Unmark unmark) {
    std::int32_t* const ind = v.ind;
    std::int32_t nz = v.nz;
    for (std::int32_t k = 0; k < nz;) {
        if (how.ahead != 0 && k + how.ahead < nz) {
            prefetch<how>(v.elm, coef, ind[k + how.ahead]);
        }
        const std::int32_t j = ind[k];
        if (drops(j)) {
            ind[k] = ind[--nz];
            unmark(j);
        } else {
            ++k;
        }
    }
    v.nz = nz;
}

constexpr auto nothing_to_unmark = [](std::int32_t) {};

template <access how>
void drop_zeros(raw_vector& v) {
    const double* const coef = v.coef;
    std::int32_t* const elm = v.elm;
    drop<how>(
        v, coef,
        [=](std::int32_t j) {
            return (how.listed == marks::read && elm[j] == 0) || coef[j] == 0.0;
        },
        [=](std::int32_t j) { elm[j] = 0; });
}

/// Calls `visit(j)` for each entry of a list.
template <access how, class Visit>
[[gnu::always_inline]] inline void walk(const raw_vector& v, Visit visit) {
    const std::int32_t* const ind = v.ind;
    const std::int32_t count = v.nz;
    for (std::int32_t k = 0; k < count; ++k) {
        if (how.ahead != 0 && k + how.ahead < count) {
            prefetch<how>(how.listed == marks::read ? v.elm : nullptr, v.coef, ind[k + how.ahead]);
        }
        visit(ind[k]);
    }
}

template <access how>
void combine(raw_vector& x, const raw_vector& y, double alpha, double beta) {
    if (alpha != 1.0) {
        double* const coef = x.coef;
        const std::int32_t* const elm = x.elm;
        walk<how>(x, [=](std::int32_t j) {
            coef[j] = alpha * (how.listed == marks::trusted || elm[j] != 0 ? coef[j] : 0.0);
        });
    }
    machine_is_fused ? add_fused<how>(x, y, beta) : add_anywhere<how>(x, y, beta);
    drop_zeros<how>(x);
}

template <access how>
void sym_diff(raw_vector& x, const raw_vector& y) {
    std::int32_t* const ind = x.ind;
    std::int32_t* const elm = x.elm;
    const std::int32_t* const y_ind = y.ind;
    const std::int32_t count = y.nz;
    std::int32_t nz = x.nz;
    std::int32_t common = 0;
    for (std::int32_t k = 0; k < count; ++k) {
        if (how.ahead != 0 && k + how.ahead < count) {
            prefetch<how>(elm, nullptr, y_ind[k + how.ahead]);
        }
        const std::int32_t j = y_ind[k];
        const std::int32_t member = elm[j];
        ind[nz] = j;
        nz += 1 - member;
        common += member;
        elm[j] = 1 - member;
    }
    x.nz = nz;
    if (common != 0) {
        drop<how>(
            x, nullptr, [=](std::int32_t j) { return elm[j] == 0; }, nothing_to_unmark);
    }
}

template <access how>
void mod2(raw_vector& v) {
    double* const coef = v.coef;
    const std::int32_t* const elm = v.elm;
    walk<how>(v, [=](std::int32_t j) {
        const double value = how.listed == marks::trusted || elm[j] != 0 ? coef[j] : 0.0;
        coef[j] = static_cast<double>(static_cast<std::int64_t>(value) & 1);
    });
    drop_zeros<how>(v);
}

template <access how>
bool identical(const raw_vector& a, const raw_vector& b, double tol) {
    if (a.nz != b.nz) {
        return false;
    }
    const std::int32_t count = a.nz;
    for (std::int32_t k = 0; k < count; ++k) {
        if (how.ahead != 0 && k + how.ahead < count) {
            prefetch<how>(a.elm, a.coef, a.ind[k + how.ahead]);
            prefetch<how>(b.elm, b.coef, a.ind[k + how.ahead]);
        }
        const std::int32_t j = a.ind[k];
        const double ours = how.listed == marks::trusted || a.elm[j] != 0 ? a.coef[j] : 0.0;
        if (b.elm[j] == 0 || std::fabs(ours - b.coef[j]) > tol) {
            return false;
        }
    }
    return true;
}

std::int32_t position_of(const raw_vector& v, std::int32_t j) {
    for (std::int32_t k = 0; k < v.nz; ++k) {
        if (v.ind[k] == j) {
            return k;
        }
    }
    return -1;
}

} // namespace

void raw_combine(raw_vector& x, const raw_vector& y, double alpha, double beta) {
    combine<ideal>(x, y, alpha, beta);
}

void marked_combine(raw_vector& x, const raw_vector& y, double alpha, double beta) {
    combine<reading_marks>(x, y, alpha, beta);
}

void limit_combine(raw_vector& x, const raw_vector& y, double alpha, double beta) {
    combine<limit>(x, y, alpha, beta);
}

void raw_sym_diff(raw_vector& x, const raw_vector& y) {
    sym_diff<ideal>(x, y);
}

void limit_sym_diff(raw_vector& x, const raw_vector& y) {
    sym_diff<limit>(x, y);
}

void raw_clear(raw_vector& v) {
    const std::int32_t* const ind = v.ind;
    std::int32_t* const elm = v.elm;
    for (std::int32_t k = 0, count = v.nz; k < count; ++k) {
        elm[ind[k]] = 0;
    }
    v.nz = 0;
}

void raw_mod2(raw_vector& v) {
    mod2<ideal>(v);
}

void limit_mod2(raw_vector& v) {
    double* const coef = v.coef;
    std::int32_t* const elm = v.elm;
    // One pass: an entry is reduced when it is tested.
    drop<limit>(
        v, coef,
        [=](std::int32_t j) {
            const double value = elm[j] != 0 ? coef[j] : 0.0;
            coef[j] = static_cast<double>(static_cast<std::int64_t>(value) & 1);
            return coef[j] == 0.0;
        },
        [=](std::int32_t j) { elm[j] = 0; });
}

void raw_mod2_by_fmod(raw_vector& v) {
    double* const coef = v.coef;
    const std::int32_t* const ind = v.ind;
    for (std::int32_t k = 0, count = v.nz; k < count; ++k) {
        coef[ind[k]] = std::fmod(std::fabs(coef[ind[k]]), 2.0);
    }
    raw_drop_zeros(v);
}

void raw_drop_zeros(raw_vector& v) {
    drop_zeros<ideal>(v);
}

void marked_drop_zeros(raw_vector& v) {
    drop_zeros<reading_marks>(v);
}

void limit_drop_zeros(raw_vector& v) {
    drop_zeros<limit>(v);
}

bool raw_identical(const raw_vector& a, const raw_vector& b, double tol) {
    return identical<ideal>(a, b, tol);
}

bool marked_identical(const raw_vector& a, const raw_vector& b, double tol) {
    return identical<reading_marks>(a, b, tol);
}

bool limit_identical(const raw_vector& a, const raw_vector& b, double tol) {
    return identical<limit_of_four_lines>(a, b, tol);
}

double raw_sum_at(const raw_vector& x, const raw_vector& y) {
    const double* const coef = x.coef;
    const std::int32_t* const elm = x.elm;
    const std::int32_t* const y_ind = y.ind;
    double sum = 0.0;
    for (std::int32_t k = 0, count = y.nz; k < count; ++k) {
        const std::int32_t j = y_ind[k];
        sum += elm[j] != 0 ? coef[j] : 0.0;
    }
    return sum;
}

void raw_store_at(raw_vector& x, const raw_vector& y) {
    double* const coef = x.coef;
    std::int32_t* const ind = x.ind;
    std::int32_t* const elm = x.elm;
    const double* const y_coef = y.coef;
    const std::int32_t* const y_ind = y.ind;
    std::int32_t nz = x.nz;
    for (std::int32_t k = 0, count = y.nz; k < count; ++k) {
        const std::int32_t j = y_ind[k];
        coef[j] = y_coef[j];
        if (elm[j] == 0) {
            ind[nz++] = j;
            elm[j] = 1;
        }
    }
    x.nz = nz;
}

void raw_combine_lists(raw_vector& x, const raw_vector& y, double beta) {
    for (std::int32_t k = 0; k < y.nz; ++k) {
        const std::int32_t j = y.ind[k];
        const bool member = position_of(x, j) >= 0;
        x.coef[j] = std::fma(beta, y.coef[j], member ? x.coef[j] : 0.0);
        if (!member) {
            x.ind[x.nz++] = j;
        }
    }
    const double* const coef = x.coef;
    drop<ideal>(
        x, coef, [=](std::int32_t j) { return coef[j] == 0.0; }, nothing_to_unmark);
}

} // namespace zktarn::bench
