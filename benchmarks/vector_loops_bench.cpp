// What a caller's own loop over elements costs, and vectors without marks.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "support/compare.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace zktarn::bench {

namespace {

using vector_mod::vector;

constexpr std::int32_t entries = 1000;
constexpr std::int32_t capacity = 10'000;

struct vectors {
    explicit vectors(flag no_elm) {
        vector_type::vector_alloc(x, capacity, {}, {}, no_elm);
        vector_type::vector_alloc(y, capacity, {}, {}, no_elm);
        std::fill_n(x->coef.data, capacity, 1.0);
        std::fill_n(y->coef.data, capacity, 1.0);
    }
    ~vectors() {
        vector_type::vector_free(x);
        vector_type::vector_free(y);
    }
    vectors(const vectors&) = delete;
    vectors& operator=(const vectors&) = delete;

    vector* x = nullptr;
    vector* y = nullptr;
};

/// Distinct indices, other ones each time.
std::vector<std::int32_t> draw(std::mt19937_64& generator) {
    static std::vector<std::int32_t> all = [] {
        std::vector<std::int32_t> indices(capacity);
        std::iota(indices.begin(), indices.end(), 1);
        return indices;
    }();
    for (std::size_t k = 0; k < entries; ++k) {
        std::swap(all[k], all[k + generator() % (all.size() - k)]);
    }
    return {all.begin(), all.begin() + entries};
}

/// Two lists of which half overlaps.
void list(const vectors& on, std::mt19937_64& generator) {
    const std::vector<std::int32_t> first = draw(generator);
    std::vector<std::int32_t> second = draw(generator);
    std::copy_n(first.begin(), entries / 2, second.begin());
    std::sort(second.begin(), second.end());
    second.erase(std::unique(second.begin(), second.end()), second.end());
    std::shuffle(second.begin(), second.end(), generator);
    std::copy(first.begin(), first.end(), on.x->ind.data);
    std::copy(second.begin(), second.end(), on.y->ind.data);
    on.x->nz = entries;
    on.y->nz = static_cast<std::int32_t>(second.size());
}

/// The linear search as one writes it.
[[gnu::noinline]] std::int32_t search(const vector& v, std::int32_t j) {
    for (std::int32_t k = 0; k < v.nz; ++k) {
        if (v.ind.data[k] == j) {
            return k + 1;
        }
    }
    return 0;
}

void combine_by_search(const vectors& on) {
    vector& x = *on.x;
    const vector& y = *on.y;
    for (std::int32_t k = 0; k < y.nz; ++k) {
        const std::int32_t j = y.ind.data[k];
        const bool member = search(x, j) != 0;
        x.coef.data[j - 1] = std::fma(0.5, y.coef.data[j - 1], member ? x.coef.data[j - 1] : 0.0);
        if (!member) {
            x.ind.data[x.nz++] = j;
        }
    }
    vector_mod::vector_rem_zeros(x);
}

void compare_lists() {
    const auto on = std::make_shared<vectors>(1);
    const auto generator = std::make_shared<std::mt19937_64>(1);
    const auto prepare = [on, generator](std::int64_t) { list(*on, *generator); };
    compare(
        "list_combine/1000",
        {doing(
             "library",
             [on](std::int64_t) { vector_mod::vectors_combine(*on->x, *on->y, 1.0, 0.5, 1e-9); },
             prepare),
         doing(
             "scalar_search", [on](std::int64_t) { combine_by_search(*on); }, prepare)},
        1);
}

void compare_loops() {
    const auto on = std::make_shared<vectors>(0);
    const auto generator = std::make_shared<std::mt19937_64>(2);
    const auto indices = std::make_shared<std::vector<std::int32_t>>();
    // Half of the indices are members already.
    const auto prepare = [=](std::int64_t) {
        *indices = draw(*generator);
        vector_mod::vector_clear(*on->x);
        for (std::size_t k = 0; k < indices->size(); k += 2) {
            vector_mod::vector_add_nz(*on->x, (*indices)[k], 1.0);
        }
        std::shuffle(indices->begin(), indices->end(), *generator);
    };
    compare("get_coef_loop/1000",
            {doing(
                 "library",
                 [=](std::int64_t) {
                     double sum = 0.0;
                     for (const std::int32_t j : *indices) {
                         sum += vector_mod::vector_get_coef(*on->x, j);
                     }
                     benchmark::DoNotOptimize(sum);
                 },
                 prepare),
             doing(
                 "raw",
                 [=](std::int64_t) {
                     const double* const coef = on->x->coef.data;
                     const std::int32_t* const elm = on->x->elm.data;
                     double sum = 0.0;
                     for (const std::int32_t j : *indices) {
                         sum += elm[j - 1] >= 1 ? coef[j - 1] : 0.0;
                     }
                     benchmark::DoNotOptimize(sum);
                 },
                 prepare)},
            1);
    compare("add_nz_loop/1000",
            {doing(
                 "library",
                 [=](std::int64_t) {
                     for (const std::int32_t j : *indices) {
                         vector_mod::vector_add_nz(*on->x, j, 2.0);
                     }
                 },
                 prepare),
             doing(
                 "raw",
                 [=](std::int64_t) {
                     double* const coef = on->x->coef.data;
                     std::int32_t* const elm = on->x->elm.data;
                     std::int32_t* const ind = on->x->ind.data;
                     std::int32_t nz = on->x->nz;
                     for (const std::int32_t j : *indices) {
                         coef[j - 1] = 2.0;
                         if (elm[j - 1] < 1) {
                             ind[nz++] = j;
                             elm[j - 1] = 1;
                         }
                     }
                     on->x->nz = nz;
                 },
                 prepare)},
            1);
}

} // namespace

void register_comparisons() {
    compare_lists();
    compare_loops();
}

} // namespace zktarn::bench
