#include "lp/proofs.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zero_half {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double roundoff = std::numeric_limits<double>::epsilon();

double as_infinity(double bound) {
    return bound >= 1e20 ? infinity : bound <= -1e20 ? -infinity : bound;
}

/// How far a number of a file may be from the decimal that it stands for: half a unit in the last
/// place, nothing for integers.
double decimal_error(double number) {
    return std::trunc(number) == number ? 0.0 : std::ldexp(std::fabs(number), -53);
}

/// A sum of products with a bound on its rounding error. The error of each operation is computed
/// exactly (Dekker 1971, Knuth 1969), so the bound is 0 when no operation rounded.
class bounded_sum {
public:
    void add(double a, double b = 1.0) {
        const double product = a * b;
        const double sum = value_ + product;
        const double rest = sum - value_;
        const double sum_error = (value_ - (sum - rest)) + (product - rest);
        error_ += std::fabs(std::fma(a, b, -product)) + std::fabs(sum_error);
        value_ = sum;
    }
    /// Adds to the bound on the error.
    void blur(double error) { error_ += error; }
    double value() const { return value_; }
    /// The factor covers the rounding of the sum of errors for up to 2^31 terms.
    double error() const { return error_ * (1.0 + 1e-6); }
    /// Bounds on the exact sum. Where a rounding error is below half a unit in the last place of
    /// the sum, the difference of both would be the sum again, so it is moved to the next number.
    double least() const {
        return error_ == 0.0 ? value_ : std::nextafter(value_ - error(), -infinity);
    }
    double most() const {
        return error_ == 0.0 ? value_ : std::nextafter(value_ + error(), infinity);
    }

private:
    double value_ = 0.0;
    double error_ = 0.0;
};

/// The bound at which factor * x is least for lower <= x <= upper; infinite when there is no least
/// value.
double least_at(double factor, double lower, double upper) {
    return factor == 0.0 ? 0.0 : factor > 0.0 ? lower : upper;
}

bool is_moderate_number(double value) {
    constexpr double largest_moderate = 1e9;
    return std::fabs(value) <= largest_moderate || std::fabs(value) >= 1e20;
}

bool are_moderate(const double* values, int n) {
    return std::all_of(values, values + n, is_moderate_number);
}

} // namespace

safe_bound::safe_bound(const ClpSimplex& lp) {
    const int n = lp.numberColumns();
    const int m = lp.numberRows();
    const CoinPackedMatrix& matrix = *lp.matrix();
    is_moderate_ = are_moderate(lp.getColLower(), n) && are_moderate(lp.getColUpper(), n) &&
                   are_moderate(lp.getRowLower(), m) && are_moderate(lp.getRowUpper(), m) &&
                   are_moderate(lp.getObjCoefficients(), n) &&
                   are_moderate(matrix.getElements(), static_cast<int>(matrix.getNumElements()));
    for (int j = 0; j < n; ++j) {
        columns_.push_back({as_infinity(lp.getColLower()[j]), as_infinity(lp.getColUpper()[j])});
    }
    CoinPackedMatrix rows;
    rows.reverseOrderedCopyOf(matrix);
    constexpr int sweeps = 3;
    for (int sweep = 0; sweep < sweeps; ++sweep) {
        for (int i = 0; i < m; ++i) {
            imply_bounds(rows, i, as_infinity(lp.getRowUpper()[i]), 1.0);
            imply_bounds(rows, i, -as_infinity(lp.getRowLower()[i]), -1.0);
        }
    }
}

