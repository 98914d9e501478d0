#pragma once

#include <span>
#include <vector>

#include "cuts/parity_system.hpp"

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
    /// A mark gets the bit `touched_mark` when the first row with the element is added.
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

} // namespace zero_half
