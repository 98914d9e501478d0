#include "support/sparse_problem.hpp"

#include <algorithm>
#include <numeric>
#include <random>

namespace zktarn::bench {

namespace {

class problem_maker {
public:
    problem_maker(const shape& like, relation between)
        : like_(like), between_(between), indices_(static_cast<std::size_t>(like.capacity)) {
        std::iota(indices_.begin(), indices_.end(), 1);
    }

    sparse_problem make() {
        const auto count = static_cast<std::size_t>(like_.entries());
        shuffle_front(std::min(count + count / 2, indices_.size()));
        sparse_problem made;
        for (std::size_t k = 0; k < count; ++k) {
            made.x.push_back({indices_[k], small_integer()});
        }
        switch (between_) {
        case relation::overlapping:
            add_overlapping(made);
            break;
        case relation::with_zeros:
            std::for_each(made.x.begin(), made.x.end(),
                          [this](entry& each) { each.value = one_in(20) ? 0.0 : each.value; });
            break;
        case relation::twins:
            made.y = made.x;
            break;
        }
        arrange(made.x);
        arrange(made.y);
        return made;
    }

private:
    /// Distinct indices: a partial shuffle.
    void shuffle_front(std::size_t count) {
        for (std::size_t k = 0; k < count; ++k) {
            std::swap(indices_[k], indices_[k + generator_() % (indices_.size() - k)]);
        }
    }

    void add_overlapping(sparse_problem& made) {
        const std::size_t count = made.x.size();
        const std::size_t others = std::min(count / 2, indices_.size() - count);
        for (std::size_t k = others; k < count; ++k) {
            made.y.push_back({made.x[k].index, one_in(10) ? made.x[k].value : small_integer()});
        }
        for (std::size_t k = 0; k < others; ++k) {
            made.y.push_back({indices_[count + k], small_integer()});
        }
    }

    void arrange(std::vector<entry>& entries) {
        if (like_.order == listing::sorted) {
            std::sort(entries.begin(), entries.end(),
                      [](const entry& a, const entry& b) { return a.index < b.index; });
        } else {
            std::shuffle(entries.begin(), entries.end(), generator_);
        }
    }

    bool one_in(std::uint64_t n) { return generator_() % n == 0; }

    double small_integer() {
        const auto magnitude = static_cast<double>(1 + generator_() % 9);
        return one_in(2) ? magnitude : -magnitude;
    }

    shape like_;
    relation between_;
    std::vector<std::int32_t> indices_;
    std::mt19937_64 generator_{20261121};
};

} // namespace

std::string shape::name() const {
    const std::string fill =
        permille < 10 ? "0." + std::to_string(permille) : std::to_string(permille / 10);
    return std::to_string(capacity) + "/" + fill + "%/" +
           (order == listing::sorted ? "sorted" : "shuffled") + (trained ? "/trained" : "");
}

std::int64_t shape::entries() const {
    return std::max(std::int64_t{capacity} * permille / 1000, std::int64_t{1});
}

std::int64_t shape::most_repetitions() const {
    return std::clamp(std::int64_t{640} / entries(), std::int64_t{1}, std::int64_t{64});
}

std::vector<shape> all_shapes(listing order, std::int64_t most_entries) {
    std::vector<shape> shapes;
    for (std::int32_t capacity = 10; capacity <= 10'000'000; capacity *= 10) {
        std::int64_t before = 0;
        for (const std::int32_t permille : {1000, 100, 10, 1}) {
            const shape next{capacity, permille, order};
            if (next.entries() <= most_entries && next.entries() != before) {
                before = next.entries();
                shapes.push_back(next);
            }
        }
    }
    return shapes;
}

shape trained_shape(listing order) {
    return {1'000, 100, order, true};
}

const sparse_problem& problem_pool::next() {
    if (problems_.empty()) {
        constexpr std::int64_t enough_entries = 400'000;
        const std::int64_t size =
            like_.trained ? 1 : std::max(enough_entries / like_.entries(), std::int64_t{2});
        problem_maker maker(like_, between_);
        for (std::int64_t i = 0; i < size; ++i) {
            problems_.push_back(maker.make());
        }
    }
    return problems_[next_++ % problems_.size()];
}

} // namespace zktarn::bench
