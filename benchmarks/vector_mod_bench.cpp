#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/compare.hpp"
#include "support/raw_vector.hpp"
#include "support/sparse_problem.hpp"
#include "zktarn/vector/vector_mod.hpp"

#ifdef ZKTARN_BENCH_COINUTILS
#include <CoinIndexedVector.hpp>
#endif
#ifdef ZKTARN_BENCH_EIGEN
#include <Eigen/SparseCore>
#endif

namespace zktarn::bench {

namespace {

using vector_mod::vector;

constexpr double tolerance = 1e-9;

struct library_pair {
    explicit library_pair(std::int32_t n) {
        vector_type::vector_alloc(x, n);
        vector_type::vector_alloc(y, n);
        // Pages that were never written would be taken from the system while the clock runs.
        for (vector* each : {x, y}) {
            std::fill_n(each->coef.data, n, 0.0);
            std::fill_n(each->ind.data, n, 0);
        }
    }
    ~library_pair() {
        vector_type::vector_free(x);
        vector_type::vector_free(y);
    }
    library_pair(const library_pair&) = delete;
    library_pair& operator=(const library_pair&) = delete;

    static void load(vector& v, const std::vector<entry>& entries) {
        vector_mod::vector_clear(v);
        for (const entry& each : entries) {
            vector_mod::vector_add_nz(v, each.index, each.value);
        }
    }
    void load(const sparse_problem& from) {
        load(*x, from.x);
        load(*y, from.y);
    }

    vector* x = nullptr;
    vector* y = nullptr;
};

#ifdef ZKTARN_BENCH_COINUTILS
struct coin_pair {
    explicit coin_pair(std::int32_t n) {
        x.reserve(n + 1);
        y.reserve(n + 1);
    }
    static void load(CoinIndexedVector& v, const std::vector<entry>& entries) {
        v.clear();
        for (const entry& each : entries) {
            v.insert(each.index, each.value);
        }
    }
    void load(const sparse_problem& from) {
        load(x, from.x);
        load(y, from.y);
    }
    CoinIndexedVector x;
    CoinIndexedVector y;
};

void coin_combine(coin_pair& on, double beta) {
    const double* const values = on.y.denseVector();
    const int* const indices = on.y.getIndices();
    for (int k = 0, count = on.y.getNumElements(); k < count; ++k) {
        on.x.quickAdd(indices[k], beta * values[indices[k]]);
    }
    on.x.clean(1e-12);
}
#endif

#ifdef ZKTARN_BENCH_EIGEN
struct eigen_pair {
    explicit eigen_pair(std::int32_t n) : x(n + 1), y(n + 1) {}
    static void load(Eigen::SparseVector<double>& v, std::vector<entry> entries) {
        std::sort(entries.begin(), entries.end(),
                  [](const entry& a, const entry& b) { return a.index < b.index; });
        v.setZero();
        for (const entry& each : entries) {
            v.insertBack(each.index) = each.value;
        }
    }
    void load(const sparse_problem& from) {
        load(x, from.x);
        load(y, from.y);
    }
    Eigen::SparseVector<double> x;
    Eigen::SparseVector<double> y;
};
#endif

struct index_pair {
    explicit index_pair(std::int32_t) {}
    static void load(std::vector<std::int32_t>& v, const std::vector<entry>& entries) {
        v.clear();
        for (const entry& each : entries) {
            v.push_back(each.index);
        }
        std::sort(v.begin(), v.end());
    }
    void load(const sparse_problem& from) {
        load(x, from.x);
        load(y, from.y);
        result.clear();
        result.reserve(x.size() + y.size());
    }
    std::vector<std::int32_t> x;
    std::vector<std::int32_t> y;
    std::vector<std::int32_t> result;
};

using pool = std::shared_ptr<problem_pool>;

/// A contender whose job works on pairs of its own kind, loaded anew before each round.
template <class Pair, class Job>
contender on(const char* name, const shape& like, const pool& problems, Job job) {
    const std::int32_t n = like.capacity;
    return doing(
        name, [n, job](std::int64_t i) { job(instance<Pair>(n, i)); },
        [n, problems](std::int64_t repetitions) {
            for (std::int64_t i = 0; i < repetitions; ++i) {
                instance<Pair>(n, i).load(problems->next());
            }
        });
}

void compare_combinations(const shape& like, const pool& problems) {
    std::vector<contender> contenders = {
        on<library_pair>(
            "library", like, problems,
            [](library_pair& p) { vector_mod::vectors_combine(*p.x, *p.y, 1.0, -1.0, tolerance); }),
        on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_combine(p.x, p.y, -1.0); })};
#ifdef ZKTARN_BENCH_COINUTILS
    contenders.push_back(on<coin_pair>("CoinIndexedVector", like, problems,
                                       [](coin_pair& p) { coin_combine(p, -1.0); }));
#endif
#ifdef ZKTARN_BENCH_EIGEN
    contenders.push_back(on<eigen_pair>("Eigen", like, problems, [](eigen_pair& p) {
        p.x = Eigen::SparseVector<double>(p.x - p.y).pruned();
    }));
#endif
    compare("combine/" + like.name(), std::move(contenders), like.most_repetitions());
    compare("scale_and_combine/" + like.name(),
            {on<library_pair>("library", like, problems,
                              [](library_pair& p) {
                                  vector_mod::vectors_combine(*p.x, *p.y, 3.0, -1.0, tolerance);
                              }),
             on<raw_pair>("ideal", like, problems,
                          [](raw_pair& p) { raw_scale_and_combine(p.x, p.y, 3.0, -1.0); })},
            like.most_repetitions());
}

