// Sorts keys with a companion array, compared with a handwritten Shell sort of the same gaps.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/compare.hpp"
#include "zktarn/sorting/sorting_mod.hpp"

namespace zktarn::bench {

namespace {

/// Keys and a companion array; positions start at 1.
struct table {
    std::vector<double> keys;
    std::vector<std::int32_t> companions;

    std::int32_t size() const { return static_cast<std::int32_t>(keys.size()); }

    /// The exchange procedure.
    bool operator()(std::int32_t a, std::int32_t b) {
        const auto lower = static_cast<std::size_t>(a - 1);
        const auto upper = static_cast<std::size_t>(b - 1);
        if (!(keys[lower] > keys[upper])) {
            return false;
        }
        std::swap(keys[lower], keys[upper]);
        std::swap(companions[lower], companions[upper]);
        return true;
    }
};

/// Tables of one size, shuffled again before each round.
class tables {
public:
    explicit tables(std::int32_t n) : n_(n) {}

    void prepare(std::int64_t count) {
        all_.resize(static_cast<std::size_t>(count));
        for (table& each : all_) {
            each.keys.resize(static_cast<std::size_t>(n_));
            each.companions.resize(static_cast<std::size_t>(n_));
            std::generate(each.keys.begin(), each.keys.end(),
                          [this] { return static_cast<double>(engine_() >> 11); });
            std::iota(each.companions.begin(), each.companions.end(), 1);
        }
    }
    table& operator[](std::int64_t i) { return all_[static_cast<std::size_t>(i)]; }

private:
    std::int32_t n_;
    std::vector<table> all_;
    std::mt19937_64 engine_{20261121};
};

// Shell sorts for one kind of data, as the limit of a general sort. They are out of line, as the
// library's exported procedure is.

/// Sorts keys in ascending order, and moves each companion with its key.
[[gnu::noinline]] void raw_sort(std::vector<double>& key_store,
                                std::vector<std::int32_t>& companion_store) {
    double* const keys = key_store.data();
    std::int32_t* const companions = companion_store.data();
    const auto n = static_cast<std::int32_t>(key_store.size());
    std::int32_t gap = 1;
    while (3 * gap + 1 < n) {
        gap = 3 * gap + 1;
    }
    for (; gap >= 1; gap /= 3) {
        for (std::int32_t end = gap; end < n; ++end) {
            for (std::int32_t a = end - gap; a >= 0 && keys[a] > keys[a + gap]; a -= gap) {
                std::swap(keys[a], keys[a + gap]);
                std::swap(companions[a], companions[a + gap]);
            }
        }
    }
}

/// Sorts the positions first..last by a procedure behind a pointer.
[[gnu::noinline]] void raw_sort_by(std::int64_t (*exchange)(void*, std::int32_t, std::int32_t),
                                   void* context, std::int32_t first, std::int32_t last) {
    const std::int32_t n = last - first + 1;
    std::int32_t gap = 1;
    while (3 * gap + 1 < n) {
        gap = 3 * gap + 1;
    }
    for (; gap >= 1; gap /= 3) {
        for (std::int32_t end = first + gap; end <= last; ++end) {
            for (std::int32_t a = end - gap; a >= first; a -= gap) {
                if (exchange(context, a, a + gap) == 0) {
                    break;
                }
            }
        }
    }
}

template <class Job>
contender sorting(std::string name, const std::shared_ptr<tables>& all, Job job) {
    return doing(
        std::move(name), [=](std::int64_t i) { job((*all)[i]); },
        [=](std::int64_t count) { all->prepare(count); });
}

/// The exchange procedure behind a function pointer.
std::int64_t exchange_in(void* context, std::int32_t a, std::int32_t b) {
    return (*static_cast<table*>(context))(a, b) ? 1 : 0;
}

} // namespace

void register_comparisons() {
    for (const std::int32_t n : {1'000, 100'000, 1'000'000}) {
        const auto all = std::make_shared<tables>(n);
        const std::int64_t most = std::max<std::int64_t>(1, 20'000 / n);
        compare("sort_inline/" + std::to_string(n),
                {sorting("library", all, [](table& t) { sorting_mod::sort(1, t.size(), t); }),
                 sorting("by_hand", all, [](table& t) { raw_sort(t.keys, t.companions); })},
                most);
        compare("sort_exported/" + std::to_string(n),
                {sorting("library", all,
                         [](table& t) {
                             sorting_mod::sort(1, t.size(), sorting_mod::exchange_procedure(t));
                         }),
                 sorting("by_pointer", all,
                         [](table& t) {
                             auto* exchange = &exchange_in;
                             // The compiler must not see which procedure it is.
                             benchmark::DoNotOptimize(exchange);
                             raw_sort_by(exchange, &t, 1, t.size());
                         })},
                most);
    }
}

} // namespace zktarn::bench
