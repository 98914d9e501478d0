// Compares the time of a call in C with the same call in C++, and a call in Fortran with C.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "bindings_calls.h"
#include "support/compare.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zktarn::bench {

// The library's exported symbols, because a compiler would inline the header's procedures. In the
// mangled names `i` is a 32-bit integer on every platform.
#ifdef __APPLE__
#define ZKTARN_SYMBOL(name) __asm__("_" name)
#else
#define ZKTARN_SYMBOL(name) __asm__(name)
#endif
void exported_add_nz(vector_type::vector& v, const std::int32_t& j,
                     optional_ref<const double> value)
    ZKTARN_SYMBOL("_ZN6zktarn10vector_mod13vector_add_nzERNS_11vector_type6vectorERKi"
                  "NS_12optional_refIKdEE");
double exported_get_coef(const vector_type::vector& v, const std::int32_t& j)
    ZKTARN_SYMBOL("_ZN6zktarn10vector_mod15vector_get_coefERKNS_11vector_type6vectorERKi");
flag exported_is_elm(const vector_type::vector& v, const std::int32_t& j)
    ZKTARN_SYMBOL("_ZN6zktarn10vector_mod13vector_is_elmERKNS_11vector_type6vectorERKi");

namespace {

using vector_mod::vector;

constexpr std::int32_t capacity = 1000;

/// A vector that lists every second index in random order.
struct problem {
    vector* v = nullptr;
    vector* shorter = nullptr;
    std::vector<std::int32_t> indices;
    std::vector<double> reals;

    problem() {
        std::mt19937 draw(1);
        for (std::int32_t j = 2; j <= capacity; j += 2) {
            indices.push_back(j);
        }
        std::shuffle(indices.begin(), indices.end(), draw);
        if (vector_type::vector_alloc(v, capacity) == 0 ||
            vector_type::vector_alloc(shorter, capacity) == 0) {
            std::abort();
        }
        for (const std::int32_t j : indices) {
            vector_mod::vector_add_nz(*v, j, 1.0);
        }
        for (std::int32_t i = 0; i < 20; ++i) {
            vector_mod::vector_add_nz(*shorter, 1 + 7 * i, 1.0);
        }
        for (int i = 0; i < 500; ++i) {
            reals.push_back(i % 3 == 0 ? i : i + 0.25);
        }
    }
    problem(const problem&) = delete;
    problem& operator=(const problem&) = delete;
    ~problem() {
        vector_type::vector_free(v);
        vector_type::vector_free(shorter);
    }

