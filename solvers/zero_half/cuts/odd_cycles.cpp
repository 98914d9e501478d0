#include "cuts/odd_cycles.hpp"

#include <algorithm>
#include <queue>
#include <utility>

namespace zero_half {

namespace {

using zktarn::vector_mod::vector_get_ind;

/// The graph. A node is a column, or 0 for the other end of rows with fewer than two odd columns.
/// An edge between a column and node 0 stands for leaving the column odd in the sum. A state is a
/// node together with the parity of the walk to it.
class parity_graph {
public:
    explicit parity_graph(const parity_system& system);
    void find(const stop_predicate& should_stop, odd_sums& sums);

private:
    struct edge {
        std::int32_t target;
        bool is_odd;
        double length;
        std::int32_t row;
    };
    /// The last step of the shortest walk to a state.
    struct arrival {
        double distance;
        std::int32_t previous;
        std::int32_t row;
    };
    static constexpr std::int32_t no_row = -1;
    /// Longer walks are not violated.
    static constexpr double longest = 1.0;

    static std::int32_t state(std::int32_t node, bool is_odd) {
        return 2 * node + (is_odd ? 1 : 0);
    }
    arrival& best(std::int32_t state) { return best_[static_cast<std::size_t>(state)]; }

    void connect(std::int32_t a, std::int32_t b, bool is_odd, double length, std::int32_t row);
    void add_row(std::int32_t number);
    bool find_odd_walk(std::int32_t start);
    const parity_row& sum_of_walk(std::int32_t start);

    const parity_system& system_;
    std::vector<std::vector<edge>> edges_;
    std::vector<arrival> best_;
    parity_row sum_;
};

parity_graph::parity_graph(const parity_system& system)
    : system_(system), edges_(static_cast<std::size_t>(system.columns()) + 1),
      best_(2 * edges_.size()), sum_{new_index_set(system.elements())} {
    for (std::size_t i = 0; i < system.rows().size(); ++i) {
        add_row(static_cast<std::int32_t>(i));
    }
    for (std::int32_t j = 1; j <= system.columns(); ++j) {
        connect(j, 0, false, system.value(j), no_row);
    }
}

void parity_graph::connect(std::int32_t a, std::int32_t b, bool is_odd, double length,
                           std::int32_t row) {
    if (length < longest) {
        edges_[static_cast<std::size_t>(a)].push_back({b, is_odd, length, row});
        edges_[static_cast<std::size_t>(b)].push_back({a, is_odd, length, row});
    }
}

/// In the list of a row its slack comes after its columns.
void parity_graph::add_row(std::int32_t number) {
    const parity_row& row = system_.rows()[static_cast<std::size_t>(number)];
    const std::int32_t columns = size(row.odd) - 1;
    connect(columns >= 1 ? vector_get_ind(*row.odd, 1) : 0,
            columns == 2 ? vector_get_ind(*row.odd, 2) : 0, row.is_odd,
            system_.value(vector_get_ind(*row.odd, columns + 1)), number);
}

/// Dijkstra's method from the node to itself with odd parity. Returns whether there is a walk that
/// is short enough.
bool parity_graph::find_odd_walk(std::int32_t start) {
    using entry = std::pair<double, std::int32_t>;
    std::priority_queue<entry, std::vector<entry>, std::greater<>> open;
    std::fill(best_.begin(), best_.end(), arrival{longest, 0, no_row});
    best(state(start, false)).distance = 0.0;
    open.push({0.0, state(start, false)});
    while (!open.empty()) {
        const auto [distance, here] = open.top();
        open.pop();
        if (here == state(start, true)) {
            return true;
        }
        if (distance > best(here).distance) {
            continue;
        }
        for (const edge& step : edges_[static_cast<std::size_t>(here / 2)]) {
            const std::int32_t next = state(step.target, (here % 2 == 1) != step.is_odd);
            if (distance + step.length < best(next).distance) {
                best(next) = {distance + step.length, here, step.row};
                open.push({distance + step.length, next});
            }
        }
    }
    return false;
}

const parity_row& parity_graph::sum_of_walk(std::int32_t start) {
    sum_.clear();
    const std::int32_t first = state(start, false);
    for (std::int32_t s = state(start, true); s != first; s = best(s).previous) {
        if (best(s).row != no_row) {
            sum_.add(system_.rows()[static_cast<std::size_t>(best(s).row)]);
        }
    }
    return sum_;
}

void parity_graph::find(const stop_predicate& should_stop, odd_sums& sums) {
    for (std::int32_t start = 0; start <= system_.columns() && !should_stop(); ++start) {
        if (find_odd_walk(start)) {
            sums.add_if_violated(sum_of_walk(start));
        }
    }
}

} // namespace

void find_odd_cycles(const parity_system& system, const stop_predicate& should_stop,
                     odd_sums& sums) {
    parity_graph(system).find(should_stop, sums);
}

} // namespace zero_half
