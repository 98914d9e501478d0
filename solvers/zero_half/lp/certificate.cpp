#include "lp/proofs.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>

#include "cuts/integers.hpp"

namespace zero_half {

namespace {

using boost::multiprecision::cpp_rational;
using multipliers = std::vector<cpp_rational>;
using stop_function = std::function<bool()>;
using ranges = std::vector<safe_bound::range>;

/// Clp stores COIN_DBL_MAX for an infinite bound; finite ones are at most 1e15.
bool is_infinite(double bound) {
    return std::fabs(bound) >= 1e20;
}

/// By how much a feasible point may exceed a side of a row: the numbers of a file are decimals,
/// which doubles represent with an error.
cpp_rational tolerance_at(double side) {
    constexpr double relative = 1e-9;
    return cpp_rational(relative * std::max(1.0, std::fabs(side)));
}

/// The least value of factor * x for lower <= x <= upper; nothing when there is none.
std::optional<cpp_rational> least_product(const cpp_rational& factor, double lower, double upper) {
    if (factor == 0) {
        return cpp_rational(0);
    }
    const double bound = factor > 0 ? lower : upper;
    return is_infinite(bound) ? std::nullopt
                              : std::optional<cpp_rational>(factor * cpp_rational(bound));
}

/// Whether a row or a column has lower > upper.
bool has_crossed_bounds(const ClpSimplex& lp) {
    const auto are_crossed = [](const double* lower, const double* upper, int n) {
        for (int k = 0; k < n; ++k) {
            if (lower[k] > upper[k]) {
                return true;
            }
        }
        return false;
    };
    return are_crossed(lp.getColLower(), lp.getColUpper(), lp.numberColumns()) ||
           are_crossed(lp.getRowLower(), lp.getRowUpper(), lp.numberRows());
}

/// Whether the weighted sum of the rows is above its greatest right-hand side for all points
/// between the columns' bounds.
bool is_farkas_proof(const ClpSimplex& lp, const ranges& bounds, const multipliers& weights,
                     const stop_function& should_stop) {
    cpp_rational rhs = 0;
    for (int i = 0; i < lp.numberRows(); ++i) {
        const cpp_rational& weight = weights[static_cast<std::size_t>(i)];
        if (weight == 0) {
            continue;
        }
        if (should_stop()) {
            return false;
        }
        const double side = weight > 0 ? lp.getRowUpper()[i] : lp.getRowLower()[i];
        if (is_infinite(side)) {
            return false;
        }
        rhs += weight * cpp_rational(side) + abs(weight) * tolerance_at(side);
    }
    const CoinPackedMatrix& columns = *lp.matrix();
    cpp_rational least = 0;
    for (int j = 0; j < lp.numberColumns(); ++j) {
        cpp_rational coefficient = 0;
        const CoinBigIndex first = columns.getVectorFirst(j);
        for (CoinBigIndex k = first; k < first + columns.getVectorSize(j); ++k) {
            const cpp_rational& weight = weights[static_cast<std::size_t>(columns.getIndices()[k])];
            if (weight != 0) {
                coefficient += weight * cpp_rational(columns.getElements()[k]);
            }
        }
        const auto [lower, upper] = bounds[static_cast<std::size_t>(j)];
        const auto product = least_product(coefficient, lower, upper);
        if (!product || should_stop()) {
            return false;
        }
        least += *product;
    }
    return least > rhs;
}

/// Whether the bounds of its columns contradict a row.
bool has_contradicted_row(const ClpSimplex& lp, const stop_function& should_stop) {
    CoinPackedMatrix rows;
    rows.reverseOrderedCopyOf(*lp.matrix());
    for (int i = 0; i < lp.numberRows() && !should_stop(); ++i) {
        for (const double sign : {1.0, -1.0}) {
            const double side = sign > 0.0 ? lp.getRowUpper()[i] : lp.getRowLower()[i];
            if (is_infinite(side)) {
                continue;
            }
            std::optional<cpp_rational> least = cpp_rational(0);
            const CoinBigIndex first = rows.getVectorFirst(i);
            for (CoinBigIndex k = first; least && k < first + rows.getVectorSize(i); ++k) {
                const int j = rows.getIndices()[k];
                const auto product = least_product(cpp_rational(sign * rows.getElements()[k]),
                                                   lp.getColLower()[j], lp.getColUpper()[j]);
                least = product ? std::optional<cpp_rational>(*least + *product) : std::nullopt;
            }
            if (least && *least > cpp_rational(sign * side) + tolerance_at(side)) {
                return true;
            }
        }
    }
    return false;
}

/// Whether the direction is a ray of the rows and bounds along which the objective falls.
bool is_ray_proof(const ClpSimplex& lp, const multipliers& direction,
                  const stop_function& should_stop) {
    const CoinPackedMatrix& columns = *lp.matrix();
    std::vector<cpp_rational> activity(static_cast<std::size_t>(lp.numberRows()));
    cpp_rational slope = 0;
    for (int j = 0; j < lp.numberColumns(); ++j) {
        const cpp_rational& step = direction[static_cast<std::size_t>(j)];
        if (step == 0) {
            continue;
        }
        if (!is_infinite(step > 0 ? lp.getColUpper()[j] : lp.getColLower()[j]) || should_stop()) {
            return false;
        }
        slope += step * cpp_rational(lp.getObjCoefficients()[j]);
        const CoinBigIndex first = columns.getVectorFirst(j);
        for (CoinBigIndex k = first; k < first + columns.getVectorSize(j); ++k) {
            activity[static_cast<std::size_t>(columns.getIndices()[k])] +=
                step * cpp_rational(columns.getElements()[k]);
        }
    }
    for (int i = 0; i < lp.numberRows(); ++i) {
        const cpp_rational& change = activity[static_cast<std::size_t>(i)];
        if ((change > 0 && !is_infinite(lp.getRowUpper()[i])) ||
            (change < 0 && !is_infinite(lp.getRowLower()[i]))) {
            return false;
        }
    }
    return slope < 0;
}

/// The numbers divided by the largest magnitude among them; negligible ones become 0.
std::vector<double> normalised(std::vector<double> numbers) {
    constexpr double negligible = 1e-9;
    double largest = 0.0;
    for (const double each : numbers) {
        largest = std::max(largest, std::fabs(each));
    }
    for (double& each : numbers) {
        each = largest > 0.0 ? each / largest : 0.0;
        each = std::fabs(each) < negligible ? 0.0 : each;
    }
    return numbers;
}

/// Multiplies the numbers by the least factor that makes all of them nearly integers, and rounds
/// them. Returns nothing when there is no such factor.
std::optional<std::vector<double>> integral(std::vector<double> numbers) {
    constexpr scale_limits limits{.tolerance = 1e-6, .denominator = 10'000.0, .scale = 1e8};
    const std::optional<double> scale = integral_scale(numbers, limits);
    if (!scale) {
        return std::nullopt;
    }
    for (double& each : numbers) {
        each = std::round(each * *scale);
    }
    return numbers;
}

multipliers quotients(const std::vector<double>& numbers, const std::vector<double>& divisors) {
    multipliers all(numbers.size());
    for (std::size_t k = 0; k < all.size(); ++k) {
        if (numbers[k] != 0.0) {
            all[k] = cpp_rational(numbers[k]) / cpp_rational(divisors[k]);
        }
    }
    return all;
}

/// Tries the ray and its opposite as multipliers, with each entry in units of 1 / size: as it is,
/// and as a multiple whose entries are integers. Returns whether one of them passes the check.
template <class Check>
bool is_proven_in_units(const double* ray, const std::vector<double>& sizes, Check check) {
    for (const double sign : {1.0, -1.0}) {
        std::vector<double> products = sizes;
        for (std::size_t k = 0; k < sizes.size(); ++k) {
            products[k] *= sign * ray[k];
        }
        products = normalised(std::move(products));
        if (check(quotients(products, sizes))) {
            return true;
        }
        const auto rounded = integral(std::move(products));
        if (rounded && check(quotients(*rounded, sizes))) {
            return true;
        }
    }
    return false;
}

/// Tries the same in equal units, and then in units of 1 / size: multipliers of rows with
/// coefficients of 10^10 are as small as 10^-10, and may be simple fractions in these units.
template <class Check>
bool is_proven_by(const double* ray, const std::vector<double>& sizes, Check check) {
    const std::vector<double> equal(sizes.size(), 1.0);
    return ray != nullptr && (is_proven_in_units(ray, equal, check) ||
                              (sizes != equal && is_proven_in_units(ray, sizes, check)));
}

/// The largest magnitude of each row, or each column; 1 where there is none.
std::vector<double> largest_magnitudes(const ClpSimplex& lp, bool for_rows) {
    const CoinPackedMatrix& columns = *lp.matrix();
    const int n = for_rows ? lp.numberRows() : lp.numberColumns();
    std::vector<double> largest(static_cast<std::size_t>(n), 0.0);
    for (int j = 0; j < lp.numberColumns(); ++j) {
        const CoinBigIndex first = columns.getVectorFirst(j);
        for (CoinBigIndex k = first; k < first + columns.getVectorSize(j); ++k) {
            double& each =
                largest[static_cast<std::size_t>(for_rows ? columns.getIndices()[k] : j)];
            each = std::max(each, std::fabs(columns.getElements()[k]));
        }
    }
    std::replace(largest.begin(), largest.end(), 0.0, 1.0);
    return largest;
}

/// Sets each multiplier to 0 whose sign needs a side that its row does not have: such multipliers
/// are rounding errors.
multipliers with_finite_sides(const ClpSimplex& lp, multipliers weights) {
    for (int i = 0; i < lp.numberRows(); ++i) {
        cpp_rational& weight = weights[static_cast<std::size_t>(i)];
        if (is_infinite(weight > 0 ? lp.getRowUpper()[i] : lp.getRowLower()[i])) {
            weight = 0;
        }
    }
    return weights;
}

/// Multipliers from the program that minimises the total violation of the rows: its row duals are a
/// Farkas proof when the total is not 0. It serves programs whose solution left no ray.
std::vector<double> violation_duals(const ClpSimplex& lp) {
    const int m = lp.numberRows();
    ClpSimplex elastic;
    elastic.setLogLevel(0);
    const std::vector<double> no_objective(static_cast<std::size_t>(lp.numberColumns()), 0.0);
    elastic.loadProblem(*lp.matrix(), lp.getColLower(), lp.getColUpper(), no_objective.data(),
                        lp.getRowLower(), lp.getRowUpper());
    // Two columns for each row: by how much its activity is too small, and too large.
    const auto added = 2 * static_cast<std::size_t>(m);
    std::vector<CoinBigIndex> starts = {0};
    std::vector<int> rows;
    std::vector<double> elements;
    for (int i = 0; i < m; ++i) {
        for (const double element : {1.0, -1.0}) {
            rows.push_back(i);
            elements.push_back(element);
            starts.push_back(static_cast<CoinBigIndex>(rows.size()));
        }
    }
    const std::vector<double> lower(added, 0.0);
    const std::vector<double> upper(added, COIN_DBL_MAX);
    const std::vector<double> costs(added, 1.0);
    elastic.addColumns(2 * m, lower.data(), upper.data(), costs.data(), starts.data(), rows.data(),
                       elements.data());
    elastic.passInEventHandler(lp.eventHandler());
    elastic.primal();
    const double* const prices = elastic.getRowPrice();
    return {prices, prices + m};
}

} // namespace

bool is_proven_infeasible(const ClpSimplex& lp, const ranges& columns,
                          const stop_function& should_stop) {
    if (has_crossed_bounds(lp)) {
        return true;
    }
    const auto check = [&](const multipliers& weights) {
        return is_farkas_proof(lp, columns, with_finite_sides(lp, weights), should_stop);
    };
    const std::unique_ptr<double[]> ray(lp.infeasibilityRay());
    const std::vector<double> sizes = largest_magnitudes(lp, true);
    return is_proven_by(ray.get(), sizes, check) || has_contradicted_row(lp, should_stop) ||
           is_proven_by(violation_duals(lp).data(), sizes, check);
}

bool has_proven_ray(const ClpSimplex& lp, const stop_function& should_stop) {
    const std::unique_ptr<double[]> ray(lp.unboundedRay());
    const auto check = [&](const multipliers& direction) {
        return is_ray_proof(lp, direction, should_stop);
    };
    if (is_proven_by(ray.get(), largest_magnitudes(lp, false), check)) {
        return true;
    }
    // A single column that no row limits.
    multipliers direction(static_cast<std::size_t>(lp.numberColumns()));
    for (int j = 0; j < lp.numberColumns() && !should_stop(); ++j) {
        const double cost = lp.getObjCoefficients()[j];
        if (cost == 0.0 || !is_infinite(cost < 0.0 ? lp.getColUpper()[j] : lp.getColLower()[j])) {
            continue;
        }
        direction[static_cast<std::size_t>(j)] = cost < 0.0 ? 1 : -1;
        if (lp.matrix()->getVectorSize(j) == 0 && check(direction)) {
            return true;
        }
        direction[static_cast<std::size_t>(j)] = 0;
    }
    return false;
}

} // namespace zero_half
