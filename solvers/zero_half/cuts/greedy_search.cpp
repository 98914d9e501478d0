#include "cuts/greedy_search.hpp"

#include <limits>

#include "cuts/row_sum.hpp"

namespace zero_half {

namespace {

class greedy_search {
public:
    explicit greedy_search(const parity_system& system)
        : system_(system), current_(system), trial_(system) {}

    void run_from(std::size_t start, odd_sums& sums);

private:
    double slack_with(std::size_t row) const;
    std::size_t best_next(odd_sums& sums);
    void add(std::size_t row);

    const parity_system& system_;
    row_sum current_;
    row_sum trial_;
    std::vector<std::int32_t> rows_;
    std::vector<char> is_used_;
    double slack_ = 0.0;
};

double greedy_search::slack_with(std::size_t row) const {
    double slack = slack_ + system_.value(system_.slack_of(row));
    for (const std::int32_t element : system_.odd_columns(row)) {
        slack += current_.has(element) ? -system_.value(element) : system_.value(element);
    }
    return slack;
}

/// The row after which the slack is least; adds the violated sums on the way.
std::size_t greedy_search::best_next(odd_sums& sums) {
    std::size_t best = system_.rows();
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t row = 0; row < system_.rows(); ++row) {
        if (is_used_[row] != 0) {
            continue;
        }
        const double slack = slack_with(row);
        if (slack < slack_limit) {
            rows_.push_back(static_cast<std::int32_t>(row));
            trial_.assign(rows_);
            rows_.pop_back();
            sums.add_if_violated(trial_.odd(), trial_.is_odd());
        }
        if (slack < least) {
            least = slack;
            best = row;
        }
    }
    return best;
}

void greedy_search::add(std::size_t row) {
    slack_ = slack_with(row);
    current_.add(row);
    rows_.push_back(static_cast<std::int32_t>(row));
    is_used_[row] = 1;
}

void greedy_search::run_from(std::size_t start, odd_sums& sums) {
    constexpr int most_steps = 8;
    current_.clear();
    rows_.clear();
    is_used_.assign(system_.rows(), 0);
    slack_ = 0.0;
    add(start);
    for (int step = 0; step < most_steps && !sums.are_enough(); ++step) {
        const std::size_t next = best_next(sums);
        if (next == system_.rows()) {
            break;
        }
        add(next);
    }
}

} // namespace

void find_by_greedy_search(const parity_system& system, const stop_predicate& should_stop,
                           odd_sums& sums) {
    greedy_search search(system);
    for (std::size_t start = 0; start < system.rows() && !sums.are_enough() && !should_stop();
         ++start) {
        search.run_from(start, sums);
    }
}

} // namespace zero_half
