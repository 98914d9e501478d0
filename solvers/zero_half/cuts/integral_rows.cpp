#include "cuts/integral_rows.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <utility>

#include "input/rounding.hpp"

namespace zero_half {

namespace {

using zktarn::flag;

constexpr double integrality_tolerance = 1e-9;
constexpr double no_tolerance = 0.0;

zktarn::owned_vector odd_support(const zktarn::owned_vector& coefficients) {
    zktarn::owned_vector odd = new_vector(capacity(coefficients));
    zktarn::vector_mod::vectors_combine(*odd, *coefficients, 1.0, 1.0, no_tolerance);
    zktarn::vector_mod::vector_mod2(*odd, no_tolerance);
    return odd;
}

/// One row of the model, its columns counted from 0.
struct row_view {
    std::span<const int> columns;
    std::span<const double> values;
};

row_view view_row(const model& program, int i) {
    const int first = program.rows.getVectorFirst(i);
    const auto size = static_cast<std::size_t>(program.rows.getVectorSize(i));
    return {{program.rows.getIndices() + first, size}, {program.rows.getElements() + first, size}};
}

bool is_over_integer_columns(const model& program, const row_view& row) {
    return std::all_of(row.columns.begin(), row.columns.end(),
                       [&](int j) { return program.is_integer[static_cast<std::size_t>(j)] != 0; });
}

/// A factor that makes all coefficients of the row integers, within the tolerance.
std::optional<double> integral_scale(const row_view& row) {
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

/// By how much a rounded coefficient can change the activity of the row. Infinite when it was
/// rounded and the column has no bound on one side.
double activity_error(const model& program, int column, double exact, double rounded) {
    const double rounding_error = std::fabs(exact - rounded);
    const auto j = static_cast<std::size_t>(column);
    return rounding_error == 0.0 ? 0.0
                                 : rounding_error * std::max(std::fabs(program.lower[j]),
                                                             std::fabs(program.upper[j]));
}

/// A bound on the error of rhs * scale, compared with the decimal numbers that the file contains.
double rhs_error(double rhs, double scale) {
    const bool is_exact = std::trunc(rhs) == rhs && std::trunc(scale) == scale;
    return is_exact ? 0.0 : 4.0 * std::numeric_limits<double>::epsilon() * std::fabs(rhs * scale);
}

/// The row times `scale`, bounded above by rhs * scale. Nothing when the numbers are too large or
/// rounding would change the row too much.
std::optional<integral_row> scaled_row(const model& program, int i, double scale, double rhs) {
    constexpr double most_activity_error = 1e-6;
    constexpr double most_rhs_error = 0.01;
    /// With the tolerance 0.5 the floor is the nearest integer.
    constexpr double to_nearest = 0.5;
    const row_view row = view_row(program, i);
    zktarn::owned_vector coefficients = new_vector(program.column_count());
    double row_error = 0.0;
    for (std::size_t k = 0; k < row.values.size(); ++k) {
        const double exact = row.values[k] * scale;
        const double rounded = zktarn::util::epsilon_floor(exact, to_nearest);
        if (std::fabs(rounded) > largest_coefficient) {
            return std::nullopt;
        }
        row_error += activity_error(program, row.columns[k], exact, rounded);
        if (rounded != 0.0) {
            zktarn::vector_mod::vector_add_nz(*coefficients, row.columns[k] + 1, rounded);
        }
    }
    const double scaled_rhs = rhs * scale;
    const double tolerance = std::max(integrality_tolerance, rhs_error(rhs, scale));
    if (!(row_error <= most_activity_error) || std::fabs(scaled_rhs) > largest_exact ||
        tolerance > most_rhs_error) {
        return std::nullopt;
    }
    return integral_row(std::move(coefficients), floor_of(scaled_rhs + row_error, tolerance),
                        row_origin{i, scale});
}

} // namespace

integral_row::integral_row(zktarn::owned_vector a, double b, row_origin source)
    : coefficients(std::move(a)), odd(odd_support(coefficients)), rhs(b),
      origin(std::move(source)) {}

std::vector<integral_row> integral_rows_of(const model& program) {
    std::vector<integral_row> rows;
    const auto add = [&](int i, double scale, double rhs) {
        if (std::optional<integral_row> row = scaled_row(program, i, scale, rhs)) {
            rows.push_back(std::move(*row));
        }
    };
    for (int i = 0; i < program.row_count(); ++i) {
        const row_view row = view_row(program, i);
        if (row.values.empty() || !is_over_integer_columns(program, row)) {
            continue;
        }
        const std::optional<double> scale = integral_scale(row);
        if (!scale) {
            continue;
        }
        const double lower = program.row_lower[static_cast<std::size_t>(i)];
        const double upper = program.row_upper[static_cast<std::size_t>(i)];
        if (upper < no_bound) {
            add(i, *scale, upper);
        }
        if (lower > -no_bound && lower < upper) {
            add(i, -*scale, lower);
        }
    }
    return rows;
}

integral_row integral_row_of(const cut& inequality, std::int32_t columns) {
    zktarn::owned_vector coefficients = new_vector(columns);
    for (std::size_t k = 0; k < inequality.columns.size(); ++k) {
        zktarn::vector_mod::vector_add_nz(*coefficients, inequality.columns[k],
                                          inequality.coefficients[k]);
    }
    return {std::move(coefficients), inequality.rhs, inequality.origin};
}

} // namespace zero_half
