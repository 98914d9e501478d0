#pragma once

#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include <ClpSimplex.hpp>

/// What is proven about a linear program, whatever rounding errors the simplex method made.

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

// The two functions below prove in exact rational arithmetic that a linear program has no optimum.
// The simplex method proposes a ray, which is tried as it is, and rounded to multiples of a common
// denominator. If both prove nothing, the same is tried with the ray's entries in units of 1 / c,
// where c is the largest coefficient of the row or column of the entry. Each attempt costs one pass
// over the coefficients in rational arithmetic. A pass calls `should_stop` for every row or column;
// once it returns true, the pass ends without a proof.

/// Whether no point satisfies all rows and bounds, even if it may exceed each side of a row by a
/// relative 1e-9: the decimal numbers of a file are not exact as doubles. The proof is a row or
/// column with crossed bounds, a row that the bounds of its columns contradict, or Farkas
/// multipliers, which give a sum of rows that the bounds contradict. `columns` are bounds that rows
/// of the program imply: they keep the effect of a rounded multiplier small. False when the ray of
/// the last solve proves nothing.
bool is_proven_infeasible(const ClpSimplex& lp, const std::vector<safe_bound::range>& columns,
                          const std::function<bool()>& should_stop);

/// Whether there is a direction in which the objective falls and no row or bound is ever reached.
/// If so, the program is unbounded if it has a feasible point. False when the ray of the last solve
/// proves nothing.
bool has_proven_ray(const ClpSimplex& lp, const std::function<bool()>& should_stop);

} // namespace zero_half
