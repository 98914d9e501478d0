#include "cuts/odd_cycles.hpp"
#include "cuts/row_sum.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <queue>
#include <tuple>
#include <utility>

namespace zero_half {

namespace {

struct edge {
    std::int32_t target;
    bool is_odd;
    double length;
    std::int32_t row;
};
constexpr std::int32_t no_row = -1;

/// For each node its edges, the shortest first.
using graph = std::vector<std::vector<edge>>;

void connect(graph& edges, std::int32_t a, std::int32_t b, bool is_odd, double length,
             std::int32_t row) {
    if (length < slack_limit && a != b) {
        edges[static_cast<std::size_t>(a)].push_back({b, is_odd, length, row});
        edges[static_cast<std::size_t>(b)].push_back({a, is_odd, length, row});
    }
}

/// The two cheapest parity changes with different elements, so that one is left when the other's
/// element is a node of the edge; likewise the third.
class cheapest_changes {
public:
    void offer(double cost, std::int32_t element) {
        for (auto& kept : changes_) {
            if (cost < kept.first) {
                std::swap(cost, kept.first);
                std::swap(element, kept.second);
            }
        }
    }
    double without(std::int32_t a, std::int32_t b) const {
        for (const auto& kept : changes_) {
            if (kept.second != a && kept.second != b) {
                return kept.first;
            }
        }
        return parity_change{}.cost;
    }

private:
    std::array<std::pair<double, std::int32_t>, 3> changes_ = {
        {{parity_change{}.cost, -1}, {parity_change{}.cost, -1}, {parity_change{}.cost, -1}}};
};

/// The edges of one row: all pairs of its columns, and each column with node 0, for which the rest
/// of the row leaves a length below the limit.
void add_row(const parity_system& system, std::size_t i, graph& edges) {
    const auto row = static_cast<std::int32_t>(i);
    std::vector<std::int32_t> nodes(system.odd_columns(i).begin(), system.odd_columns(i).end());
    std::sort(nodes.begin(), nodes.end(), [&](std::int32_t a, std::int32_t b) {
        return std::pair(-system.value(a), a) < std::pair(-system.value(b), b);
    });
    const std::int32_t slack = system.slack_of(i);
    double total = system.value(slack);
    cheapest_changes changes;
    changes.offer(system.change(slack).cost, slack);
    for (const std::int32_t j : nodes) {
        total += system.value(j);
        changes.offer(system.change(j).cost, j);
    }
    nodes.push_back(0);
    for (std::size_t a = 0; a < nodes.size(); ++a) {
        for (std::size_t b = a + 1; b < nodes.size(); ++b) {
            const double pair_value =
                system.value(nodes[a]) + (nodes[b] != 0 ? system.value(nodes[b]) : 0.0);
            const double length = std::max(0.0, total - pair_value);
            if (length >= slack_limit) {
                break;
            }
            connect(edges, nodes[a], nodes[b], system.is_odd(i), length, row);
            connect(edges, nodes[a], nodes[b], !system.is_odd(i),
                    length + changes.without(nodes[a], nodes[b]), row);
        }
    }
}

graph edges_of(const parity_system& system) {
    graph edges(static_cast<std::size_t>(system.columns()) + 1);
    for (std::size_t i = 0; i < system.rows(); ++i) {
        add_row(system, i, edges);
    }
    for (std::int32_t j = 1; j <= system.columns(); ++j) {
        connect(edges, j, 0, false, system.value(j), no_row);
        connect(edges, j, 0, true, system.value(j) + system.change(j).cost, no_row);
    }
    for (std::vector<edge>& list : edges) {
        std::sort(list.begin(), list.end(), [](const edge& a, const edge& b) {
            return std::tie(a.length, a.target, a.row) < std::tie(b.length, b.target, b.row);
        });
    }
    return edges;
}

/// A place is a node with the parity of the walk to it.
std::int32_t place_of(std::int32_t node, bool is_odd) {
    return 2 * node + (is_odd ? 1 : 0);
}

/// Shortest closed odd walks. A walk from a node back to itself with the other parity has a middle;
/// both halves are walks of at most half its length from the node, so only those are computed.
class walk_search {
public:
    explicit walk_search(const graph& edges)
        : edges_(edges), arrivals_(2 * edges.size(), arrival{infinite, -1, no_row}) {}

