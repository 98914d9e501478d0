#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Pairs of sparse vectors to work on, another one for every repetition.
///
/// One input again and again trains the branch predictor and flatters code with branches by a
/// factor of two. So problems come from a pool with far more entries than a predictor can learn by
/// heart; the trained figure is taken from a pool of one.

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
    /// Half of y's indices are x's, and a tenth of those have the same value.
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

    /// A round does short jobs several times, each on vectors of their own; all of them fit the
    /// cache that one pair of the largest of these shapes needs.
    std::int64_t most_repetitions() const;
};

/// Capacities of 10 to 10^7 by tens, each filled to 0.1, 1, 10 and 100 %, where that is another
/// number of entries than the fill before. `most_entries` leaves larger vectors out.
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