void compare_supports(const shape& like, const pool& problems) {
    compare(
        "sym_diff/" + like.name(),
        {on<library_pair>("library", like, problems,
                          [](library_pair& p) { vector_mod::vectors_calc_sym_diff(*p.x, *p.y); }),
         on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_sym_diff(p.x, p.y); }),
         on<index_pair>("std", like, problems,
                        [](index_pair& p) {
                            std::set_symmetric_difference(p.x.begin(), p.x.end(), p.y.begin(),
                                                          p.y.end(), std::back_inserter(p.result));
                        })},
        like.most_repetitions());
    compare("clear/" + like.name(),
            {on<library_pair>("library", like, problems,
                              [](library_pair& p) { vector_mod::vector_clear(*p.x); }),
             on<raw_pair>("ideal", like, problems, [](raw_pair& p) { p.x.clear(); })},
            like.most_repetitions());
}

void compare_reductions(const shape& like, const pool& problems) {
    compare("mod2/" + like.name(),
            {on<library_pair>("library", like, problems,
                              [](library_pair& p) { vector_mod::vector_mod2(*p.x, tolerance); }),
             on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_mod2(p.x); }),
             on<raw_pair>("fmod", like, problems, [](raw_pair& p) { raw_mod2_by_fmod(p.x); })},
            like.most_repetitions());
    compare("rem_zeros/" + like.name(),
            {on<library_pair>("library", like, problems,
                              [](library_pair& p) { vector_mod::vector_rem_zeros(*p.x); }),
             on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_drop_zeros(p.x); })},
            like.most_repetitions());
    // A vector against itself: the answer is the one that takes longest to find.
    compare("identical/" + like.name(),
            {on<library_pair>("library", like, problems,
                              [](library_pair& p) {
                                  benchmark::DoNotOptimize(
                                      vector_mod::vectors_are_identical(*p.x, *p.x, tolerance));
                              }),
             on<raw_pair>("ideal", like, problems,
                          [](raw_pair& p) {
                              benchmark::DoNotOptimize(raw_identical(p.x, p.x, tolerance));
                          })},
            like.most_repetitions());
}

void compare_all(const shape& like) {
    const pool problems = std::make_shared<problem_pool>(like);
    compare_combinations(like, problems);
    compare_supports(like, problems);
    compare_reductions(like, problems);
}

} // namespace

void register_comparisons() {
    for (const std::int32_t n : {1'000, 100'000}) {
        for (const std::int32_t percent : {1, 10}) {
            for (const listing order : {listing::shuffled, listing::sorted}) {
                compare_all({n, percent, order, false});
                compare_all({n, percent, order, true});
            }
        }
    }
    compare_all({10'000'000, 1, listing::shuffled, false});
    compare_all({10'000'000, 1, listing::sorted, false});
}

} // namespace zktarn::bench
