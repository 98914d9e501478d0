#include "support/raw_vector.hpp"

#include <bit>
#include <cmath>

// Each loop with a fused multiply-add exists for every machine and, on x86-64, for machines that
// have the instruction.
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
[[gnu::always_inline]] inline double kept_if(std::int32_t member, double value) {
    const std::uint64_t mask = std::uint64_t{0} - static_cast<std::uint64_t>(member);
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(value) & mask);
}

/// Whether a loop looks at marks whose value the invariants settle: those of listed entries.
enum class marks { trusted, read };

/// @param ahead  how many entries ahead to prefetch; 0 for no prefetch.
template <std::int32_t ahead, marks listed>
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
        if (ahead != 0 && k + ahead < count) {
            const std::int32_t next = y_ind[k + ahead];
            __builtin_prefetch(elm + next, 1);
            __builtin_prefetch(coef + next, 1);
            __builtin_prefetch(y_coef + next);
        }
        const std::int32_t j = y_ind[k];
        const std::int32_t member = elm[j];
        const double added = listed == marks::trusted || y_elm[j] != 0 ? y_coef[j] : 0.0;
        coef[j] = __builtin_fma(beta, added, kept_if(member, coef[j]));
        ind[nz] = j;
        nz += 1 - member;
        elm[j] = 1;
    }
    x.nz = nz;
}

template <std::int32_t ahead, marks listed>
void add_anywhere(raw_vector& x, const raw_vector& y, double beta) {
    add<ahead, listed>(x, y, beta);
}

template <std::int32_t ahead, marks listed>
ZKTARN_FUSED void add_fused(raw_vector& x, const raw_vector& y, double beta) {
    add<ahead, listed>(x, y, beta);
}

std::int32_t position_of(const raw_vector& v, std::int32_t j) {
    for (std::int32_t k = 0; k < v.nz; ++k) {
        if (v.ind[k] == j) {
            return k;
        }
    }
    return -1;
}

/// Drops the entries that `dead` picks and tells `unmark` of each.
template <class Dead, class Unmark>
[[gnu::always_inline]] inline void drop(raw_vector& v, Dead dead, Unmark unmark) {
    std::int32_t* const ind = v.ind;
    std::int32_t nz = v.nz;
    for (std::int32_t k = 0; k < nz;) {
        const std::int32_t j = ind[k];
        if (dead(j)) {
            ind[k] = ind[--nz];
            unmark(j);
        } else {
            ++k;
        }
    }
    v.nz = nz;
}

constexpr auto unmarked_already = [](std::int32_t) {};

template <marks listed>
void drop_zeros(raw_vector& v) {
    const double* const coef = v.coef;
    std::int32_t* const elm = v.elm;
    drop(
        v, [=](std::int32_t j) { return (listed == marks::read && elm[j] == 0) || coef[j] == 0.0; },
        [=](std::int32_t j) { elm[j] = 0; });
}

template <std::int32_t ahead, marks listed>
void combine(raw_vector& x, const raw_vector& y, double beta) {
    machine_is_fused ? add_fused<ahead, listed>(x, y, beta)
                     : add_anywhere<ahead, listed>(x, y, beta);
    drop_zeros<listed>(x);
}

template <marks listed>
bool identical(const raw_vector& a, const raw_vector& b, double tol) {
    if (a.nz != b.nz) {
        return false;
    }
    for (std::int32_t k = 0; k < a.nz; ++k) {
        const std::int32_t j = a.ind[k];
        const double ours = listed == marks::trusted || a.elm[j] != 0 ? a.coef[j] : 0.0;
        if (b.elm[j] == 0 || std::fabs(ours - b.coef[j]) > tol) {
            return false;
        }
    }
    return true;
}

} // namespace

void raw_drop_zeros(raw_vector& v) {
    drop_zeros<marks::trusted>(v);
}

void raw_drop_zeros_reading_marks(raw_vector& v) {
    drop_zeros<marks::read>(v);
}

void raw_combine(raw_vector& x, const raw_vector& y, double beta) {
    combine<0, marks::trusted>(x, y, beta);
}

void raw_combine_prefetching(raw_vector& x, const raw_vector& y, double beta) {
    combine<16, marks::trusted>(x, y, beta);
}

void raw_combine_reading_marks(raw_vector& x, const raw_vector& y, double beta) {
    combine<0, marks::read>(x, y, beta);
}

void raw_scale_and_combine(raw_vector& x, const raw_vector& y, double alpha, double beta) {
    double* const coef = x.coef;
    const std::int32_t* const ind = x.ind;
    for (std::int32_t k = 0, count = x.nz; k < count; ++k) {
        coef[ind[k]] *= alpha;
    }
    raw_combine(x, y, beta);
}

void raw_sym_diff(raw_vector& x, const raw_vector& y) {
    std::int32_t* const ind = x.ind;
    std::int32_t* const elm = x.elm;
    const std::int32_t* const y_ind = y.ind;
    std::int32_t nz = x.nz;
    std::int32_t common = 0;
    for (std::int32_t k = 0, count = y.nz; k < count; ++k) {
        const std::int32_t j = y_ind[k];
        const std::int32_t member = elm[j];
        ind[nz] = j;
        nz += 1 - member;
        common += member;
        elm[j] = 1 - member;
    }
    x.nz = nz;
    if (common != 0) {
        drop(
            x, [=](std::int32_t j) { return elm[j] == 0; }, unmarked_already);
    }
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
    double* const coef = v.coef;
    const std::int32_t* const ind = v.ind;
    for (std::int32_t k = 0, count = v.nz; k < count; ++k) {
        const auto integer = static_cast<std::int64_t>(coef[ind[k]]);
        coef[ind[k]] = static_cast<double>(integer & 1);
    }
    raw_drop_zeros(v);
}

void raw_mod2_by_fmod(raw_vector& v) {
    double* const coef = v.coef;
    const std::int32_t* const ind = v.ind;
    for (std::int32_t k = 0, count = v.nz; k < count; ++k) {
        coef[ind[k]] = std::fmod(std::fabs(coef[ind[k]]), 2.0);
    }
    raw_drop_zeros(v);
}

bool raw_identical(const raw_vector& a, const raw_vector& b, double tol) {
    return identical<marks::trusted>(a, b, tol);
}

bool raw_identical_reading_marks(const raw_vector& a, const raw_vector& b, double tol) {
    return identical<marks::read>(a, b, tol);
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
    drop(
        x, [=](std::int32_t j) { return coef[j] == 0.0; }, unmarked_already);
}

} // namespace zktarn::bench
