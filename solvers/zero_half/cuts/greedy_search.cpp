#include "cuts/greedy_search.hpp"

#include <limits>

namespace zero_half {

namespace {

class greedy_search {
public:
    greedy_search(const parity_system& system, odd_sums& sums)
        : system_(system),
          sums_(sums), current_{new_index_set(system.elements())}, trial_{new_index_set(
                                                                       system.elements())},
          is_used_(system.rows().size()) {}

    /// The current sum becomes the row alone.
    void start(std::size_t row);
    /// Adds the best row to the current sum. Returns false when every row was added before.
    bool step();

private:
    double slack_with(const parity_row& row) const;
    void try_sum_with(const parity_row& row);
    void add(std::size_t row);

    const parity_system& system_;
    odd_sums& sums_;
    parity_row current_;
    parity_row trial_;
    double slack_ = 0.0;
    std::vector<bool> is_used_;
};

/// The slack that the current sum would have with the row added.
double greedy_search::slack_with(const parity_row& row) const {
    double slack = slack_;
    for (const auto [element, unused] : zktarn::entries(row.odd)) {
        const double value = system_.value(element);
        slack += zktarn::vector_mod::vector_is_elm(*current_.odd, element) != 0 ? -value : value;
    }
    return slack;
}

void greedy_search::try_sum_with(const parity_row& row) {
    trial_.clear();
    trial_.add(current_);
    trial_.add(row);
    sums_.add_if_violated(trial_);
}

void greedy_search::add(std::size_t row) {
    slack_ = slack_with(system_.rows()[row]);
    current_.add(system_.rows()[row]);
    is_used_[row] = true;
}

void greedy_search::start(std::size_t row) {
    current_.clear();
    slack_ = 0.0;
    is_used_.assign(is_used_.size(), false);
    add(row);
}

bool greedy_search::step() {
    const parity_rows& rows = system_.rows();
    std::size_t best = rows.size();
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (is_used_[i]) {
            continue;
        }
        const double slack = slack_with(rows[i]);
        if (slack < 1.0 && rows[i].is_odd != current_.is_odd) {
            try_sum_with(rows[i]);
        }
        if (slack < least) {
            least = slack;
            best = i;
        }
    }
    if (best == rows.size()) {
        return false;
    }
    add(best);
    return true;
}

} // namespace

void find_by_greedy_search(const parity_system& system, const stop_predicate& should_stop,
                           odd_sums& sums) {
    constexpr int most_steps = 8;
    greedy_search search(system, sums);
    for (std::size_t row = 0; row < system.rows().size(); ++row) {
        search.start(row);
        for (int step = 0; step < most_steps; ++step) {
            if (sums.are_enough() || should_stop() || !search.step()) {
                break;
            }
        }
    }
}

} // namespace zero_half
