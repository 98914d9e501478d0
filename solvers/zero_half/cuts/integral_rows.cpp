#include "cuts/integral_rows.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <utility>

#include "cuts/rounding.hpp"

namespace zero_half {

namespace {

using zktarn::flag;

constexpr double integrality_tolerance = 1e-9;
constexpr double no_tolerance = 0.0;
/// Where its tolerance is one half, the floor is the nearest integer.
constexpr double nearest = 0.5;

sparse_vector odd_support(const sparse_vector& a) {
    sparse_vector odd(a.capacity());
    zktarn::vector_mod::vectors_combine(*odd, *a, 1.0, 1.0, no_tolerance);
    zktarn::vector_mod::vector_mod2(*odd, no_tolerance);
    return odd;
}

/// One row of the model, by columns counted from 0.
struct model_row {
    std::span<const int> columns;
    std::span<const double> values;
};

model_row row_of(const model& from, int i) {
    const int first = from.rows.getVectorFirst(i);
    const auto size = static_cast<std::size_t>(from.rows.getVectorSize(i));
    return {{from.rows.getIndices() + first, size}, {from.rows.getElements() + first, size}};
}

bool is_over_integer_columns(const model& from, const model_row& row) {
    return std::all_of(row.columns.begin(), row.columns.end(),
                       [&](int j) { return from.is_integer[static_cast<std::size_t>(j)] != 0; });
}

std::optional<double> integral_scale(const model_row& row) {
    constexpr double most_denominator = 10'000.0;
    constexpr double most_scale = 1e7;
    flag found = 0;
    double scale = 0.0;
    zktarn::util::find_scalar_integral(
        static_cast<std::int32_t>(row.values.size()),
        [&](const std::int32_t& i, double& value, flag& marked, flag& selected) {
            value = row.values[static_cast<std::size_t>(i - 1)];
            marked = 0;
            selected = 1;
        },
        integrality_tolerance, most_denominator, most_scale, found, scale);
    return found != 0 ? std::optional(scale) : std::nullopt;
}

/// How far a rounded coefficient can move the row's activity; infinite without a bound.
double drift(const model& from, int column, double exact, double rounded) {
    const double error = std::fabs(exact - rounded);
    const auto j = static_cast<std::size_t>(column);
    return error == 0.0 ? 0.0
                        : error * std::max(std::fabs(from.lower[j]), std::fabs(from.upper[j]));
}

/// How far a right-hand side times `scale` may be from what its decimals would give.
double doubt(double right, double scale) {
    const bool is_exact = std::trunc(right) == right && std::trunc(scale) == scale;
    return is_exact ? 0.0 : 4.0 * std::numeric_limits<double>::epsilon() * std::fabs(right * scale);
}

/// The row times `scale`, bounded above. Nothing when rounding would move it too far.
std::optional<integral_row> made_integral(const model& from, int i, double scale, double right) {
    constexpr double most_drift = 1e-6;
    constexpr double most_tolerance = 0.01;
    const model_row row = row_of(from, i);
    sparse_vector coefficients(from.column_count());
    double drifted = 0.0;
    for (std::size_t k = 0; k < row.values.size(); ++k) {
        const double exact = row.values[k] * scale;
        const double rounded = zktarn::util::epsilon_floor(exact, nearest);
        if (std::fabs(rounded) > largest_coefficient) {
            return std::nullopt;
        }
        drifted += drift(from, row.columns[k], exact, rounded);
        if (rounded != 0.0) {
            coefficients.set(row.columns[k] + 1, rounded);
        }
    }
    const double scaled = right * scale;
    const double tolerance = std::max(integrality_tolerance, doubt(right, scale));
    if (!(drifted <= most_drift) || std::fabs(scaled) > largest_exact ||
        tolerance > most_tolerance) {
        return std::nullopt;
    }
    return integral_row(std::move(coefficients), floor_of(scaled + drifted, tolerance),
                        origin{i, scale});
}

} // namespace

integral_row::integral_row(sparse_vector a, double b, origin made)
    : coefficients(std::move(a)), odd(odd_support(coefficients)), right(b), from(std::move(made)) {}

std::vector<integral_row> integral_rows_of(const model& from) {
    std::vector<integral_row> all;
    const auto add = [&](int i, double scale, double right) {
        if (std::optional<integral_row> made = made_integral(from, i, scale, right)) {
            all.push_back(std::move(*made));
        }
    };
    for (int i = 0; i < from.row_count(); ++i) {
        const model_row row = row_of(from, i);
        if (row.values.empty() || !is_over_integer_columns(from, row)) {
            continue;
        }
        const std::optional<double> scale = integral_scale(row);
        if (!scale) {
            continue;
        }
        const double low = from.row_lower[static_cast<std::size_t>(i)];
        const double high = from.row_upper[static_cast<std::size_t>(i)];
        if (high < no_bound) {
            add(i, *scale, high);
        }
        if (low > -no_bound && low < high) {
            add(i, -*scale, low);
        }
    }
    return all;
}

} // namespace zero_half
