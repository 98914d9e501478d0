#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "cuts/column_bounds.hpp"
#include "cuts/hashing.hpp"
#include "cuts/row_pool.hpp"

namespace zero_half {

/// Half of a sum of rows, rounded down, is violated at the point if its right-hand side is odd and
/// its slack is less than 1: the violation is (1 - slack) / 2. The margin is the least violation of
/// a cut.
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

/// Rows of the pool modulo 2, without the rows and columns that no violated cut needs.
///
/// - A column at a bound is left out.
/// - A column that is odd in only one row is added to the slack of that row.
/// - A row whose slack reaches the limit is left out.
/// - A row is left out if another row with the same odd columns has no greater slack, both with and
///   without a parity change.
///
/// The rules are repeated until none applies, because one rule can enable another.
class parity_reduction {
public:
    struct row {
        std::int32_t pool_row;
        bool is_odd;
        bool is_removed;
        double slack;
        parity_change change;
        /// Its entries.
        std::size_t first;
        std::size_t end;
    };
    struct column {
        double value;
        parity_change change;
        /// The number of remaining rows with this column, and the exclusive or of their indices,
        /// which is the index of the row if the number is 1. 0: the column is left out.
        std::int32_t count;
        std::size_t rows;
    };

    parity_reduction(const mixed_integer_rows& model, const row_pool& pool,
                     std::span<const double> slacks, const std::vector<substitution>& bounds);

    /// All rows, removed ones included.
    std::span<const row> rows() const { return rows_; }
    std::span<const column> columns() const { return columns_; }
    /// The odd columns of a row, counted from 0, left-out columns included.
    std::span<const std::int32_t> entries(const row& each) const {
        return std::span(entries_).subspan(each.first, each.end - each.first);
    }

private:
    void add_row(const mixed_integer_rows& model, const row_pool& pool, std::size_t pool_row,
                 double slack, const std::vector<substitution>& bounds);
    void absorb(column& single);
    void remove(row& unwanted);
    void remove_rows_with_slack();
    bool remove_dominated_rows();
    std::uint64_t signature_of(const row& each) const;

    std::vector<row> rows_;
    std::vector<column> columns_;
    std::vector<std::int32_t> entries_;
    /// For each column of the model its number here, -1 for none.
    std::vector<std::int32_t> number_;
    /// Rows whose slack has reached the limit.
    std::vector<std::size_t> open_;
    signature_map best_;
};

} // namespace zero_half
