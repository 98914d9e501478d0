#include "cuts/searches.hpp"

#include <limits>

namespace zero_half {

namespace {

class greedy_search {
public:
    explicit greedy_search(const parity_system& system)
        : system_(system), values_(elements()), marks_(elements()) {}

    void run_from(std::size_t start, odd_sums& sums);

private:
    std::size_t elements() const { return static_cast<std::size_t>(system_.elements()) + 1; }
    void clear();
    double slack_with(std::size_t row) const;
    std::span<const std::int32_t> odd_with(std::size_t row);
    void offer(std::size_t row, odd_sums& sums);
    std::size_t best_next(odd_sums& sums);
    void flip(std::int32_t element);
    void add(std::size_t row);

    const parity_system& system_;
    /// By how much the slack of the sum grows when its parity changes in an element.
    std::vector<double> values_;
    /// For each element whether the sum is odd in it, and the list of these elements.
    std::vector<char> marks_;
    std::vector<std::int32_t> odd_;
    /// The result of `odd_with`.
    std::vector<std::int32_t> odd_with_row_;
    std::vector<char> is_used_;
    std::uint64_t signature_ = 0;
    double slack_ = 0.0;
    bool is_odd_ = false;
};

void greedy_search::clear() {
    values_[0] = 0.0;
    for (std::int32_t element = 1; element <= system_.elements(); ++element) {
        values_[static_cast<std::size_t>(element)] = system_.value(element);
    }
    marks_.assign(elements(), 0);
    odd_.clear();
    is_used_.assign(system_.rows(), 0);
    signature_ = 0;
    slack_ = 0.0;
    is_odd_ = false;
}

double greedy_search::slack_with(std::size_t row) const {
    double slack = slack_ + system_.value(system_.slack_of(row));
    for (const std::int32_t element : system_.odd_columns(row)) {
        slack += values_[static_cast<std::size_t>(element)];
    }
    return slack;
}

/// The elements in which the sum with an unused row is odd.
std::span<const std::int32_t> greedy_search::odd_with(std::size_t row) {
    const auto mark = [this](std::int32_t element) -> char& {
        return marks_[static_cast<std::size_t>(element)];
    };
    odd_with_row_.assign(1, system_.slack_of(row));
    for (const std::int32_t element : system_.odd_columns(row)) {
        if (mark(element) == 0) {
            odd_with_row_.push_back(element);
        }
        mark(element) ^= 1;
    }
    for (const std::int32_t element : odd_) {
        if (mark(element) != 0) {
            odd_with_row_.push_back(element);
        }
    }
    for (const std::int32_t element : system_.odd_columns(row)) {
        mark(element) ^= 1;
    }
    return odd_with_row_;
}

/// Adds the sum with the row to `sums`, unless it was added before.
void greedy_search::offer(std::size_t row, odd_sums& sums) {
    if (!sums.has(signature_ ^ odd_sums::signature_of(system_.slack_of(row)))) {
        sums.add_if_violated(odd_with(row), is_odd_ != system_.is_odd(row));
    }
}

/// The unused row whose addition gives the least slack; `system_.rows()` if all are used. Adds
/// every violated sum that it meets to `sums`.
std::size_t greedy_search::best_next(odd_sums& sums) {
    std::size_t best = system_.rows();
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t row = 0; row < system_.rows(); ++row) {
        if (is_used_[row] != 0) {
            continue;
        }
        const double slack = slack_with(row);
        if (slack < slack_limit) {
            offer(row, sums);
        }
        if (slack < least) {
            least = slack;
            best = row;
        }
    }
    return best;
}

void greedy_search::flip(std::int32_t element) {
    const auto position = static_cast<std::size_t>(element);
    marks_[position] ^= 1;
    values_[position] = -values_[position];
}

void greedy_search::add(std::size_t row) {
    slack_ = slack_with(row);
    odd_with(row);
    odd_.swap(odd_with_row_);
    for (const std::int32_t element : system_.odd_columns(row)) {
        flip(element);
    }
    flip(system_.slack_of(row));
    signature_ ^= odd_sums::signature_of(system_.slack_of(row));
    is_odd_ = is_odd_ != system_.is_odd(row);
    is_used_[row] = 1;
}

void greedy_search::run_from(std::size_t start, odd_sums& sums) {
    constexpr int most_steps = 8;
    clear();
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
