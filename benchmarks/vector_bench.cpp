// Operations on vectors: whole vectors with marks, index sets, single elements, vectors without
// marks, and allocation.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "support/raw_vector.hpp"
#include "support/vector_pairs.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::bench {

namespace {

using vector_mod::vector;

constexpr double tolerance = 1e-9;
constexpr double beta = -1.0;

// x := alpha * x + beta * y

/// Peers are left out when alpha is not 1, because they would need a separate pass for scaling.
std::vector<contender> combining(const shape& like, const pool& problems, double alpha) {
    std::vector<contender> contenders;
    contenders.push_back(on<library_pair>("library", like, problems, [=](library_pair& p) {
        vector_mod::vectors_combine(*p.x, *p.y, alpha, beta, tolerance);
    }));
    contenders.push_back(on<raw_pair>("limit", like, problems,
                                      [=](raw_pair& p) { limit_combine(p.x, p.y, alpha, beta); }));
    contenders.push_back(on<raw_pair>("ideal", like, problems,
                                      [=](raw_pair& p) { raw_combine(p.x, p.y, alpha, beta); }));
    if (like.entries() <= 100'000) {
        contenders.push_back(on<raw_pair>("ideal_marks", like, problems, [=](raw_pair& p) {
            marked_combine(p.x, p.y, alpha, beta);
        }));
    }
    if (alpha != 1.0) {
        return contenders;
    }
#ifdef ZKTARN_BENCH_COINUTILS
    contenders.push_back(
        on<coin_pair>("Coin", like, problems, [](coin_pair& p) { p.combine(beta); }));
#endif
#ifdef ZKTARN_BENCH_EIGEN
    if (like.entries() <= 1'000'000) {
        contenders.push_back(
            on<eigen_pair>("Eigen", like, problems, [](eigen_pair& p) { p.combine(beta); }));
    }
#endif
    return contenders;
}

void compare_combinations(const shape& like, double alpha) {
    const std::string name = alpha == 1.0 ? "combine/" : "scale_and_combine/";
    compare(name + like.name(), combining(like, problems_of(like, relation::overlapping), alpha),
            like.most_repetitions());
}

void compare_combinations() {
    // Full vectors of 10^7 entries take seconds in each round, so only for alpha 1.
    for (const shape& like : all_shapes(listing::shuffled, 10'000'000)) {
        compare_combinations(like, 1.0);
    }
    for (const shape& like : all_shapes(listing::shuffled)) {
        compare_combinations(like, 3.0);
    }
    for (const listing order : {listing::shuffled, listing::sorted}) {
        compare_combinations(trained_shape(order), 1.0);
    }
}

// The inline procedures on one element, in a caller's loop

[[gnu::noinline]] double sum_at(const vector& x, const vector& y) {
    double sum = 0.0;
    for (std::int32_t k = 1, count = vector_mod::vector_get_nz(y); k <= count; ++k) {
        sum += vector_mod::vector_get_coef(x, vector_mod::vector_get_ind(y, k));
    }
    return sum;
}

[[gnu::noinline]] void store_at(vector& x, const vector& y) {
    for (std::int32_t k = 1, count = vector_mod::vector_get_nz(y); k <= count; ++k) {
        const std::int32_t j = vector_mod::vector_get_ind(y, k);
        vector_mod::vector_add_nz(x, j, y.coef(j));
    }
}

std::vector<contender> getting(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) { benchmark::DoNotOptimize(sum_at(*p.x, *p.y)); }),
            on<raw_pair>("raw", like, problems,
                         [](raw_pair& p) { benchmark::DoNotOptimize(raw_sum_at(p.x, p.y)); })};
}

std::vector<contender> adding(const shape& like, const pool& problems) {
    return {
        on<library_pair>("library", like, problems, [](library_pair& p) { store_at(*p.x, *p.y); }),
        on<raw_pair>("raw", like, problems, [](raw_pair& p) { raw_store_at(p.x, p.y); })};
}

void compare_loops_over_elements() {
    for (const shape& like : all_shapes(listing::shuffled)) {
        const pool problems = problems_of(like, relation::overlapping);
        compare("get_coef_loop/" + like.name(), getting(like, problems), like.most_repetitions());
        compare("add_nz_loop/" + like.name(), adding(like, problems), like.most_repetitions());
    }
}

// Vectors without marks, where membership is a search of the list

std::vector<contender> combining_lists(const shape& like, const pool& problems) {
    return {on<library_lists>("library", like, problems,
                              [](library_lists& p) {
                                  vector_mod::vectors_combine(*p.x, *p.y, 1.0, beta, tolerance);
                              }),
            on<raw_pair>("scalar_search", like, problems,
                         [](raw_pair& p) { raw_combine_lists(p.x, p.y, beta); })};
}

void compare_combinations_of_lists() {
    for (const listing order : {listing::shuffled, listing::sorted}) {
        for (const bool trained : {false, true}) {
            const shape like{100'000, 10, order, trained};
            compare("list_combine/" + like.name(),
                    combining_lists(like, problems_of(like, relation::overlapping)),
                    like.most_repetitions());
        }
    }
}

// Operations that read every listed coefficient

std::vector<contender> reducing(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) { vector_mod::vector_mod2(*p.x, tolerance); }),
            on<raw_pair>("limit", like, problems, [](raw_pair& p) { limit_mod2(p.x); }),
            on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_mod2(p.x); }),
            on<raw_pair>("fmod", like, problems, [](raw_pair& p) { raw_mod2_by_fmod(p.x); })};
}

