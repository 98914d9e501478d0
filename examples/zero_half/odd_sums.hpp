#pragma once

#include <span>
#include <unordered_set>
#include <vector>

#include "parity_system.hpp"

namespace zero_half {

/// The sums found so far that cut the point off, each once.
class odd_sums {
public:
    explicit odd_sums(std::size_t enough) : enough_(enough) {}

    void start(const parity_system& of);
    /// Keeps a sum if it cuts the point off.
    void note(const parity_row& found);

    std::size_t size() const { return all_.size(); }
    bool are_enough() const { return all_.size() >= enough_; }

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
    std::vector<sum> all_;
    std::vector<int> members_;
    std::unordered_set<std::uint64_t> seen_;
};

} // namespace zero_half
