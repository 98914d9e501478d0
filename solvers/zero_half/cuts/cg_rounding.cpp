#include "cuts/cg_rounding.hpp"

#include <cmath>
#include <new>
#include <utility>

namespace zero_half {

namespace {

constexpr double no_tolerance = 0.0;

/// Divides by the greatest common divisor of the coefficients, and rounds the right-hand side down
/// once more.
void divide_by_common_divisor(cut& made) {
    double divisor = 0.0;
    for (const double each : made.coefficients) {
        divisor = common_divisor(divisor, each);
        if (divisor == 1.0) {
            return;
        }
    }
    for (double& each : made.coefficients) {
        each /= divisor;
    }
    made.rhs = floor_of(made.rhs / divisor, no_tolerance);
    made.origin.divisor *= divisor;
}

void set_violation(cut& made, const double* point) {
    double activity = 0.0;
    double square = 0.0;
    for (std::size_t k = 0; k < made.columns.size(); ++k) {
        activity += made.coefficients[k] * point[made.columns[k] - 1];
        square += made.coefficients[k] * made.coefficients[k];
    }
    made.violation = activity - made.rhs;
    made.norm = std::sqrt(square);
}

} // namespace

cg_rounding::cg_rounding(const mixed_integer_rows& model, const row_pool& pool)
    : model_(model), pool_(pool), sum_(model.column_count()) {
    if (!sum_) {
        throw std::bad_alloc();
    }
}

/// Adds the rows up in `sum_`. Entries whose coefficients cancel stay in the sum with the
/// coefficient 0.
void cg_rounding::add_up(std::span<const std::int32_t> rows) {
    zktarn::vector_mod::vector_clear(*sum_);
    for (const std::int32_t row : rows) {
        const auto columns = pool_.columns(static_cast<std::size_t>(row));
        const auto coefficients = pool_.coefficients(static_cast<std::size_t>(row));
        for (std::size_t k = 0; k < columns.size(); ++k) {
            if (zktarn::vector_mod::vector_is_elm(*sum_, columns[k]) != 0) {
                const double before = zktarn::vector_mod::vector_get_coef(*sum_, columns[k]);
                zktarn::vector_mod::vector_set_coef(*sum_, columns[k], before + coefficients[k]);
            } else {
                zktarn::vector_mod::vector_add_nz(*sum_, columns[k], coefficients[k]);
            }
        }
    }
}

void cg_rounding::begin(std::int64_t divisor) {
    divisor_ = divisor;
    rhs_ = {};
    bound_terms_ = {};
    columns_.clear();
    coefficients_.clear();
}

/// Substitutes a column, and divides and rounds its coefficient. Returns false when rounding needs
/// a bound that the column does not have, or when the coefficient is too large.
bool cg_rounding::divide(std::int32_t column, double coefficient, const substitution& used) {
    if (std::fabs(coefficient) > largest_coefficient) {
        return false;
    }
    const double quotient = rounded_quotient(coefficient, divisor_, used.is_upper);
    if (quotient * static_cast<double>(divisor_) != coefficient && !used.is_bounded()) {
        return false;
    }
    rhs_.add(-coefficient * used.bound);
    bound_terms_.add(quotient * used.bound);
    if (quotient != 0.0) {
        columns_.push_back(column);
        coefficients_.push_back(quotient);
    }
    return true;
}

std::optional<cut> cg_rounding::made_of(std::span<const std::int32_t> rows, const double* point) {
    if (columns_.empty() || !rhs_.is_exact() || !bound_terms_.is_exact()) {
        return std::nullopt;
    }
    cut made;
    made.columns = columns_;
    made.coefficients = coefficients_;
    made.rhs = rounded_quotient(rhs_.value(), divisor_, false) + bound_terms_.value();
    made.origin.divisor = static_cast<double>(divisor_);
    for (const std::int32_t row : rows) {
        made.origin.terms.push_back({row, false, 1.0});
    }
    divide_by_common_divisor(made);
    set_violation(made, point);
    return made;
}

std::optional<cut> cg_rounding::halved_sum(const odd_sum& members,
                                           const std::vector<substitution>& bounds,
                                           const double* point) {
    begin(2);
    add_up(members.rows);
    for (const std::int32_t row : members.rows) {
        rhs_.add(pool_.rhs(static_cast<std::size_t>(row)));
    }
    for (const auto [j, coefficient] : zktarn::entries(sum_)) {
        const substitution& nearest = bounds[static_cast<std::size_t>(j)];
        const bool is_halved =
            divide(j, coefficient,
                   j == members.changed_column ? other_bound(model_, j, nearest) : nearest);
        if (!is_halved) {
            return std::nullopt;
        }
    }
    return made_of(members.rows, point);
}

std::optional<cut> cg_rounding::divided_row(std::int32_t row, std::int64_t divisor,
                                            std::span<const substitution> used,
                                            const double* point) {
    begin(divisor);
    const auto pool_row = static_cast<std::size_t>(row);
    const auto columns = pool_.columns(pool_row);
    const auto coefficients = pool_.coefficients(pool_row);
    rhs_.add(pool_.rhs(pool_row));
    for (std::size_t k = 0; k < columns.size(); ++k) {
        if (!divide(columns[k], coefficients[k], used[k])) {
            return std::nullopt;
        }
    }
    return made_of(std::span(&row, 1), point);
}

} // namespace zero_half