std::vector<contender> dropping_zeros(const shape& like, const pool& problems) {
    return {
        on<library_pair>("library", like, problems,
                         [](library_pair& p) { vector_mod::vector_rem_zeros(*p.x); }),
        on<raw_pair>("limit", like, problems, [](raw_pair& p) { limit_drop_zeros(p.x); }),
        on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_drop_zeros(p.x); }),
        on<raw_pair>("ideal_marks", like, problems, [](raw_pair& p) { marked_drop_zeros(p.x); })};
}

/// Identical vectors, the slowest case of the comparison.
std::vector<contender> comparing(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) {
                                 benchmark::DoNotOptimize(
                                     vector_mod::vectors_are_identical(*p.x, *p.y, tolerance));
                             }),
            on<raw_pair>("limit", like, problems,
                         [](raw_pair& p) {
                             benchmark::DoNotOptimize(limit_identical(p.x, p.y, tolerance));
                         }),
            on<raw_pair>(
                "ideal", like, problems,
                [](raw_pair& p) { benchmark::DoNotOptimize(raw_identical(p.x, p.y, tolerance)); }),
            on<raw_pair>("ideal_marks", like, problems, [](raw_pair& p) {
                benchmark::DoNotOptimize(marked_identical(p.x, p.y, tolerance));
            })};
}

void compare_passes_over_coefficients() {
    for (const shape& like : all_shapes(listing::shuffled)) {
        compare("mod2/" + like.name(), reducing(like, problems_of(like, relation::overlapping)),
                like.most_repetitions());
        compare("rem_zeros/" + like.name(),
                dropping_zeros(like, problems_of(like, relation::with_zeros)),
                like.most_repetitions());
        compare("identical/" + like.name(), comparing(like, problems_of(like, relation::twins)),
                like.most_repetitions());
    }
}

// Operations on index sets, which touch no coefficient

std::vector<contender> differing(const shape& like, const pool& problems) {
    std::vector<contender> contenders;
    contenders.push_back(on<library_pair>("library", like, problems, [](library_pair& p) {
        vector_mod::vectors_calc_sym_diff(*p.x, *p.y);
    }));
    contenders.push_back(
        on<raw_pair>("limit", like, problems, [](raw_pair& p) { limit_sym_diff(p.x, p.y); }));
    contenders.push_back(
        on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_sym_diff(p.x, p.y); }));
    if (like.order == listing::sorted) {
        contenders.push_back(
            on<sorted_lists>("std", like, problems, [](sorted_lists& p) { p.sym_diff(); }));
    }
    return contenders;
}

std::vector<contender> clearing(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) { vector_mod::vector_clear(*p.x); }),
            on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_clear(p.x); })};
}

void compare_index_sets() {
    for (const listing order : {listing::shuffled, listing::sorted}) {
        for (const shape& like : all_shapes(order)) {
            compare("sym_diff/" + like.name(),
                    differing(like, problems_of(like, relation::overlapping)),
                    like.most_repetitions());
        }
    }
    for (const shape& like : all_shapes(listing::shuffled)) {
        compare("clear/" + like.name(), clearing(like, problems_of(like, relation::overlapping)),
                like.most_repetitions());
    }
}

// Allocation

/// Compares a vector with three blocks of the host, the third of them cleared.
void compare_vector_with_blocks(std::int32_t n) {
    const auto library = [n](std::int64_t) {
        vector* vec = nullptr;
        benchmark::DoNotOptimize(vector_type::vector_alloc(vec, n));
        benchmark::DoNotOptimize(vec);
        vector_type::vector_free(vec);
    };
    const auto host = [n](std::int64_t) {
        void* coef = host::qvMallocExOptim(std::int64_t{n} * 8);
        void* ind = host::qvMallocExOptim(std::int64_t{n} * 4);
        void* elm = host::qvMallocExOptim(std::int64_t{n} * 4);
        std::memset(elm, 0, static_cast<std::size_t>(n) * 4);
        benchmark::DoNotOptimize(coef);
        benchmark::DoNotOptimize(ind);
        benchmark::DoNotOptimize(elm);
        benchmark::ClobberMemory();
        host::qvFreeExOptim(coef);
        host::qvFreeExOptim(ind);
        host::qvFreeExOptim(elm);
    };
    compare("vector_alloc_free/" + std::to_string(n),
            {doing("library", library), doing("host", host)});
}

void compare_allocations() {
    for (const std::int32_t n : {10, 100, 1000, 10000, 100000, 1000000}) {
        compare_vector_with_blocks(n);
    }
}

} // namespace

void register_comparisons() {
    name_peers();
    compare_combinations();
    compare_loops_over_elements();
    compare_combinations_of_lists();
    compare_passes_over_coefficients();
    compare_index_sets();
    compare_allocations();
}

} // namespace zktarn::bench
