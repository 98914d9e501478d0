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
#include "support/raw_sort.hpp"
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
                         [](table& t) { raw_sort_by(exchange_in, &t, 1, t.size()); })},
                most);
    }
}

} // namespace zktarn::bench
