#pragma once

#include <functional>
#include <span>
#include <unordered_set>
#include <vector>

#include "cuts/parity_system.hpp"

namespace zero_half {

/// Returns true when the run has to stop; searches call it every few steps.
using stop_predicate = std::function<bool()>;

/// The sums of rows found so far whose halves cut the point off, each only once.
class odd_sums {
public:
    /// `enough` is the number of sums at which a search may end.
    explicit odd_sums(std::size_t enough) : enough_(enough) {}

    /// Removes all sums. The following sums belong to `system`, which has to outlive them.
    void reset(const parity_system& system);
    /// Keeps the sum when its right-hand side is odd and its slack is below `slack_limit`.
    void add_if_violated(const parity_row& sum);

    std::size_t size() const { return sums_.size(); }
    bool are_enough() const { return sums_.size() >= enough_; }

    /// Sorts by slack plus a price for each row, because short sums make sparse cuts.
    void sort();
    /// The rows of the pool of which sum `i` consists.
    std::span<const int> members(std::size_t i) const;

private:
    struct kept_sum {
        double slack;
        /// The place of the members in `members_`.
        std::size_t first;
        std::size_t count;
    };

    const parity_system* system_ = nullptr;
    std::size_t enough_;
    std::vector<kept_sum> sums_;
    std::vector<int> members_;
    std::unordered_set<std::uint64_t> signatures_;
};

} // namespace zero_half
