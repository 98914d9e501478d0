#pragma once

#include <span>
#include <vector>

#include "cuts/parity_system.hpp"
#include "cuts/vectors.hpp"

namespace zero_half {

/// A sum of rows of a parity system, kept in a working vector.
class row_sum {
public:
    explicit row_sum(const parity_system& system)
        : system_(system), sum_(new_index_set(system.elements())),
          row_(new_index_set(system.elements())) {}

    void clear() {
        zktarn::vector_mod::vector_clear(*sum_);
        is_odd_ = false;
    }
    void add(std::size_t i) {
        zktarn::vector_mod::vector_clear(*row_);
        for (const std::int32_t element : system_.odd_columns(i)) {
            zktarn::vector_mod::vector_add_nz(*row_, element);
        }
        zktarn::vector_mod::vector_add_nz(*row_, system_.slack_of(i));
        zktarn::vector_mod::vectors_calc_sym_diff(*sum_, *row_);
        is_odd_ = is_odd_ != system_.is_odd(i);
    }
    void assign(std::span<const std::int32_t> rows) {
        clear();
        for (const std::int32_t row : rows) {
            add(static_cast<std::size_t>(row));
        }
    }

    bool has(std::int32_t element) const {
        return zktarn::vector_mod::vector_is_elm(*sum_, element) != 0;
    }
    bool is_odd() const { return is_odd_; }
    /// The elements in which the sum is odd.
    std::span<const std::int32_t> odd() {
        odd_.clear();
        for (const auto [element, ignored] : zktarn::entries(sum_)) {
            odd_.push_back(element);
        }
        return odd_;
    }

private:
    const parity_system& system_;
    zktarn::owned_vector sum_;
    zktarn::owned_vector row_;
    bool is_odd_ = false;
    std::vector<std::int32_t> odd_;
};

} // namespace zero_half
