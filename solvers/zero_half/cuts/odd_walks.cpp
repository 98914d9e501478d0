#include "cuts/odd_walks.hpp"

#include <algorithm>
#include <functional>
#include <queue>
#include <utility>

namespace zero_half {

namespace {

/// A node is a column, or 0: the end of edges with fewer than two columns. What a column gives away
/// is an edge to 0 as well. A place is a node with the parity of the walk to it.
class walks {
public:
    explicit walks(const parity_system& in);
    void find(odd_sums& found);

private:
    struct edge {
        std::int32_t to;
        bool is_odd;
        double length;
        std::int32_t row;
    };
    struct arrival {
        double distance;
        std::int32_t from;
        std::int32_t row;
    };
    static constexpr std::int32_t no_row = -1;
    static constexpr double longest = 1.0;

    static std::int32_t place(std::int32_t node, bool is_odd) {
        return 2 * node + (is_odd ? 1 : 0);
    }
    arrival& at(std::int32_t place) { return best_[static_cast<std::size_t>(place)]; }

    void connect(std::int32_t a, std::int32_t b, bool is_odd, double length, std::int32_t row);
    void add_row(std::int32_t number);
    bool walk(std::int32_t start);
    const parity_row& sum(std::int32_t start);

    const parity_system& in_;
    std::vector<std::vector<edge>> edges_;
    std::vector<arrival> best_;
    parity_row sum_;
};

walks::walks(const parity_system& in)
    : in_(in), edges_(static_cast<std::size_t>(in.columns()) + 1),
      best_(2 * edges_.size()), sum_{sparse_vector(in.elements(), false)} {
    for (std::size_t i = 0; i < in.rows().size(); ++i) {
        add_row(static_cast<std::int32_t>(i));
    }
    for (std::int32_t j = 1; j <= in.columns(); ++j) {
        connect(j, 0, false, in.value(j), no_row);
    }
}

void walks::connect(std::int32_t a, std::int32_t b, bool is_odd, double length, std::int32_t row) {
    if (length < longest) {
        edges_[static_cast<std::size_t>(a)].push_back({b, is_odd, length, row});
        edges_[static_cast<std::size_t>(b)].push_back({a, is_odd, length, row});
    }
}

/// The columns of a row stand before its slack.
void walks::add_row(std::int32_t number) {
    const parity_row& row = in_.rows()[static_cast<std::size_t>(number)];
    const std::int32_t columns = row.odd.size() - 1;
    connect(columns >= 1 ? row.odd.index(1) : 0, columns == 2 ? row.odd.index(2) : 0, row.is_odd,
            in_.value(row.odd.index(columns + 1)), number);
}

/// Dijkstra's method from a column to itself, odd; whether there is a walk that is short enough.
bool walks::walk(std::int32_t start) {
    using entry = std::pair<double, std::int32_t>;
    std::priority_queue<entry, std::vector<entry>, std::greater<>> open;
    std::fill(best_.begin(), best_.end(), arrival{longest, 0, no_row});
    at(place(start, false)).distance = 0.0;
    open.push({0.0, place(start, false)});
    while (!open.empty()) {
        const auto [distance, here] = open.top();
        open.pop();
        if (here == place(start, true)) {
            return true;
        }
        if (distance > at(here).distance) {
            continue;
        }
        for (const edge& e : edges_[static_cast<std::size_t>(here / 2)]) {
            const std::int32_t next = place(e.to, (here % 2 == 1) != e.is_odd);
            if (distance + e.length < at(next).distance) {
                at(next) = {distance + e.length, here, e.row};
                open.push({distance + e.length, next});
            }
        }
    }
    return false;
}

const parity_row& walks::sum(std::int32_t start) {
    sum_.clear();
    for (std::int32_t p = place(start, true); p != place(start, false); p = at(p).from) {
        if (at(p).row != no_row) {
            sum_.add(in_.rows()[static_cast<std::size_t>(at(p).row)]);
        }
    }
    return sum_;
}

void walks::find(odd_sums& found) {
    for (std::int32_t start = 0; start <= in_.columns() && !found.is_stopped(); ++start) {
        if (walk(start)) {
            found.note(sum(start));
        }
    }
}

} // namespace

void find_odd_walks(const parity_system& in, odd_sums& found) {
    walks(in).find(found);
}

} // namespace zero_half