    /// The rows on the shortest walk, empty when it is not below the limit.
    std::vector<std::int32_t> rows_from(std::int32_t start);

private:
    struct arrival {
        double distance;
        std::int32_t before;
        std::int32_t row;
    };
    struct meeting {
        double length;
        std::int32_t first;
        std::int32_t row;
        std::int32_t second;
    };
    using entry = std::pair<double, std::int32_t>;
    using queue = std::priority_queue<entry, std::vector<entry>, std::greater<>>;
    static constexpr double infinite = std::numeric_limits<double>::infinity();

    arrival& at(std::int32_t place) { return arrivals_[static_cast<std::size_t>(place)]; }
    void arrive(std::int32_t place, const arrival& how);
    void expand(std::int32_t place, queue& open, meeting& best);
    void collect(std::int32_t place, std::vector<std::int32_t>& rows);

    const graph& edges_;
    std::vector<arrival> arrivals_;
    std::vector<std::int32_t> reached_;
};

void walk_search::arrive(std::int32_t place, const arrival& how) {
    if (at(place).distance == infinite) {
        reached_.push_back(place);
    }
    at(place) = how;
}

void walk_search::expand(std::int32_t place, queue& open, meeting& best) {
    const double distance = at(place).distance;
    for (const edge& e : edges_[static_cast<std::size_t>(place / 2)]) {
        const double length = distance + e.length;
        if (length >= best.length) {
            break;
        }
        const bool is_odd = (place % 2 == 1) != e.is_odd;
        const std::int32_t mirrored = place_of(e.target, !is_odd);
        if (length + at(mirrored).distance < best.length) {
            best = {length + at(mirrored).distance, place, e.row, mirrored};
        }
        const std::int32_t next = place_of(e.target, is_odd);
        if (2.0 * length < best.length && length < at(next).distance) {
            arrive(next, {length, place, e.row});
            open.push({length, next});
        }
    }
}

void walk_search::collect(std::int32_t place, std::vector<std::int32_t>& rows) {
    for (; at(place).before >= 0; place = at(place).before) {
        if (at(place).row != no_row) {
            rows.push_back(at(place).row);
        }
    }
}

std::vector<std::int32_t> walk_search::rows_from(std::int32_t start) {
    for (const std::int32_t place : reached_) {
        at(place).distance = infinite;
    }
    reached_.clear();
    queue open;
    meeting best = {slack_limit, -1, no_row, -1};
    arrive(place_of(start, false), {0.0, -1, no_row});
    open.push({0.0, place_of(start, false)});
    while (!open.empty() && 2.0 * open.top().first < best.length) {
        const auto [distance, place] = open.top();
        open.pop();
        if (distance <= at(place).distance) {
            expand(place, open, best);
        }
    }
    std::vector<std::int32_t> rows;
    if (best.first >= 0) {
        collect(best.first, rows);
        collect(best.second, rows);
        if (best.row != no_row) {
            rows.push_back(best.row);
        }
    }
    return rows;
}

} // namespace

void find_odd_cycles(const parity_system& system, const stop_predicate& should_stop,
                     odd_sums& sums) {
    const graph edges = edges_of(system);
    walk_search search(edges);
    row_sum sum(system);
    for (std::int32_t start = 0; start <= system.columns() && !should_stop(); ++start) {
        const std::vector<std::int32_t> rows = search.rows_from(start);
        if (!rows.empty()) {
            sum.assign(rows);
            sums.add_if_violated(sum.odd(), sum.is_odd());
        }
    }
}

} // namespace zero_half
