#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "cuts/bound_substitution.hpp"
#include "cuts/integral_rows.hpp"

namespace zero_half {

/// Half of a sum of rows, rounded down, cuts the point off when its right-hand side is odd and its
/// slack is less than 1: the violation is (1 - slack) / 2. The margin is the least violation of a
/// cut.
constexpr double slack_limit = 1.0 - 2e-6;

/// A row modulo 2: the elements in which it is odd.
struct parity_row {
    zktarn::owned_vector odd;
    /// Whether the right-hand side is odd.
    bool is_odd = false;

    void clear();
    void add(const parity_row& other);
};

/// Rows whose memory is kept from one system to the next, because allocation would take longer than
/// the work on the rows.
class parity_rows {
public:
    /// Provides `count` rows with at least the given capacity and undefined contents.
    void resize(std::size_t count, std::int32_t capacity);

    parity_row& operator[](std::size_t i) { return rows_[i]; }
    const parity_row& operator[](std::size_t i) const { return rows_[i]; }
    std::size_t size() const { return size_; }

private:
    std::vector<parity_row> rows_;
    std::size_t size_ = 0;
    std::int32_t capacity_ = 0;
};

/// The rows modulo 2 that can be part of a violated cut at a point (Caprara and Fischetti 1996),
/// reduced: columns at a bound are left out, columns that are odd in the same rows are merged, a
/// column that is odd in only one row is added to the slack of that row, and of rows with the same
/// odd columns only the one with the least slack is kept.
///
/// An element 1..columns() is a column. A larger element is the slack of a row. The slack of a sum
/// of rows is the total value of the elements in which it is odd.
class parity_system {
public:
    void build(std::span<const integral_row> pool, const std::vector<substitution>& bounds,
               const double* point);

    const parity_rows& rows() const { return rows_; }
    std::int32_t columns() const { return columns_; }
    std::int32_t elements() const { return static_cast<std::int32_t>(values_.size()) - 1; }
    double value(std::int32_t element) const { return values_[static_cast<std::size_t>(element)]; }
    bool is_slack(std::int32_t element) const { return element > columns_; }
    /// The element that is the slack of row `i`.
    std::int32_t slack_of(std::size_t i) const {
        return columns_ + 1 + static_cast<std::int32_t>(i);
    }
    /// A random number that identifies the element.
    std::uint64_t signature(std::int32_t element) const {
        return signatures_[static_cast<std::size_t>(element)];
    }
    /// The slack at the point of any row of the pool; negative when the point violates the row.
    double slack_in_pool(std::size_t i) const { return slacks_[i]; }
    /// The row of the pool whose slack the element is.
    int pool_row(std::int32_t slack) const {
        return pool_rows_[static_cast<std::size_t>(slack - columns_ - 1)];
    }
    /// Whether no row has more than two odd columns.
    bool is_graph() const { return is_graph_; }

private:
    std::vector<double> slacks_;
    std::vector<int> pool_rows_;
    /// For each element, counted from 1.
    std::vector<double> values_;
    std::vector<std::uint64_t> signatures_;
    std::int32_t columns_ = 0;
    parity_rows rows_;
    bool is_graph_ = false;
};

} // namespace zero_half
