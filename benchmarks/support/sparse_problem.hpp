#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

/// Pairs of sparse vectors to work on, fresh for every repetition.
///
/// One input again and again trains the branch predictor and flatters code with branches by a
/// factor of two, so problems come from a pool that is too large to be learnt; the trained figure
/// is taken from a pool of one.

namespace zktarn::bench {

struct entry {
    std::int32_t index;
    double value;
};

/// The entries of x and y. Half of y's indices are x's, and one entry in twenty cancels.
struct sparse_problem {
    std::vector<entry> x;
    std::vector<entry> y;
};

enum class listing { shuffled, sorted };

struct shape {
    std::int32_t capacity;
    std::int32_t percent;
    listing order;
    bool trained;

    std::string name() const {
        return std::to_string(capacity) + "/" + std::to_string(percent) + "%/" +
               (order == listing::sorted ? "sorted" : "shuffled") + (trained ? "/trained" : "");
    }
    /// How many problems are held at a time: as many as fit a few megabytes.
    std::int64_t most_repetitions() const {
        return std::clamp(std::int64_t{100'000} / capacity, std::int64_t{1}, std::int64_t{64});
    }
};

class problem_pool {
public:
    explicit problem_pool(const shape& like) {
        const std::size_t size = like.trained ? 1 : like.capacity > 1'000'000 ? 4 : 199;
        for (std::size_t i = 0; i < size; ++i) {
            problems_.push_back(make(like));
        }
    }

    const sparse_problem& next() { return problems_[next_++ % problems_.size()]; }

private:
    sparse_problem make(const shape& like) {
        const std::size_t n = static_cast<std::size_t>(like.capacity);
        const std::size_t entries = n * static_cast<std::size_t>(like.percent) / 100;
        // Distinct indices: the first ones of a shuffle that goes only so far.
        if (indices_.size() != n) {
            indices_.resize(n);
            std::iota(indices_.begin(), indices_.end(), 1);
        }
        for (std::size_t k = 0; k < entries * 3 / 2; ++k) {
            std::swap(indices_[k], indices_[k + generator_() % (n - k)]);
        }
        sparse_problem made;
        for (std::size_t k = 0; k < entries; ++k) {
            const double value = small_integer();
            made.x.push_back({indices_[k], value});
            made.y.push_back({indices_[k + entries / 2], small_integer()});
        }
        for (std::size_t k = 0; k < entries / 2; k += 10) {
            made.y[k].value = made.x[k + entries / 2].value;
        }
        arrange(made.x, like.order);
        arrange(made.y, like.order);
        return made;
    }

    double small_integer() {
        const auto magnitude = static_cast<double>(1 + generator_() % 9);
        return (generator_() & 1) != 0 ? magnitude : -magnitude;
    }

    void arrange(std::vector<entry>& entries, listing order) {
        if (order == listing::sorted) {
            std::sort(entries.begin(), entries.end(),
                      [](const entry& a, const entry& b) { return a.index < b.index; });
        } else {
            std::shuffle(entries.begin(), entries.end(), generator_);
        }
    }

    std::mt19937_64 generator_{20261121};
    std::vector<std::int32_t> indices_;
    std::vector<sparse_problem> problems_;
    std::size_t next_ = 0;
};

/// The instances of a kind of vector pair, shared by all comparisons of one capacity.
template <class Pair>
Pair& instance(std::int32_t capacity, std::int64_t i) {
    static std::map<std::int32_t, std::vector<std::unique_ptr<Pair>>> all;
    auto& of_capacity = all[capacity];
    while (static_cast<std::int64_t>(of_capacity.size()) <= i) {
        of_capacity.push_back(std::make_unique<Pair>(capacity));
    }
    return *of_capacity[static_cast<std::size_t>(i)];
}

} // namespace zktarn::bench
