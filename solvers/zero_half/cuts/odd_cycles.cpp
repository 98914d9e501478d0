#include "cuts/searches.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <numeric>
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

/// The edges of each node, the shortest first, in one array.
class graph {
public:
    explicit graph(const parity_system& system);

    std::size_t nodes() const { return starts_.size() - 1; }
    std::span<const edge> edges(std::int32_t node) const {
        const auto position = static_cast<std::size_t>(node);
        return std::span(edges_).subspan(starts_[position],
                                         starts_[position + 1] - starts_[position]);
    }

private:
    struct link {
        std::int32_t a;
        std::int32_t b;
        bool is_odd;
        double length;
        std::int32_t row;
    };

    void connect(std::int32_t a, std::int32_t b, bool is_odd, double length, std::int32_t row) {
        if (length < slack_limit && a != b) {
            links_.push_back({a, b, is_odd, length, row});
        }
    }
    void add_row(const parity_system& system, std::size_t i);
    void sort_links(std::size_t nodes);

    std::vector<link> links_;
    /// The nodes of the row that is added.
    std::vector<std::int32_t> nodes_;
    std::vector<std::size_t> starts_;
    std::vector<edge> edges_;
};

/// The three cheapest parity changes of a row. Three suffice, because an edge cannot use the change
/// of its two nodes.
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

/// Adds the edges of one row: between each two of its columns, and between each column and node 0.
/// The values of the row's other columns count as part of the length. Edges that are not shorter
/// than the limit are left out.
void graph::add_row(const parity_system& system, std::size_t i) {
    const auto row = static_cast<std::int32_t>(i);
    nodes_.assign(system.odd_columns(i).begin(), system.odd_columns(i).end());
    std::sort(nodes_.begin(), nodes_.end(), [&](std::int32_t a, std::int32_t b) {
        return std::pair(-system.value(a), a) < std::pair(-system.value(b), b);
    });
    const std::int32_t slack = system.slack_of(i);
    double total = system.value(slack);
    cheapest_changes changes;
    changes.offer(system.change(slack).cost, slack);
    for (const std::int32_t j : nodes_) {
        total += system.value(j);
        changes.offer(system.change(j).cost, j);
    }
    nodes_.push_back(0);
    for (std::size_t a = 0; a < nodes_.size(); ++a) {
        for (std::size_t b = a + 1; b < nodes_.size(); ++b) {
            const double pair_value =
                system.value(nodes_[a]) + (nodes_[b] != 0 ? system.value(nodes_[b]) : 0.0);
            const double length = std::max(0.0, total - pair_value);
            if (length >= slack_limit) {
                break;
            }
            connect(nodes_[a], nodes_[b], system.is_odd(i), length, row);
            connect(nodes_[a], nodes_[b], !system.is_odd(i),
                    length + changes.without(nodes_[a], nodes_[b]), row);
        }
    }
}

graph::graph(const parity_system& system) {
    for (std::size_t i = 0; i < system.rows(); ++i) {
        add_row(system, i);
    }
    for (std::int32_t j = 1; j <= system.columns(); ++j) {
        connect(j, 0, false, system.value(j), no_row);
        connect(j, 0, true, system.value(j) + system.change(j).cost, no_row);
    }
    sort_links(static_cast<std::size_t>(system.columns()) + 1);
}

/// Makes of each link an edge of either node, and sorts the edges of each node.
void graph::sort_links(std::size_t nodes) {
    starts_.assign(nodes + 2, 0);
    for (const link& each : links_) {
        ++starts_[static_cast<std::size_t>(each.a) + 2];
        ++starts_[static_cast<std::size_t>(each.b) + 2];
    }
    std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
    edges_.resize(2 * links_.size());
    for (const link& each : links_) {
        edges_[starts_[static_cast<std::size_t>(each.a) + 1]++] = {each.b, each.is_odd, each.length,
                                                                   each.row};
        edges_[starts_[static_cast<std::size_t>(each.b) + 1]++] = {each.a, each.is_odd, each.length,
                                                                   each.row};
    }
    starts_.pop_back();
    for (std::size_t node = 0; node < nodes; ++node) {
        std::sort(edges_.begin() + static_cast<std::ptrdiff_t>(starts_[node]),
                  edges_.begin() + static_cast<std::ptrdiff_t>(starts_[node + 1]),
                  [](const edge& a, const edge& b) {
                      return std::tie(a.length, a.target, a.row) <
                             std::tie(b.length, b.target, b.row);
                  });
    }
}

