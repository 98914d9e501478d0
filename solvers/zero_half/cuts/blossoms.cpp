#include "cuts/searches.hpp"

#include <algorithm>
#include <utility>

namespace zero_half {

namespace {

/// An undirected network. Each edge is two arcs with adjacent numbers: the reverse of arc a is
/// a ^ 1.
class network {
public:
    explicit network(std::size_t nodes) : arcs_of_(nodes), before_(nodes), seen_(nodes) {}

    void connect(std::size_t a, std::size_t b, double capacity);
    std::size_t nodes() const { return arcs_of_.size(); }

    /// Whether a cut with a capacity below `slack_limit` separates the two nodes. If so,
    /// `is_on_source_side` describes a minimum one. Calls `should_stop` after each augmenting path;
    /// once it returns true, the result is false.
    bool has_small_cut(std::size_t source, std::size_t sink, const stop_predicate& should_stop);
    bool is_on_source_side(std::size_t node) const { return seen_[node] == stamp_; }

private:
    struct arc {
        std::size_t target;
        double capacity;
        double residual;
    };
    bool find_path(std::size_t source, std::size_t sink);
    double augment(std::size_t source, std::size_t sink);
    void restore();

    std::vector<arc> arcs_;
    std::vector<std::vector<std::size_t>> arcs_of_;
    /// The arc by which a node was reached.
    std::vector<std::size_t> before_;
    /// For each node the number of the last search that reached it.
    std::vector<std::size_t> seen_;
    /// The number of the current search.
    std::size_t stamp_ = 0;
    std::vector<std::size_t> queue_;
    /// The arcs of all augmenting paths, whose residuals `restore` resets.
    std::vector<std::size_t> changed_;
};

constexpr double negligible = 1e-9;

void network::connect(std::size_t a, std::size_t b, double capacity) {
    if (capacity > negligible) {
        arcs_of_[a].push_back(arcs_.size());
        arcs_.push_back({b, capacity, capacity});
        arcs_of_[b].push_back(arcs_.size());
        arcs_.push_back({a, capacity, capacity});
    }
}

bool network::find_path(std::size_t source, std::size_t sink) {
    ++stamp_;
    seen_[source] = stamp_;
    queue_.assign(1, source);
    for (std::size_t k = 0; k < queue_.size(); ++k) {
        for (const std::size_t a : arcs_of_[queue_[k]]) {
            const std::size_t target = arcs_[a].target;
            if (arcs_[a].residual > negligible && seen_[target] != stamp_) {
                seen_[target] = stamp_;
                before_[target] = a;
                if (target == sink) {
                    return true;
                }
                queue_.push_back(target);
            }
        }
    }
    return false;
}

double network::augment(std::size_t source, std::size_t sink) {
    double amount = 1.0;
    for (std::size_t node = sink; node != source; node = arcs_[before_[node] ^ 1].target) {
        amount = std::min(amount, arcs_[before_[node]].residual);
    }
    for (std::size_t node = sink; node != source; node = arcs_[before_[node] ^ 1].target) {
        arcs_[before_[node]].residual -= amount;
        arcs_[before_[node] ^ 1].residual += amount;
        changed_.push_back(before_[node]);
    }
    return amount;
}

void network::restore() {
    for (const std::size_t a : changed_) {
        arcs_[a].residual = arcs_[a].capacity;
        arcs_[a ^ 1].residual = arcs_[a ^ 1].capacity;
    }
    changed_.clear();
}

bool network::has_small_cut(std::size_t source, std::size_t sink,
                            const stop_predicate& should_stop) {
    double capacity = 0.0;
    bool is_stopped = false;
    while (!is_stopped && capacity < slack_limit && find_path(source, sink)) {
        capacity += augment(source, sink);
        is_stopped = should_stop();
    }
    restore();
    return !is_stopped && capacity < slack_limit;
}

/// The graph of the rows, which has the rows as nodes and one further node. See `find_blossoms`.
network network_of(const parity_system& system) {
    const std::size_t outside = system.rows();
    const std::size_t joined = outside + 1;
    network made(system.rows() + 1);
    std::vector<std::size_t> first(static_cast<std::size_t>(system.columns()) + 1, outside);
    for (std::size_t i = 0; i < system.rows(); ++i) {
        made.connect(i, outside, system.value(system.slack_of(i)));
        for (const std::int32_t j : system.odd_columns(i)) {
            std::size_t& end = first[static_cast<std::size_t>(j)];
            if (end == outside) {
                end = i;
            } else {
                made.connect(end, i, system.value(j));
                end = joined;
            }
        }
    }
    for (std::int32_t j = 1; j <= system.columns(); ++j) {
        if (const std::size_t end = first[static_cast<std::size_t>(j)]; end < outside) {
            made.connect(end, outside, system.value(j));
        }
    }
    return made;
}

/// The part of a Gomory-Hu tree whose cuts have a capacity below the limit.
struct cut_tree {
    std::vector<std::size_t> parent;
    /// Whether a cut below the limit separates the node from its parent.
    std::vector<char> is_small;
};

/// The tree with the root `root`, by Gusfield's method (1990).
cut_tree tree_of(network& net, std::size_t root, const stop_predicate& should_stop) {
    cut_tree tree{std::vector<std::size_t>(net.nodes(), root), std::vector<char>(net.nodes())};
    for (std::size_t s = 0; s < net.nodes() && !should_stop(); ++s) {
        const std::size_t t = tree.parent[s];
        if (s == root || !net.has_small_cut(s, t, should_stop)) {
            continue;
        }
        tree.is_small[s] = 1;
        for (std::size_t j = 0; j < net.nodes(); ++j) {
            if (j != s && j != root && tree.parent[j] == t && net.is_on_source_side(j)) {
                tree.parent[j] = s;
            }
        }
        if (t != root && net.is_on_source_side(tree.parent[t])) {
            tree.parent[s] = tree.parent[t];
            tree.parent[t] = s;
            std::swap(tree.is_small[s], tree.is_small[t]);
        }
    }
    return tree;
}

/// Adds the sum of the rows of each subtree that a small cut separates from the rest.
void add_subtrees(const cut_tree& tree, std::size_t root, const parity_system& system,
                  odd_sums& sums) {
    std::vector<std::vector<std::size_t>> children(tree.parent.size());
    for (std::size_t s = 0; s < tree.parent.size(); ++s) {
        if (s != root) {
            children[tree.parent[s]].push_back(s);
        }
    }
    row_sum sum(system);
    for (std::size_t top = 0; top < tree.parent.size(); ++top) {
        if (tree.is_small[top] == 0) {
            continue;
        }
        sum.clear();
        std::vector<std::size_t> open = {top};
        while (!open.empty()) {
            const std::size_t node = open.back();
            open.pop_back();
            sum.add(node);
            open.insert(open.end(), children[node].begin(), children[node].end());
        }
        sums.add_if_violated(sum.odd(), sum.is_odd());
    }
}

} // namespace

bool is_column_graph(const parity_system& system) {
    std::vector<int> count(static_cast<std::size_t>(system.columns()) + 1);
    for (std::size_t i = 0; i < system.rows(); ++i) {
        for (const std::int32_t j : system.odd_columns(i)) {
            if (++count[static_cast<std::size_t>(j)] > 2) {
                return false;
            }
        }
    }
    return true;
}

void find_blossoms(const parity_system& system, const stop_predicate& should_stop, odd_sums& sums) {
    network net = network_of(system);
    const std::size_t outside = system.rows();
    add_subtrees(tree_of(net, outside, should_stop), outside, system, sums);
}

} // namespace zero_half