    zktarn_vector* record() const { return reinterpret_cast<zktarn_vector*>(v); }
    zktarn_vector* short_record() const { return reinterpret_cast<zktarn_vector*>(shorter); }
    std::int32_t count() const { return static_cast<std::int32_t>(indices.size()); }
};

using shared = std::shared_ptr<problem>;

template <class Loop>
contender each(std::string name, const shared& p, Loop loop) {
    return doing(std::move(name), [p, loop](std::int64_t) { loop(*p); });
}

[[gnu::noinline]] double cpp_get_coef(const problem& p) {
    double sum = 0.0;
    for (const std::int32_t j : p.indices) {
        sum += exported_get_coef(*p.v, j);
    }
    return sum;
}

[[gnu::noinline]] void cpp_add_nz(const problem& p) {
    const double value = 1.5;
    for (const std::int32_t j : p.indices) {
        exported_add_nz(*p.v, j, value);
    }
}

[[gnu::noinline]] std::int64_t cpp_is_elm_exported(const problem& p) {
    std::int64_t count = 0;
    for (const std::int32_t j : p.indices) {
        count += exported_is_elm(*p.v, j);
    }
    return count;
}

[[gnu::noinline]] std::int64_t cpp_is_elm(const vector& v, const std::int32_t* indices,
                                          std::int32_t n) {
    std::int64_t count = 0;
    for (std::int32_t i = 0; i < n; ++i) {
        count += vector_mod::vector_is_elm(v, indices[i]);
    }
    return count;
}

[[gnu::noinline]] void cpp_set_coef(vector& v, const std::int32_t* indices, std::int32_t n) {
    for (std::int32_t i = 0; i < n; ++i) {
        vector_mod::vector_set_coef(v, indices[i], i);
    }
}

[[gnu::noinline]] std::int64_t cpp_get_ind(const vector& v) {
    std::int64_t sum = 0;
    for (std::int32_t k = 1; k <= vector_mod::vector_get_nz(v); ++k) {
        sum += vector_mod::vector_get_ind(v, k);
    }
    return sum;
}

[[gnu::noinline]] std::int64_t cpp_epsilon_is_int(const problem& p) {
    std::int64_t count = 0;
    for (const double value : p.reals) {
        flag is_int = 0;
        double nearest = 0.0;
        util::epsilon_is_int(value, 1e-9, is_int, nearest);
        count += is_int;
    }
    return count;
}

[[gnu::noinline]] void cpp_combine(problem& p) {
    for (int i = 0; i < 20; ++i) {
        vector_mod::vectors_combine(*p.v, *p.shorter, 1.0, i % 2 == 0 ? 1.0 : -1.0, 1e-9);
    }
}

void sort_in_cpp(std::vector<double>& keys) {
    const auto exchange = [&](std::int32_t a, std::int32_t b) -> flag {
        double& lower = keys[static_cast<std::size_t>(a - 1)];
        double& upper = keys[static_cast<std::size_t>(b - 1)];
        if (!(upper < lower)) {
            return 0;
        }
        std::swap(lower, upper);
        return 1;
    };
    sorting_mod::sort(1, static_cast<std::int32_t>(keys.size()),
                      sorting_mod::exchange_procedure(exchange));
}

/// Keys in the order in which the sort moves most of them.
std::vector<double> fresh_keys() {
    std::vector<double> keys(200);
    std::iota(keys.rbegin(), keys.rend(), 0.0);
    return keys;
}

void compare_c(const shared& p) {
    compare("c/vector_add_nz",
            {each("c", p, [](problem& q) { c_add_nz(q.record(), q.indices.data(), q.count()); }),
             each("exported", p, [](problem& q) { cpp_add_nz(q); })});
    compare("c/vector_get_coef",
            {each("c", p,
                  [](problem& q) {
                      benchmark::DoNotOptimize(c_get_coef(q.record(), q.indices.data(), q.count()));
                  }),
             each("exported", p, [](problem& q) { benchmark::DoNotOptimize(cpp_get_coef(q)); })});
    compare("c/vector_is_elm_exported", {each("c", p,
                                              [](problem& q) {
                                                  benchmark::DoNotOptimize(c_is_elm_exported(
                                                      q.record(), q.indices.data(), q.count()));
                                              }),
                                         each("exported", p, [](problem& q) {
                                             benchmark::DoNotOptimize(cpp_is_elm_exported(q));
                                         })});
    compare(
        "c/epsilon_is_int",
        {each("c", p,
              [](problem& q) { benchmark::DoNotOptimize(c_epsilon_is_int(q.reals.data(), 500)); }),
         each("exported", p, [](problem& q) { benchmark::DoNotOptimize(cpp_epsilon_is_int(q)); })});
    compare("c/vectors_combine",
            {each("c", p, [](problem& q) { c_combine(q.record(), q.short_record(), 20); }),
             each("exported", p, [](problem& q) { cpp_combine(q); })});
    compare("c/sort", {each("c", p,
                            [](problem&) {
                                std::vector<double> keys = fresh_keys();
                                c_sort(keys.data(), static_cast<std::int32_t>(keys.size()));
                                benchmark::DoNotOptimize(keys.data());
                            }),
                       each("exported", p, [](problem&) {
                           std::vector<double> keys = fresh_keys();
                           sort_in_cpp(keys);
                           benchmark::DoNotOptimize(keys.data());
                       })});
}

void compare_c_inlined(const shared& p) {
    compare("c_inlined/vector_is_elm",
            {each("c", p,
                  [](problem& q) {
                      benchmark::DoNotOptimize(c_is_elm(q.record(), q.indices.data(), q.count()));
                  }),
             each("inline", p, [](problem& q) {
                 benchmark::DoNotOptimize(cpp_is_elm(*q.v, q.indices.data(), q.count()));
             })});
    compare(
        "c_inlined/vector_set_coef",
        {each("c", p, [](problem& q) { c_set_coef(q.record(), q.indices.data(), q.count()); }),
         each("inline", p, [](problem& q) { cpp_set_coef(*q.v, q.indices.data(), q.count()); })});
    compare("c_inlined/vector_get_ind",
            {each("c", p, [](problem& q) { benchmark::DoNotOptimize(c_get_ind(q.record())); }),
             each("inline", p, [](problem& q) { benchmark::DoNotOptimize(cpp_get_ind(*q.v)); })});
}

#ifdef ZKTARN_BENCH_FORTRAN
void compare_fortran(const shared& p) {
    compare("fortran/vector_add_nz",
            {each("fortran", p,
                  [](problem& q) { fortran_add_nz(q.record(), q.indices.data(), q.count()); }),
             each("c", p, [](problem& q) { c_add_nz(q.record(), q.indices.data(), q.count()); })});
    compare("fortran/vector_get_coef",
            {each("fortran", p,
                  [](problem& q) {
                      benchmark::DoNotOptimize(
                          fortran_get_coef(q.record(), q.indices.data(), q.count()));
                  }),
             each("c", p, [](problem& q) {
                 benchmark::DoNotOptimize(c_get_coef(q.record(), q.indices.data(), q.count()));
             })});
    compare(
        "fortran/vector_is_elm",
        {each("fortran", p,
              [](problem& q) {
                  benchmark::DoNotOptimize(fortran_is_elm(q.record(), q.indices.data(), q.count()));
              }),
         each("c", p, [](problem& q) {
             benchmark::DoNotOptimize(c_is_elm_exported(q.record(), q.indices.data(), q.count()));
         })});
    compare("fortran/epsilon_is_int",
            {each("fortran", p,
                  [](problem& q) {
                      benchmark::DoNotOptimize(fortran_epsilon_is_int(q.reals.data(), 500));
                  }),
             each("c", p, [](problem& q) {
                 benchmark::DoNotOptimize(c_epsilon_is_int(q.reals.data(), 500));
             })});
    compare(
        "fortran/vectors_combine",
        {each("fortran", p, [](problem& q) { fortran_combine(q.record(), q.short_record(), 20); }),
         each("c", p, [](problem& q) { c_combine(q.record(), q.short_record(), 20); })});
    compare("fortran/sort", {each("fortran", p,
                                  [](problem&) {
                                      std::vector<double> keys = fresh_keys();
                                      fortran_sort(keys.data(),
                                                   static_cast<std::int32_t>(keys.size()));
                                      benchmark::DoNotOptimize(keys.data());
                                  }),
                             each("c", p, [](problem&) {
                                 std::vector<double> keys = fresh_keys();
                                 c_sort(keys.data(), static_cast<std::int32_t>(keys.size()));
                                 benchmark::DoNotOptimize(keys.data());
                             })});
}
#endif

} // namespace

void register_comparisons() {
    const auto p = std::make_shared<problem>();
    compare_c(p);
    compare_c_inlined(p);
#ifdef ZKTARN_BENCH_FORTRAN
    compare_fortran(p);
#endif
}

} // namespace zktarn::bench
