#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "support/compare.hpp"
#include "support/sparse_problem.hpp"
#include "zktarn/vector/vector_mod.hpp"

#ifdef ZKTARN_BENCH_COINUTILS
#include <CoinIndexedVector.hpp>
#endif
#ifdef ZKTARN_BENCH_EIGEN
#include <Eigen/SparseCore>
#endif

/// Pairs of vectors for the jobs: the library's, and those of peers. A pair has a fixed capacity,
/// and `load` replaces its contents by the entries of a problem. A comparison leaves out a peer
/// that is not installed.

namespace zktarn::bench {

/// The library's vectors, with or without marks.
struct library_pair {
    explicit library_pair(std::int32_t n, flag no_elm = 0) {
        for (vector_type::vector** each : {&x, &y}) {
            if (vector_type::vector_alloc(*each, n, {}, {}, no_elm) == 0) {
                throw std::bad_alloc();
            }
            // Writes every page now, because the first write to a page costs time.
            std::fill_n((*each)->coef.data, n, 0.0);
            std::fill_n((*each)->ind.data, n, 0);
        }
    }
    ~library_pair() {
        vector_type::vector_free(x);
        vector_type::vector_free(y);
    }
    library_pair(const library_pair&) = delete;
    library_pair& operator=(const library_pair&) = delete;

    void load(const sparse_problem& source) {
        load(*x, source.x);
        load(*y, source.y);
    }

    vector_type::vector* x = nullptr;
    vector_type::vector* y = nullptr;

private:
    static void load(vector_type::vector& v, const std::vector<entry>& entries) {
        if (v.elm.present()) {
            vector_mod::vector_clean_index(v);
        }
        std::int32_t k = 0;
        for (const entry& each : entries) {
            k += 1;
            vector_mod::vector_set_ind(v, k, each.index);
            vector_mod::vector_set_coef(v, each.index, each.value);
            if (v.elm.present()) {
                vector_mod::vector_set_elm(v, each.index);
            }
        }
        vector_mod::vector_set_nz(v, k);
    }
};

struct library_lists : library_pair {
    explicit library_lists(std::int32_t n) : library_pair(n, 1) {}
};

/// Sorted lists of indices, and space for the result.
struct sorted_lists {
    explicit sorted_lists(std::int32_t) {}
    void load(const sparse_problem& source) {
        load(x, source.x);
        load(y, source.y);
        result.resize(x.size() + y.size());
    }
    void sym_diff() {
        const auto end =
            std::set_symmetric_difference(x.begin(), x.end(), y.begin(), y.end(), result.begin());
        size = end - result.begin();
    }

    std::vector<std::int32_t> x;
    std::vector<std::int32_t> y;
    std::vector<std::int32_t> result;
    std::ptrdiff_t size = 0;

private:
    static void load(std::vector<std::int32_t>& v, const std::vector<entry>& entries) {
        v.clear();
        for (const entry& each : entries) {
            v.push_back(each.index);
        }
    }
};

#ifdef ZKTARN_BENCH_COINUTILS
inline constexpr const char* coinutils_state = "compared with";

/// A dense array whose nonzeros are listed; an entry that is zero is not a member.
struct coin_pair {
    explicit coin_pair(std::int32_t n) {
        x.reserve(n + 1);
        y.reserve(n + 1);
    }
    void load(const sparse_problem& source) {
        load(x, source.x);
        load(y, source.y);
    }
    /// x += beta * y, then a pass that drops what is smaller than a tolerance.
    void combine(double beta) {
        const double* const values = y.denseVector();
        const int* const indices = y.getIndices();
        for (int k = 0, count = y.getNumElements(); k < count; ++k) {
            x.quickAdd(indices[k], beta * values[indices[k]]);
        }
        x.clean(1e-12);
    }

    CoinIndexedVector x;
    CoinIndexedVector y;

private:
    static void load(CoinIndexedVector& v, const std::vector<entry>& entries) {
        v.clear();
        for (const entry& each : entries) {
            v.insert(each.index, each.value);
        }
    }
};
#else
inline constexpr const char* coinutils_state = "not found when this was built";
#endif

#ifdef ZKTARN_BENCH_EIGEN
inline constexpr const char* eigen_state = "compared with";

/// Sorted indices and their values; every operation makes a new vector.
struct eigen_pair {
    using vector = Eigen::SparseVector<double>;

    explicit eigen_pair(std::int32_t n) : x(n + 1), y(n + 1), result(n + 1) {}
    void load(const sparse_problem& source) {
        load(x, source.x);
        load(y, source.y);
        result.reserve(x.nonZeros() + y.nonZeros());
    }
    /// The sum, without zeros.
    void combine(double beta) {
        result = x + beta * y;
        result.prune(0.0);
    }

    vector x;
    vector y;
    vector result;

private:
    static void load(vector& v, std::vector<entry> entries) {
        std::sort(entries.begin(), entries.end(),
                  [](const entry& a, const entry& b) { return a.index < b.index; });
        v.setZero();
        for (const entry& each : entries) {
            v.insertBack(each.index) = each.value;
        }
    }
};
#else
inline constexpr const char* eigen_state = "not found when this was built";
#endif

/// Prints the installed peers in the lines above the table.
inline void name_peers() {
    benchmark::AddCustomContext("CoinIndexedVector", coinutils_state);
    benchmark::AddCustomContext("Eigen", eigen_state);
}

/// Problems of one shape, generated when the first comparison that uses them runs.
using pool = std::shared_ptr<problem_pool>;

/// The problems of a shape and relation, shared by all comparisons of a program.
inline pool problems_of(const shape& like, relation between) {
    static std::map<std::pair<std::string, relation>, pool> all;
    pool& made = all[{like.name(), between}];
    if (made == nullptr) {
        made = std::make_shared<problem_pool>(like, between);
    }
    return made;
}

/// The first `count` pairs of a contender for a capacity, shared by all comparisons of a program.
///
/// No two contenders share pairs: the second of them would find its arrays in the cache.
template <class Pair>
std::vector<Pair*> pairs_of(const std::string& contender, std::int32_t capacity,
                            std::int64_t count) {
    static std::map<std::pair<std::string, std::int32_t>, std::vector<std::unique_ptr<Pair>>> all;
    auto& made = all[{contender, capacity}];
    std::vector<Pair*> pairs;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        if (i == made.size()) {
            made.push_back(std::make_unique<Pair>(capacity));
        }
        pairs.push_back(made[i].get());
    }
    return pairs;
}

/// A contender that does its job on pairs of its kind of vector.
///
/// Before each round the job runs once, untimed, on another problem, to bring its code into the
/// cache. Vectors larger than the cache skip this, because their jobs take much longer.
template <class Pair, class Job>
contender on(std::string name, const shape& like, const pool& problems, Job job) {
    const auto pairs = std::make_shared<std::vector<Pair*>>();
    const auto prepare = [=](std::int64_t repetitions) {
        *pairs = pairs_of<Pair>(name, like.capacity, repetitions);
        if (!like.beyond_cache()) {
            pairs->front()->load(problems->next());
            job(*pairs->front());
        }
        for (Pair* const each : *pairs) {
            each->load(problems->next());
        }
    };
    const auto run = [=](std::int64_t i) { job(*(*pairs)[static_cast<std::size_t>(i)]); };
    return doing(std::move(name), run, prepare);
}

} // namespace zktarn::bench
