#pragma once

#include <functional>
#include <span>
#include <unordered_set>
#include <utility>
#include <vector>

#include "cuts/parity_system.hpp"

namespace zero_half {

/// The sums found so far that cut the point off, each once.
class odd_sums {
public:
    /// `should_stop` is asked now and then by those who look for sums.
    explicit odd_sums(
        std::size_t enough, std::function<bool()> should_stop = [] { return false; })
        : enough_(enough), should_stop_(std::move(should_stop)) {}

    void start(const parity_system& of);
    /// Keeps a sum if it cuts the point off.
    void note(const parity_row& found);

    std::size_t size() const { return all_.size(); }
    bool is_stopped() const { return should_stop_(); }
    bool are_enough() const { return all_.size() >= enough_ || is_stopped(); }

    /// Puts those first that give little away and have few rows: short sums make sparse cuts.
    void sort();
    /// The rows of the pool that the sum at place `i` is of.
    std::span<const int> members(std::size_t i) const;

private:
    struct sum {
        double given_away;
        std::size_t first;
        std::size_t count;
    };

    const parity_system* of_ = nullptr;
    std::size_t enough_;
    std::function<bool()> should_stop_;
    std::vector<sum> all_;
    std::vector<int> members_;
    std::unordered_set<std::uint64_t> seen_;
};

} // namespace zero_half