/// A state of the search: a node and the parity of the walk to it.
std::int32_t place_of(std::int32_t node, bool is_odd) {
    return 2 * node + (is_odd ? 1 : 0);
}

/// Finds shortest closed odd walks. Without its middle edge, such a walk is two walks from the
/// start of at most half its length each. So only walks up to half the length are computed.
class walk_search {
public:
    explicit walk_search(const graph& edges)
        : edges_(edges), arrivals_(2 * edges.nodes(), arrival{infinite, -1, no_row}) {}

    /// The rows on the shortest closed odd walk through a node; empty if none is shorter than the
    /// limit.
    std::span<const std::int32_t> rows_from(std::int32_t start);

private:
    /// The shortest walk to a place that is known so far: its length, and its last step.
    struct arrival {
        double distance;
        std::int32_t before;
        std::int32_t row;
    };
    /// A closed odd walk: an edge of `row` joins the walks to `first` and to `second`.
    struct meeting {
        double length;
        std::int32_t first;
        std::int32_t row;
        std::int32_t second;
    };
    using entry = std::pair<double, std::int32_t>;
    static constexpr double infinite = std::numeric_limits<double>::infinity();

    arrival& at(std::int32_t place) { return arrivals_[static_cast<std::size_t>(place)]; }
    void arrive(std::int32_t place, const arrival& how);
    void push(double distance, std::int32_t place);
    entry pop();
    void expand(std::int32_t place, meeting& best);
    void collect(std::int32_t place);

    const graph& edges_;
    std::vector<arrival> arrivals_;
    /// The places with an arrival.
    std::vector<std::int32_t> reached_;
    /// A heap with the nearest place on top.
    std::vector<entry> open_;
    std::vector<std::int32_t> rows_;
};

void walk_search::arrive(std::int32_t place, const arrival& how) {
    if (at(place).distance == infinite) {
        reached_.push_back(place);
    }
    at(place) = how;
}

void walk_search::push(double distance, std::int32_t place) {
    open_.emplace_back(distance, place);
    std::push_heap(open_.begin(), open_.end(), std::greater<>());
}

walk_search::entry walk_search::pop() {
    std::pop_heap(open_.begin(), open_.end(), std::greater<>());
    const entry nearest = open_.back();
    open_.pop_back();
    return nearest;
}

void walk_search::expand(std::int32_t place, meeting& best) {
    const double distance = at(place).distance;
    for (const edge& e : edges_.edges(place / 2)) {
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
            push(length, next);
        }
    }
}

/// Adds the rows on the walk to a place.
void walk_search::collect(std::int32_t place) {
    for (; at(place).before >= 0; place = at(place).before) {
        if (at(place).row != no_row) {
            rows_.push_back(at(place).row);
        }
    }
}

std::span<const std::int32_t> walk_search::rows_from(std::int32_t start) {
    for (const std::int32_t place : reached_) {
        at(place).distance = infinite;
    }
    reached_.clear();
    open_.clear();
    rows_.clear();
    meeting best = {slack_limit, -1, no_row, -1};
    arrive(place_of(start, false), {0.0, -1, no_row});
    push(0.0, place_of(start, false));
    while (!open_.empty() && 2.0 * open_.front().first < best.length) {
        const auto [distance, place] = pop();
        if (distance <= at(place).distance) {
            expand(place, best);
        }
    }
    if (best.first >= 0) {
        collect(best.first);
        collect(best.second);
        if (best.row != no_row) {
            rows_.push_back(best.row);
        }
    }
    return rows_;
}

} // namespace

void find_odd_cycles(const parity_system& system, const stop_predicate& should_stop,
                     odd_sums& sums) {
    const graph edges(system);
    walk_search search(edges);
    row_sum sum(system);
    for (std::int32_t start = 0; start <= system.columns() && !should_stop(); ++start) {
        const std::span<const std::int32_t> rows = search.rows_from(start);
        if (!rows.empty()) {
            sum.assign(rows);
            sums.add_if_violated(sum.odd(), sum.is_odd());
        }
    }
}

} // namespace zero_half
