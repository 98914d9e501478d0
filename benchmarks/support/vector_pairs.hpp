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

/// Pairs of vectors for the jobs. A pair has a fixed capacity, and `load` replaces its contents by
/// the entries of a problem.

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

/// Problems for the comparisons of one shape, generated when the first of them runs.
using pool = std::shared_ptr<problem_pool>;

inline pool make_pool(const shape& like, relation between) {
    return std::make_shared<problem_pool>(like, between);
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
