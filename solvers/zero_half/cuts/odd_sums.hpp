#pragma once

#include <functional>
#include <span>
#include <vector>

#include "cuts/hashing.hpp"
#include "cuts/parity_system.hpp"

/// Sums of rows of a parity system: a single one, and the set of the violated ones.

namespace zero_half {

/// A sum of rows of a parity system.
class row_sum {
public:
    explicit row_sum(const parity_system& system)
        : system_(system), marks_(static_cast<std::size_t>(system.elements()) + 1) {}

    void clear() {
        for (const std::int32_t element : touched_) {
            mark(element) = 0;
        }
        touched_.clear();
        is_odd_ = false;
    }
    void add(std::size_t i) {
        for (const std::int32_t element : system_.odd_columns(i)) {
            flip(element);
        }
        flip(system_.slack_of(i));
        is_odd_ = is_odd_ != system_.is_odd(i);
    }
    void assign(std::span<const std::int32_t> rows) {
        clear();
        for (const std::int32_t row : rows) {
            add(static_cast<std::size_t>(row));
        }
    }

    bool is_odd() const { return is_odd_; }
    /// The elements in which the sum is odd.
    std::span<const std::int32_t> odd() {
        odd_.clear();
        for (const std::int32_t element : touched_) {
            if (mark(element) == odd_mark) {
                odd_.push_back(element);
            }
        }
        return odd_;
    }

private:
    /// The mark of an element is 0 until a row with this element is added; then it is one of these.
    static constexpr char odd_mark = 3;
    static constexpr char touched_mark = 2;

    char& mark(std::int32_t element) { return marks_[static_cast<std::size_t>(element)]; }
    void flip(std::int32_t element) {
        if (mark(element) == 0) {
            touched_.push_back(element);
        }
        mark(element) = mark(element) == odd_mark ? touched_mark : odd_mark;
    }

    const parity_system& system_;
    std::vector<char> marks_;
    /// The elements of all rows that were added.
    std::vector<std::int32_t> touched_;
    std::vector<std::int32_t> odd_;
    bool is_odd_ = false;
};

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

/// The distinct violated sums found so far.
class odd_sums {
public:
    /// `enough` is the number of sums at which a search may end.
    odd_sums(const parity_system& system, std::size_t enough) : system_(system), enough_(enough) {
        signatures_.reset(0);
    }

    /// Stores the sum that is odd in the elements `odd`, if it is new, its right-hand side is odd
    /// or can be made odd, and its slack is below `slack_limit`. Returns whether it was stored.
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
