#pragma once

#include <cmath>
#include <optional>
#include <vector>

#include <ClpSimplex.hpp>

namespace zero_half {

/// Proven lower bounds on the optimum of a linear program to which rows are added.
class safe_bound {
public:
    struct range {
        double lower;
        double upper;
        range within(double radius) const {
            return {std::isfinite(lower) ? lower : -radius, std::isfinite(upper) ? upper : radius};
        }
    };

    /// Derives bounds for columns that have none from the rows of the program.
    explicit safe_bound(const ClpSimplex& lp);

    /// A lower bound on the objective of every feasible point. It holds despite the rounding errors
    /// of the simplex method and the rounding of the file's decimal numbers to doubles: it is the
    /// bound of the last row duals by weak duality, minus a bound on all rounding errors of its
    /// evaluation (Neumaier and Shcherbina, Safe bounds in linear and mixed-integer linear
    /// programming, 2004). Empty when a column without bounds prevents a proof. Costs one pass over
    /// the coefficients.
    std::optional<double> of(const ClpSimplex& lp) const;

    /// Like `of`, but only for the feasible points in which every column without bounds is at most
    /// `radius` from 0.
    std::optional<double> within(double radius, const ClpSimplex& lp) const;

    /// Like `of`, but for all points that exceed each side of a row by at most this tolerance,
    /// relative to the larger of the side and 1.
    std::optional<double> with_tolerance(double tolerance, const ClpSimplex& lp) const;

    /// Whether all numbers are small enough for the usual tolerances to have a meaning.
    bool is_moderate() const { return is_moderate_; }

    /// The bounds of the columns, given or derived; infinite where there are none. Those derived
    /// hold even for points that exceed each side of a row by a relative 1e-9.
    const std::vector<range>& columns() const { return columns_; }

private:
    std::optional<double> evaluate(const ClpSimplex& lp, double radius, double tolerance) const;
    void imply_bounds(const CoinPackedMatrix& rows, int i, double side, double sign);

    std::vector<range> columns_;
    bool is_moderate_;
};

} // namespace zero_half
