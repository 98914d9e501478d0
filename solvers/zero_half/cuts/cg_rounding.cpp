#include "cuts/cg_rounding.hpp"

#include <cmath>
#include <utility>

#include "cuts/exact_limits.hpp"
#include "input/rounding.hpp"

namespace zero_half {

namespace {

constexpr double no_tolerance = 0.0;

/// A sum of integers that detects when it may no longer be exact.
class exact_sum {
public:
    void add(double term) {
        value_ += term;
        magnitude_ += std::fabs(term);
    }
    double value() const { return value_; }
    bool is_exact() const { return magnitude_ <= largest_exact; }

private:
    double value_ = 0.0;
    double magnitude_ = 0.0;
};

/// Divides by the greatest common divisor of the coefficients, and rounds once more.
void divide_by_common_divisor(cut& made) {
    constexpr double less_than_one = 0.5;
    double divisor = 0.0;
    for (const double each : made.coefficients) {
        divisor = zktarn::util::xgcd_r8(divisor, each, less_than_one);
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

void cg_rounding::add_row(std::size_t row) {
    const std::span<const std::int32_t> columns = pool_.columns(row);
    const std::span<const double> coefficients = pool_.coefficients(row);
    zktarn::vector_mod::vector_clear(*row_);
    for (std::size_t k = 0; k < columns.size(); ++k) {
        zktarn::vector_mod::vector_add_nz(*row_, columns[k], coefficients[k]);
    }
    zktarn::vector_mod::vectors_combine(*sum_, *row_, 1.0, 1.0, no_tolerance);
}

std::optional<cut> cg_rounding::halved_sum(const odd_sum& members,
                                           const std::vector<substitution>& bounds,
                                           const double* point) {
    cut made;
    made.origin.divisor = 2.0;
    exact_sum rhs;
    zktarn::vector_mod::vector_clear(*sum_);
    for (const std::int32_t row : members.rows) {
        add_row(static_cast<std::size_t>(row));
        rhs.add(pool_.rhs(static_cast<std::size_t>(row)));
        made.origin.terms.push_back({row, false, 1.0});
    }
    exact_sum put_back;
    for (const auto [j, coefficient] : zktarn::entries(sum_)) {
        const substitution& nearest = bounds[static_cast<std::size_t>(j)];
        const substitution used =
            j == members.changed_column ? other_bound(model_, j, nearest) : nearest;
        const double sign = used.is_upper ? -1.0 : 1.0;
        const double half = sign * zktarn::util::epsilon_floor(sign * coefficient * 0.5, 0.0);
        if (std::fabs(coefficient) > largest_coefficient ||
            (half * 2.0 != coefficient && !used.is_bounded())) {
            return std::nullopt;
        }
        rhs.add(-coefficient * used.bound);
        put_back.add(half * used.bound);
        if (half != 0.0) {
            made.columns.push_back(j);
            made.coefficients.push_back(half);
        }
    }
    if (made.columns.empty() || !rhs.is_exact() || !put_back.is_exact()) {
        return std::nullopt;
    }
    made.rhs = floor_of(rhs.value() * 0.5, no_tolerance) + put_back.value();
    divide_by_common_divisor(made);
    set_violation(made, point);
    return made;
}

} // namespace zero_half
