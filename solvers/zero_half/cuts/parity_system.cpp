#include "cuts/parity_system.hpp"

#include <algorithm>

#include "cuts/hashing.hpp"
#include "cuts/integers.hpp"

namespace zero_half {

namespace {

/// Smaller distances and slacks are rounding errors of the simplex method.
constexpr double negligible = 1e-9;
/// Replaces an infinite distance, because searches add values up and subtract them again.
constexpr double far_away = 1e6;

parity_change change_of(const mixed_integer_rows& model, std::int32_t column,
                        const substitution& nearest) {
    const substitution other = other_bound(model, column, nearest);
    if (!other.is_bounded() || !is_odd_integer(other.bound - nearest.bound)) {
        return {};
    }
    return {other.distance - nearest.distance, column};
}

} // namespace

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
        /// The number of remaining rows with this column; 0 if the column is left out.
        std::int32_t count;
        /// The exclusive or of the indices of these rows: the index of the last one that remains.
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

namespace {

/// Whether the first of two rows with equal odd columns can replace the second in every sum.
bool is_at_least_as_good(const parity_reduction::row& a, const parity_reduction::row& b) {
    return a.slack <= b.slack && a.slack + a.change.cost <= b.slack + b.change.cost;
}

} // namespace

parity_reduction::parity_reduction(const mixed_integer_rows& model, const row_pool& pool,
                                   std::span<const double> slacks,
                                   const std::vector<substitution>& bounds)
    : number_(bounds.size(), -1) {
    for (std::size_t i = 0; i < slacks.size(); ++i) {
        if (slacks[i] < slack_limit) {
            add_row(model, pool, i, slacks[i], bounds);
        }
    }
    for (column& each : columns_) {
        if (each.count == 1) {
            absorb(each);
        }
    }
    do {
        remove_rows_with_slack();
    } while (remove_dominated_rows());
}

void parity_reduction::add_row(const mixed_integer_rows& model, const row_pool& pool,
                               std::size_t pool_row, double slack,
                               const std::vector<substitution>& bounds) {
    const std::size_t index = rows_.size();
    const std::size_t first = entries_.size();
    bool is_odd = is_odd_integer(pool.rhs(pool_row));
    for (const std::int32_t j : pool.odd_columns(pool_row)) {
        const substitution& nearest = bounds[static_cast<std::size_t>(j)];
        is_odd = is_odd != is_odd_integer(nearest.bound);
        if (nearest.distance <= negligible) {
            continue;
        }
        std::int32_t& number = number_[static_cast<std::size_t>(j)];
        if (number < 0) {
            number = static_cast<std::int32_t>(columns_.size());
            columns_.push_back(
                {std::min(nearest.distance, far_away), change_of(model, j, nearest), 0, 0});
        }
        column& own = columns_[static_cast<std::size_t>(number)];
        ++own.count;
        own.rows ^= index;
        entries_.push_back(number);
    }
    rows_.push_back({static_cast<std::int32_t>(pool_row),
                     is_odd,
                     false,
                     slack < negligible ? 0.0 : slack,
                     {},
                     first,
                     entries_.size()});
}

/// Adds a column that is odd in only one row to the slack of that row.
void parity_reduction::absorb(column& single) {
    row& only = rows_[single.rows];
    const bool was_below = only.slack < slack_limit;
    only.slack += single.value;
    only.change = cheaper(only.change, single.change);
    single.count = 0;
    if (was_below && only.slack >= slack_limit) {
        open_.push_back(single.rows);
    }
}

void parity_reduction::remove(row& unwanted) {
    const auto index = static_cast<std::size_t>(&unwanted - rows_.data());
    unwanted.is_removed = true;
    for (const std::int32_t number : entries(unwanted)) {
        column& each = columns_[static_cast<std::size_t>(number)];
        if (each.count == 0) {
            continue;
        }
        --each.count;
        each.rows ^= index;
        if (each.count == 1) {
            absorb(each);
        }
    }
}

void parity_reduction::remove_rows_with_slack() {
    while (!open_.empty()) {
        row& next = rows_[open_.back()];
        open_.pop_back();
        if (!next.is_removed) {
            remove(next);
        }
    }
}

/// Rows with equal signatures have the same odd columns and right-hand sides of the same parity.
std::uint64_t parity_reduction::signature_of(const row& each) const {
    std::uint64_t signature = each.is_odd ? mixed(0) : 0;
    for (const std::int32_t number : entries(each)) {
        if (columns_[static_cast<std::size_t>(number)].count > 0) {
            signature ^= mixed(static_cast<std::uint64_t>(number) + 1);
        }
    }
    return signature;
}

/// Removes each row that another one can replace. Returns whether there was one.
bool parity_reduction::remove_dominated_rows() {
    bool is_changed = false;
    best_.reset(rows_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        row& each = rows_[i];
        if (each.is_removed || each.slack >= slack_limit) {
            continue;
        }
        const std::uint64_t signature = signature_of(each);
        const auto [first, is_new] = best_.insert(signature, i);
        const bool is_empty = signature == 0 && each.change.column == 0;
        const bool is_compared = !is_new && !rows_[first].is_removed;
        row* unwanted = nullptr;
        if (is_empty || (is_compared && is_at_least_as_good(rows_[first], each))) {
            unwanted = &each;
        } else if (is_compared && is_at_least_as_good(each, rows_[first])) {
            unwanted = &rows_[first];
            best_.set(signature, i);
        }
        if (unwanted != nullptr) {
            remove(*unwanted);
            is_changed = true;
        }
    }
    return is_changed;
}

parity_system::parity_system(const mixed_integer_rows& model, const row_pool& pool,
                             std::span<const double> slacks,
                             const std::vector<substitution>& bounds) {
    const parity_reduction reduced(model, pool, slacks, bounds);
    fill_rows(reduced, number_columns(reduced));
}

/// Numbers the columns, and merges those that are odd in the same rows.
parity_system::column_map parity_system::number_columns(const parity_reduction& reduced) {
    std::vector<std::uint64_t> signatures(reduced.columns().size());
    for (std::size_t i = 0; i < reduced.rows().size(); ++i) {
        const parity_reduction::row& each = reduced.rows()[i];
        for (const std::int32_t number : reduced.entries(each)) {
            signatures[static_cast<std::size_t>(number)] ^= each.is_removed ? 0 : mixed(i);
        }
    }
    column_map element(signatures.size());
    values_.assign(1, 0.0);
    changes_.assign(1, {});
    signature_map known;
    known.reset(signatures.size());
    for (std::size_t k = 0; k < signatures.size(); ++k) {
        const parity_reduction::column& each = reduced.columns()[k];
        if (each.count == 0) {
            continue;
        }
        const auto [first, is_new] = known.insert(signatures[k], values_.size());
        if (is_new) {
            element[k] = static_cast<std::int32_t>(first);
            values_.push_back(each.value);
            changes_.push_back(each.change);
        } else {
            values_[first] += each.value;
            changes_[first] = cheaper(changes_[first], each.change);
        }
    }
    columns_ = static_cast<std::int32_t>(values_.size()) - 1;
    return element;
}

void parity_system::fill_rows(const parity_reduction& reduced, const column_map& element) {
    starts_.assign(1, 0);
    for (const parity_reduction::row& each : reduced.rows()) {
        if (each.is_removed) {
            continue;
        }
        for (const std::int32_t number : reduced.entries(each)) {
            if (const std::int32_t e = element[static_cast<std::size_t>(number)]; e != 0) {
                entries_.push_back(e);
            }
        }
        most_odd_columns_ = std::max(most_odd_columns_, entries_.size() - starts_.back());
        starts_.push_back(entries_.size());
        rows_.push_back({each.pool_row, each.is_odd});
        values_.push_back(each.slack);
        changes_.push_back(each.change);
    }
}

} // namespace zero_half
