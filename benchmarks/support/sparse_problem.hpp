#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Random pairs of sparse vectors, a new one for every repetition.
///
/// A repeated input trains the branch predictor and makes code with branches look faster. So
/// problems come from a pool with more entries than a predictor can learn. The trained figure uses
/// a pool of one.

namespace zktarn::bench {

struct entry {
    std::int32_t index;
    double value;
};

/// The entries of x and y, in the order in which they are listed.
struct sparse_problem {
    std::vector<entry> x;
    std::vector<entry> y;
};

/// All values are integers from -9 to 9, and nonzero unless stated otherwise.
enum class relation {
    /// Half of y's indices are also x's; a tenth of those have the same value.
    overlapping,
    /// y is empty; an entry of x in twenty is zero.
    with_zeros,
    /// The entries of y are those of x.
    twins,
};

enum class listing { shuffled, sorted };

struct shape {
    std::int32_t capacity;
    /// Listed entries of each vector in thousandths of the capacity; at least one entry.
    std::int32_t permille;
    listing order;
    bool trained = false;

    /// capacity/fill/order.
    std::string name() const;
    std::int64_t entries() const;
    bool beyond_cache() const { return capacity > 1'000'000; }

    /// The largest number of repetitions in a round. Each repetition has its own pair of vectors,
    /// and together the pairs are no larger than one pair of the largest shape.
    std::int64_t most_repetitions() const;
};

/// Capacities 10, 100, ..., 10^7, each with 0.1, 1, 10 and 100 % of its entries listed, without
/// fills that give the same number of entries. `most_entries` excludes larger vectors.
std::vector<shape> all_shapes(listing order, std::int64_t most_entries = 1'000'000);

/// A shape whose inputs the branch predictor has learnt.
shape trained_shape(listing order);

class problem_pool {
public:
    problem_pool(const shape& like, relation between) : like_(like), between_(between) {}

    const sparse_problem& next();

private:
    shape like_;
    relation between_;
    std::vector<sparse_problem> problems_;
    std::size_t next_ = 0;
};

} // namespace zktarn::bench
