#pragma once

#include <functional>
#include <span>
#include <vector>

#include "cuts/hashing.hpp"
#include "cuts/parity_system.hpp"

namespace zero_half {

/// Returns true when the run has to stop; searches call it every few steps.
using stop_predicate = std::function<bool()>;

/// A sum of rows whose half, rounded down, is violated at the point.
struct odd_sum {
    double slack;
    /// Rows of the pool.
    std::span<const std::int32_t> rows;
    /// The column that is substituted by its farther bound, counted from 1; 0 for none.
    std::int32_t changed_column;
};

/// The distinct sums of this kind found so far.
class odd_sums {
public:
    /// `enough` is the number of sums at which a search may end.
    odd_sums(const parity_system& system, std::size_t enough) : system_(system), enough_(enough) {
        signatures_.reset(0);
    }

    /// Stores the sum that is odd in the elements `odd`, if its right-hand side is odd or can be
    /// made odd, and its slack is below `slack_limit`. Returns whether the sum is new.
    bool add_if_violated(std::span<const std::int32_t> odd, bool is_odd);

    /// The exclusive or of the signatures of all slacks in a sum is the signature of the sum.
    static std::uint64_t signature_of(std::int32_t slack) {
        return mixed(static_cast<std::uint64_t>(slack));
    }
    /// Whether a sum with this signature was added.
    bool has(std::uint64_t signature) const { return signatures_.contains(signature); }

    std::size_t size() const { return sums_.size(); }
    bool are_enough() const { return sums_.size() >= enough_; }

    /// Sorts by slack plus a price for each row, because short sums make sparse cuts.
    void sort();
    odd_sum operator[](std::size_t i) const;

private:
    struct kept_sum {
        double slack;
        std::int32_t changed_column;
        /// The position of its rows in `members_`.
        std::size_t first;
        std::size_t count;
    };

    void keep(double slack, std::int32_t changed_column, std::span<const std::int32_t> odd);

    const parity_system& system_;
    std::size_t enough_;
    std::vector<kept_sum> sums_;
    std::vector<std::int32_t> members_;
    signature_map signatures_;
};

} // namespace zero_half