/// Derives bounds of columns from sign * row <= side. A column has one if the activity of the row's
/// other columns is bounded from below.
void safe_bound::imply_bounds(const CoinPackedMatrix& rows, int i, double side, double sign) {
    constexpr double side_tolerance = 1e-9;
    const int* const columns = rows.getIndices() + rows.getVectorFirst(i);
    const double* const elements = rows.getElements() + rows.getVectorFirst(i);
    const int size = rows.getVectorSize(i);
    const auto bound_of = [&](int k) {
        const range& column = columns_[static_cast<std::size_t>(columns[k])];
        return least_at(sign * elements[k], column.lower, column.upper);
    };
    bounded_sum activity;
    int unbounded = 0;
    for (int k = 0; k < size; ++k) {
        if (std::isfinite(bound_of(k))) {
            activity.add(sign * elements[k], bound_of(k));
            activity.blur(decimal_error(elements[k]) * std::fabs(bound_of(k)));
        } else {
            ++unbounded;
        }
    }
    for (int k = 0; k < size && side < infinity && unbounded <= 1; ++k) {
        range& column = columns_[static_cast<std::size_t>(columns[k])];
        const double factor = sign * elements[k];
        double& opposite = factor > 0.0 ? column.upper : column.lower;
        const bool is_bounded = std::isfinite(bound_of(k));
        if (factor == 0.0 || std::isfinite(opposite) || (is_bounded && unbounded > 0)) {
            continue;
        }
        bounded_sum others = activity;
        if (is_bounded) {
            others.add(-factor, bound_of(k));
        }
        others.add(-side);
        others.blur(side_tolerance * std::max(1.0, std::fabs(side)));
        const double limit = (others.error() - others.value()) / factor;
        opposite = limit + std::copysign(4.0 * roundoff * std::fabs(limit), factor);
    }
}

std::optional<double> safe_bound::of(const ClpSimplex& lp) const {
    return evaluate(lp, infinity, 0.0);
}

std::optional<double> safe_bound::within(double radius, const ClpSimplex& lp) const {
    return evaluate(lp, radius, 0.0);
}

std::optional<double> safe_bound::with_tolerance(double tolerance, const ClpSimplex& lp) const {
    return evaluate(lp, infinity, tolerance);
}

std::optional<double> safe_bound::evaluate(const ClpSimplex& lp, double radius,
                                           double tolerance) const {
    const double* const prices = lp.getRowPrice();
    std::vector<double> duals(static_cast<std::size_t>(lp.numberRows()));
    bounded_sum bound;
    double offset = 0.0;
    lp.getDblParam(ClpObjOffset, offset);
    bound.add(-offset);
    for (int i = 0; i < lp.numberRows(); ++i) {
        const double side =
            as_infinity(prices[i] > 0.0 ? lp.getRowLower()[i] : lp.getRowUpper()[i]);
        if (std::isfinite(side)) {
            duals[static_cast<std::size_t>(i)] = prices[i];
            bound.add(prices[i], side);
            bound.blur(std::fabs(prices[i]) *
                       (decimal_error(side) + tolerance * std::max(1.0, std::fabs(side))));
        }
    }
    const CoinPackedMatrix& matrix = *lp.matrix();
    for (int j = 0; j < lp.numberColumns(); ++j) {
        bounded_sum reduced_cost;
        const double cost = lp.getObjCoefficients()[j];
        reduced_cost.add(cost);
        reduced_cost.blur(decimal_error(cost));
        const CoinBigIndex first = matrix.getVectorFirst(j);
        for (CoinBigIndex k = first; k < first + matrix.getVectorSize(j); ++k) {
            const double dual = duals[static_cast<std::size_t>(matrix.getIndices()[k])];
            reduced_cost.add(-dual, matrix.getElements()[k]);
            reduced_cost.blur(std::fabs(dual) * decimal_error(matrix.getElements()[k]));
        }
        // factor * x at its least x is a concave function of the factor, so it is least at one of
        // the ends of the interval that contains the reduced cost.
        const range column = columns_[static_cast<std::size_t>(j)].within(radius);
        const double low = reduced_cost.least();
        const double high = reduced_cost.most();
        const double low_at = least_at(low, column.lower, column.upper);
        const double high_at = least_at(high, column.lower, column.upper);
        if (!std::isfinite(low_at) || !std::isfinite(high_at)) {
            return std::nullopt;
        }
        if (low * low_at <= high * high_at) {
            bound.add(low, low_at);
        } else {
            bound.add(high, high_at);
        }
    }
    return std::isfinite(bound.least()) ? std::optional(bound.least()) : std::nullopt;
}

} // namespace zero_half
