#include "cuts/derivation.hpp"

#include <cmath>
#include <utility>

#include "cuts/rounding.hpp"

namespace zero_half {

namespace {

constexpr double no_tolerance = 0.0;

/// Keeps a sum of integers, and notices when it can no longer be exact.
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
void divide_by_common_divisor(cut& from) {
    constexpr double less_than_one = 0.5;
    double divisor = 0.0;
    for (const double each : from.coefficients) {
        divisor = zktarn::util::xgcd_r8(divisor, each, less_than_one);
        if (divisor == 1.0) {
            return;
        }
    }
    for (double& each : from.coefficients) {
        each /= divisor;
    }
    from.right = floor_of(from.right / divisor, no_tolerance);
}

} // namespace

std::optional<cut> derivation::cut_of(std::span<const int> rows, std::span<const integral_row> pool,
                                      const std::vector<substitution>& bounds) {
    exact_sum right;
    sum_.clear();
    for (const int i : rows) {
        const integral_row& each = pool[static_cast<std::size_t>(i)];
        zktarn::vector_mod::vectors_combine(*sum_, *each.coefficients, 1.0, 1.0, no_tolerance);
        right.add(each.right);
    }
    cut made;
    made.columns.reserve(static_cast<std::size_t>(sum_.size()));
    made.coefficients.reserve(static_cast<std::size_t>(sum_.size()));
    exact_sum put_back;
    for (std::int32_t k = 1; k <= sum_.size(); ++k) {
        const std::int32_t j = sum_.index(k);
        const substitution& at = bounds[static_cast<std::size_t>(j)];
        const double sign = at.is_upper ? -1.0 : 1.0;
        const double coefficient = sign * sum_.value(j);
        const double half = zktarn::util::epsilon_floor(coefficient * 0.5, no_tolerance);
        if (std::fabs(coefficient) > largest_coefficient ||
            (half * 2.0 != coefficient && !at.is_bounded())) {
            return std::nullopt;
        }
        right.add(-sum_.value(j) * at.bound);
        put_back.add(sign * half * at.bound);
        if (half != 0.0) {
            made.columns.push_back(j);
            made.coefficients.push_back(sign * half);
        }
        if (at.is_upper) {
            made.from.complemented.push_back(j);
        }
    }
    if (made.columns.empty() || !right.is_exact() || !put_back.is_exact()) {
        return std::nullopt;
    }
    made.right = floor_of(right.value() * 0.5, no_tolerance) + put_back.value();
    made.from.summed.assign(rows.begin(), rows.end());
    divide_by_common_divisor(made);
    return made;
}

integral_row row_of(const cut& from, std::int32_t columns) {
    sparse_vector a(columns);
    for (std::size_t k = 0; k < from.columns.size(); ++k) {
        a.set(from.columns[k], from.coefficients[k]);
    }
    return {std::move(a), from.right, from.from};
}

} // namespace zero_half
