#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "cuts/bound_substitution.hpp"
#include "cuts/row_pool.hpp"

namespace zero_half {

/// Half of a sum of rows, rounded down, cuts the point off when its right-hand side is odd and its
/// slack is less than 1: the violation is (1 - slack) / 2. The margin is the least violation of a
/// cut.
constexpr double slack_limit = 1.0 - 2e-6;

/// What it costs to change the parity of a sum: one column whose bounds differ by an odd number is
/// substituted by its farther bound, and the slack grows by the difference of the distances.
struct parity_change {
    double cost = std::numeric_limits<double>::infinity();
    /// Counted from 1; 0 for none.
    std::int32_t column = 0;
};

inline const parity_change& cheaper(const parity_change& a, const parity_change& b) {
    return b.cost < a.cost ? b : a;
}

/// The rows modulo 2 that can be part of a violated cut at a point (Caprara and Fischetti 1996),
/// reduced: columns at a bound are left out, columns that are odd in the same rows are merged, a
/// column that is odd in only one row is added to the slack of that row, and a row is left out when
/// another one with the same odd columns has no greater slack, with a parity change and without.
///
/// An element 1..columns() is a column. A larger element is the slack of a row. The slack of a sum
/// of rows is the total value of the elements in which it is odd.
class parity_system {
public:
    /// `rows` are the rows of the pool to be considered, `slacks` their slacks.
    parity_system(const mixed_integer_rows& model, const row_pool& pool,
                  std::span<const double> slacks, const std::vector<substitution>& bounds);

    std::size_t rows() const { return candidates_.size(); }
    std::int32_t columns() const { return columns_; }
    std::int32_t elements() const { return columns_ + static_cast<std::int32_t>(rows()); }
    double value(std::int32_t element) const { return values_[static_cast<std::size_t>(element)]; }
    const parity_change& change(std::int32_t element) const {
        return changes_[static_cast<std::size_t>(element)];
    }
    /// The columns in which row `i` is odd, and whether its right-hand side is odd.
    std::span<const std::int32_t> odd_columns(std::size_t i) const {
        return std::span(entries_).subspan(starts_[i], starts_[i + 1] - starts_[i]);
    }
    bool is_odd(std::size_t i) const { return candidates_[i].is_odd; }

    /// The element that is the slack of row `i`, and the row of which an element is the slack.
    std::int32_t slack_of(std::size_t i) const {
        return columns_ + 1 + static_cast<std::int32_t>(i);
    }
    bool is_slack(std::int32_t element) const { return element > columns_; }
    std::size_t row_of(std::int32_t slack) const {
        return static_cast<std::size_t>(slack - columns_ - 1);
    }
    std::int32_t pool_row(std::size_t i) const { return candidates_[i].pool_row; }

private:
    struct candidate {
        std::int32_t pool_row;
        bool is_odd;
        double slack;
        parity_change change;
    };
    /// Which candidates are odd in a column; equal for columns that are odd in the same ones.
    struct occurrences {
        std::uint64_t signature = 0;
        std::int32_t count = 0;
        std::size_t last = 0;
    };
    /// For each column of the model the element that stands for it, or 0.
    using column_map = std::vector<std::int32_t>;

    void find_candidates(const row_pool& pool, std::span<const double> slacks,
                         const std::vector<substitution>& bounds);
    column_map number_columns(const mixed_integer_rows& model, const row_pool& pool,
                              const std::vector<substitution>& bounds);
    static bool is_at_least_as_good(const candidate& a, const candidate& b);
    void drop_candidates(const row_pool& pool, const column_map& element);
    void fill_rows(const row_pool& pool, const column_map& element);

    std::vector<candidate> candidates_;
    /// For each element, counted from 1.
    std::vector<double> values_;
    std::vector<parity_change> changes_;
    std::int32_t columns_ = 0;
    std::vector<std::size_t> starts_;
    std::vector<std::int32_t> entries_;
};

} // namespace zero_half
