#include "cuts/parity_system.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

#include "cuts/hashing.hpp"

namespace zero_half {

namespace {

using namespace zktarn::vector_mod;

/// Smaller values are rounding errors of the simplex method.
constexpr double negligible = 1e-9;
/// The distance of a column that has no bound. It is finite, because sums of values are updated by
/// subtraction.
constexpr double unbounded_distance = 1e6;

using row_pool = std::span<const integral_row>;
using substitutions = std::vector<substitution>;

/// A row that may be part of a violated cut.
struct candidate {
    int pool_row;
    bool is_odd;
    double slack;

    const zktarn::owned_vector& odd(row_pool pool) const {
        return pool[static_cast<std::size_t>(pool_row)].odd;
    }
};

/// The candidates in which a column is odd.
struct column_support {
    std::uint64_t signature = 0;
    std::int32_t rows = 0;
    std::size_t last_row = 0;
};

struct column_supports {
    /// For each column of the model, counted from 1.
    std::vector<column_support> columns;
    /// The columns off their bounds that are odd in some candidate, in order of first occurrence.
    std::vector<std::int32_t> found;
};

/// The columns of the parity system.
struct column_elements {
    /// For each column of the model, counted from 1, its element; 0 for a column without one.
    std::vector<std::int32_t> of_column;
    /// For each element, counted from 1.
    std::vector<double> values;
};

std::vector<double> slacks_at(const double* point, row_pool pool) {
    std::vector<double> slacks;
    slacks.reserve(pool.size());
    for (const integral_row& row : pool) {
        double slack = row.rhs;
        for (const auto [j, coefficient] : zktarn::entries(row.coefficients)) {
            slack -= coefficient * point[j - 1];
        }
        slacks.push_back(slack);
    }
    return slacks;
}

/// Right-hand side of the row modulo 2 after the bounds were substituted.
bool has_odd_rhs(const integral_row& row, const substitutions& bounds) {
    double rhs = row.rhs;
    for (const auto [j, unused] : zktarn::entries(row.odd)) {
        rhs += bounds[static_cast<std::size_t>(j)].bound;
    }
    return std::fmod(rhs, 2.0) != 0.0;
}

/// The rows whose own slack is small enough.
std::vector<candidate> find_candidates(row_pool pool, const substitutions& bounds,
                                       const std::vector<double>& slacks) {
    std::vector<candidate> candidates;
    for (std::size_t i = 0; i < pool.size(); ++i) {
        if (slacks[i] < slack_limit) {
            candidates.push_back({static_cast<int>(i), has_odd_rhs(pool[i], bounds),
                                  slacks[i] < negligible ? 0.0 : slacks[i]});
        }
    }
    return candidates;
}

column_supports find_supports(const std::vector<candidate>& candidates, row_pool pool,
                              const substitutions& bounds) {
    column_supports supports;
    supports.columns.resize(bounds.size());
    for (std::size_t c = 0; c < candidates.size(); ++c) {
        for (const auto [j, unused] : zktarn::entries(candidates[c].odd(pool))) {
            if (bounds[static_cast<std::size_t>(j)].distance <= negligible) {
                continue;
            }
            column_support& column = supports.columns[static_cast<std::size_t>(j)];
            if (column.rows++ == 0) {
                supports.found.push_back(j);
            }
            column.signature ^= mixed(c);
            column.last_row = c;
        }
    }
    return supports;
}

double value_of(const substitution& column) {
    return std::min(column.distance, unbounded_distance);
}

/// Adds each column that is odd in only one candidate to the slack of that candidate.
std::vector<candidate> absorb_singletons(std::vector<candidate> candidates,
                                         const column_supports& supports,
                                         const substitutions& bounds) {
    for (const std::int32_t j : supports.found) {
        const column_support& column = supports.columns[static_cast<std::size_t>(j)];
        if (column.rows == 1) {
            candidates[column.last_row].slack += value_of(bounds[static_cast<std::size_t>(j)]);
        }
    }
    return candidates;
}

/// Numbers the other columns. Columns that are odd in the same candidates share one element.
column_elements number_columns(const column_supports& supports, const substitutions& bounds) {
    column_elements numbered;
    numbered.of_column.assign(bounds.size(), 0);
    numbered.values.assign(1, 0.0);
    std::unordered_map<std::uint64_t, std::int32_t> known;
    known.reserve(supports.found.size());
    for (const std::int32_t j : supports.found) {
        const column_support& column = supports.columns[static_cast<std::size_t>(j)];
        const double value = value_of(bounds[static_cast<std::size_t>(j)]);
        if (column.rows == 1) {
            continue;
        }
        const auto [place, is_new] =
            known.emplace(column.signature, static_cast<std::int32_t>(numbered.values.size()));
        if (is_new) {
            numbered.of_column[static_cast<std::size_t>(j)] = place->second;
            numbered.values.push_back(value);
        } else {
            numbered.values[static_cast<std::size_t>(place->second)] += value;
        }
    }
    return numbered;
}

std::uint64_t signature_of(const candidate& row, row_pool pool, const column_elements& numbered) {
    std::uint64_t signature = row.is_odd ? mixed(0) : 0;
    for (const auto [j, unused] : zktarn::entries(row.odd(pool))) {
        const std::int32_t element = numbered.of_column[static_cast<std::size_t>(j)];
        if (element != 0) {
            signature ^= mixed(static_cast<std::uint64_t>(element));
        }
    }
    return signature;
}

/// Leaves out candidates with too much slack, those that are zero modulo 2, and of candidates that
/// are equal modulo 2 all but the one with the least slack.
std::vector<candidate> reduced(std::vector<candidate> candidates, row_pool pool,
                               const column_elements& numbered) {
    std::unordered_map<std::uint64_t, std::size_t> best;
    best.reserve(candidates.size());
    std::size_t kept = 0;
    for (const candidate& row : candidates) {
        const std::uint64_t signature =
            row.slack < slack_limit ? signature_of(row, pool, numbered) : 0;
        if (signature == 0) {
            continue;
        }
        const auto [place, is_new] = best.emplace(signature, kept);
        if (is_new) {
            candidates[kept++] = row;
        } else if (row.slack < candidates[place->second].slack) {
            candidates[place->second] = row;
        }
    }
    candidates.resize(kept);
    return candidates;
}

/// Writes the odd columns of a candidate into a row of the system; returns how many there are.
std::int32_t fill_columns(parity_row& row, const zktarn::owned_vector& odd,
                          const column_elements& numbered) {
    row.clear();
    for (const auto [j, unused] : zktarn::entries(odd)) {
        const std::int32_t element = numbered.of_column[static_cast<std::size_t>(j)];
        if (element != 0) {
            vector_add_nz(*row.odd, element);
        }
    }
    return size(row.odd);
}

} // namespace

void parity_row::clear() {
    vector_clear(*odd);
    is_odd = false;
}

void parity_row::add(const parity_row& other) {
    vectors_calc_sym_diff(*odd, *other.odd);
    is_odd = is_odd != other.is_odd;
}

void parity_rows::resize(std::size_t count, std::int32_t capacity) {
    if (capacity > capacity_) {
        rows_.clear();
        capacity_ = capacity + capacity / 2;
    }
    while (rows_.size() < count) {
        rows_.push_back({new_index_set(capacity_)});
    }
    size_ = count;
}

void parity_system::build(std::span<const integral_row> pool,
                          const std::vector<substitution>& bounds, const double* point) {
    slacks_ = slacks_at(point, pool);
    std::vector<candidate> candidates = find_candidates(pool, bounds, slacks_);
    const column_supports supports = find_supports(candidates, pool, bounds);
    candidates = absorb_singletons(std::move(candidates), supports, bounds);
    column_elements numbered = number_columns(supports, bounds);
    candidates = reduced(std::move(candidates), pool, numbered);

    columns_ = static_cast<std::int32_t>(numbered.values.size()) - 1;
    values_ = std::move(numbered.values);
    pool_rows_.clear();
    for (const candidate& row : candidates) {
        pool_rows_.push_back(row.pool_row);
        values_.push_back(row.slack);
    }
    while (signatures_.size() < values_.size()) {
        signatures_.push_back(mixed(signatures_.size()));
    }
    rows_.resize(candidates.size(), elements());
    is_graph_ = true;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        is_graph_ &= fill_columns(rows_[i], candidates[i].odd(pool), numbered) <= 2;
        vector_add_nz(*rows_[i].odd, slack_of(i));
        rows_[i].is_odd = candidates[i].is_odd;
    }
}

} // namespace zero_half
