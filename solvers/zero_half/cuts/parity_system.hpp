#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "cuts/integral_rows.hpp"

/// Rows modulo 2 at a point, as few and as short as they can be made.

namespace zero_half {

/// A column as its distance to the nearest bound: x = bound + value, or x = bound - value.
struct substitution {
    double bound = 0.0;
    double value = std::numeric_limits<double>::infinity();
    bool is_upper = false;

    bool is_bounded() const { return value < std::numeric_limits<double>::infinity(); }
};

/// A sum with an odd right-hand side cuts the point off when it gives away less than 1; half of
/// what is missing is the violation, which has to be worth a cut.
constexpr double too_much_to_give = 1.0 - 2e-6;

/// For each column, counted from 1.
std::vector<substitution> nearest_bounds(const model& from, const double* point);

/// A sum of rows modulo 2: the elements that it has an odd number of times.
struct parity_row {
    sparse_vector odd;
    bool is_odd = false;

    void clear();
    void add(const parity_row& other);
};

/// Rows kept from one system to the next, since memory costs more than what is done with it.
class parity_rows {
public:
    /// Makes `count` rows of at least that capacity; what is in them is not defined.
    void resize(std::size_t count, std::int32_t capacity);

    parity_row& operator[](std::size_t i) { return rows_[i]; }
    const parity_row& operator[](std::size_t i) const { return rows_[i]; }
    std::size_t size() const { return size_; }

private:
    std::vector<parity_row> rows_;
    std::size_t size_ = 0;
    std::int32_t capacity_ = 0;
};

/// The rows that can be part of a violated cut. An element 1..columns() is a column off its bounds,
/// one beyond is the slack of a row; each has a value, which a sum that is odd there gives away.
class parity_system {
public:
    void build(std::span<const integral_row> pool, const std::vector<substitution>& bounds,
               const double* point);

    const parity_rows& rows() const { return rows_; }
    std::int32_t columns() const { return columns_; }
    std::int32_t elements() const { return static_cast<std::int32_t>(values_.size()) - 1; }
    double value(std::int32_t element) const { return values_[static_cast<std::size_t>(element)]; }
    bool is_slack(std::int32_t element) const { return element > columns_; }
    /// The slack of the row at place `i`, as an element.
    std::int32_t slack_of(std::size_t i) const {
        return columns_ + 1 + static_cast<std::int32_t>(i);
    }
    /// A number for an element that has nothing in common with that of another one.
    std::uint64_t signature(std::int32_t element) const {
        return signatures_[static_cast<std::size_t>(element)];
    }
    /// The slack of any row of the pool at the point; below 0 where that violates it.
    double slack_in_pool(std::size_t i) const { return slacks_[i]; }
    /// The place in the pool of the row whose slack an element is.
    int pool_row(std::int32_t slack) const {
        return candidates_[static_cast<std::size_t>(slack - columns_ - 1)].pool_row;
    }
    /// Whether no row has more than two odd columns.
    bool is_graph() const { return is_graph_; }

private:
    struct candidate {
        int pool_row;
        bool is_odd;
        double slack;
    };
    /// What tells columns from each other: the candidates that they are odd in.
    struct column_look {
        std::uint64_t signature = 0;
        std::int32_t rows = 0;
        std::size_t last_row = 0;
    };

    void compute_slacks(std::span<const integral_row> pool, const double* point);
    void find_candidates(std::span<const integral_row> pool,
                         const std::vector<substitution>& bounds);
    void look_at_columns(std::span<const integral_row> pool,
                         const std::vector<substitution>& bounds);
    void number_columns(const std::vector<substitution>& bounds);
    void drop_candidates(std::span<const integral_row> pool);
    void fill_rows(std::span<const integral_row> pool);

    std::vector<double> slacks_;
    std::vector<candidate> candidates_;
    std::vector<column_look> looks_;
    std::vector<std::int32_t> seen_;
    /// For each column of the model its element, or 0.
    std::vector<std::int32_t> element_;
    /// For each element, counted from 1.
    std::vector<double> values_;
    std::vector<std::uint64_t> signatures_;
    std::int32_t columns_ = 0;
    parity_rows rows_;
    bool is_graph_ = false;
};

} // namespace zero_half
