#include "lp/objective.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

#include "cuts/integers.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

namespace {

/// The costs that are not 0; nothing when a continuous column has one.
std::optional<std::vector<double>> integer_costs(const model& program) {
    std::vector<double> costs;
    for (std::size_t j = 0; j < program.objective.size(); ++j) {
        if (program.objective[j] != 0.0 && program.is_integer[j] == 0) {
            return std::nullopt;
        }
        if (program.objective[j] != 0.0) {
            costs.push_back(program.objective[j]);
        }
    }
    return costs;
}

} // namespace

objective_values::objective_values(const model& program) : constant_(program.constant) {
    const std::optional<std::vector<double>> costs = integer_costs(program);
    const std::optional<double> scale = costs ? integral_scale(*costs) : std::nullopt;
    if (!scale) {
        return;
    }
    double divisor = 0.0;
    for (const double cost : *costs) {
        const double whole = nearest_integer(cost * *scale);
        // A scaled cost that is nearly an integer does not suffice: the quotient has to be the same
        // double as the cost.
        if (whole / *scale != cost || std::fabs(whole) > largest_exact) {
            return;
        }
        divisor = common_divisor(divisor, whole);
    }
    divisor_ = divisor;
    scale_ = *scale;
}

double objective_values::round_up(double bound) const {
    constexpr double tolerance = 1e-6;
    constexpr double relative_tolerance = 1e-9;
    constexpr double largest_error = 0.1;
    if (divisor_ == 0.0) {
        return bound;
    }
    const double steps = (bound - constant_) / step();
    const double error =
        tolerance + relative_tolerance * (std::fabs(bound) + std::fabs(constant_)) / step();
    if (!(error <= largest_error)) {
        return bound;
    }
    const double value = constant_ + std::ceil(steps - error) * divisor_ / scale_;
    return std::fmax(bound, value);
}

namespace {

/// Products of numbers up to 1e15 and sums of 2^26 of them are exact.
__extension__ typedef __int128 wide_integer;

/// How far a value may be from an integer.
constexpr double tolerance = 1e-6;
/// The error that the simplex method leaves in a row, relative to its side. A larger one may come
/// from rounding the integer columns; correcting it by a continuous column changes the objective.
constexpr double row_tolerance = 1e-9;
constexpr double unit_roundoff = std::numeric_limits<double>::epsilon() / 2.0;

/// The point with integer columns rounded; nothing when one is not nearly an integer.
std::optional<std::vector<double>> rounded(const model& program, const double* point) {
    std::vector<double> nearest(point, point + program.column_count());
    for (std::size_t j = 0; j < nearest.size(); ++j) {
        if (program.is_integer[j] == 0) {
            continue;
        }
        zktarn::flag is_integer = 0;
        zktarn::util::epsilon_is_int(point[j], tolerance, is_integer, nearest[j]);
        if (is_integer == 0) {
            return std::nullopt;
        }
    }
    return nearest;
}

bool is_within(double value, double lower, double upper) {
    return (lower <= -no_bound || value >= lower) && (upper >= no_bound || value <= upper);
}

/// The side moved by a relative tolerance, whose sign is the direction.
double moved(double side, double relative) {
    return side + relative * std::max(1.0, std::fabs(side));
}

bool is_integer_number(double value) {
    return std::trunc(value) == value;
}

/// By how much the decimal of a file may differ from the double that represents it.
double decimal_error(double number) {
    return is_integer_number(number) ? 0.0 : unit_roundoff * std::fabs(number);
}

/// A sum of products with a bound on its error, which has two parts: rounding errors, and the
/// differences between the decimals of a file and their doubles.
struct activity_sum {
    double value = 0.0;
    double error = 0.0;

    void add(double coefficient, double x) {
        const double product = coefficient * x;
        const double sum = value + product;
        error += std::fabs(std::fma(coefficient, x, -product)) +
                 decimal_error(coefficient) * std::fabs(x);
        error += unit_roundoff * std::fabs(sum);
        value = sum;
    }
    bool is_within(double lower, double upper) const {
        return (lower <= -no_bound || value >= lower - 2.0 * error - decimal_error(lower)) &&
               (upper >= no_bound || value <= upper + 2.0 * error + decimal_error(upper));
    }
};

/// Whether the point satisfies row `i` of the model.
bool satisfies_row(const model& program, int i, const std::vector<double>& point) {
    const int first = program.rows.getVectorFirst(i);
    const int* const columns = program.rows.getIndices() + first;
    const double* const values = program.rows.getElements() + first;
    bool is_exact = true;
    bool has_continuous = false;
    wide_integer exact = 0;
    activity_sum activity;
    for (int k = 0; k < program.rows.getVectorSize(i); ++k) {
        const double x = point[static_cast<std::size_t>(columns[k])];
        activity.add(values[k], x);
        has_continuous =
            has_continuous || program.is_integer[static_cast<std::size_t>(columns[k])] == 0;
        is_exact = is_exact && is_integer_number(values[k]) && is_integer_number(x) &&
                   std::fabs(x) <= 1e15;
        if (is_exact) {
            exact += static_cast<wide_integer>(values[k]) * static_cast<wide_integer>(x);
        }
    }
    const double lower = program.row_lower[static_cast<std::size_t>(i)];
    const double upper = program.row_upper[static_cast<std::size_t>(i)];
    if (!is_exact) {
        return has_continuous ? is_within(activity.value, moved(lower, -row_tolerance),
                                          moved(upper, row_tolerance))
                              : activity.is_within(lower, upper);
    }
    // An integer is at most a number exactly when it is at most the floor of the number.
    return (lower <= -no_bound || exact >= static_cast<wide_integer>(std::ceil(lower))) &&
           (upper >= no_bound || exact <= static_cast<wide_integer>(std::floor(upper)));
}

bool is_feasible(const model& program, const std::vector<double>& point) {
    for (std::size_t j = 0; j < point.size(); ++j) {
        const double slip = program.is_integer[j] != 0 ? 0.0 : row_tolerance;
        if (!is_within(point[j], moved(program.lower[j], -slip), moved(program.upper[j], slip))) {
            return false;
        }
    }
    for (int i = 0; i < program.row_count(); ++i) {
        if (!satisfies_row(program, i, point)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<double> integral_objective(const model& program, const double* point) {
    const std::optional<std::vector<double>> nearest = rounded(program, point);
    if (!nearest || !is_feasible(program, *nearest)) {
        return std::nullopt;
    }
    double objective = program.constant;
    for (std::size_t j = 0; j < nearest->size(); ++j) {
        objective += program.objective[j] * (*nearest)[j];
    }
    return objective;
}

} // namespace zero_half
