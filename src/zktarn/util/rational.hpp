#pragma once

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Fractions with a bounded denominator that are within a tolerance of a real.

namespace zktarn::util {

/// Finds a fraction num/den within eps of x whose denominator is at most a bound.
///
/// @param x        in. Any real.
/// @param eps      in. Tolerance, inclusive.
/// @param max_den  in. The bound is max(|max_den|, 1), and 1 if max_den is NaN.
/// @param found    out. 1 if a fraction was found, else 0.
/// @param num      out. Its numerator, integral; 0.0 if found is 0.
/// @param den      out. Its denominator, integral and positive; 0.0 if found is 0.
///
/// Two searches, of which the second runs if the first finds nothing:
///
///  1. Denominators that are common in decimal data: k, 10 k, 100 k, ... up to the bound, for each
///     k of 1, 2, ..., 9, 11, 13, 15, 17, 19, 23 in turn. The first denominator with a fraction
///     within eps is taken; of two such numerators, the lower. The fraction need not be reduced:
///     0.25 is 25/100 if the bound is 100 or more.
///  2. The convergents p/q of the continued fraction of x with q up to the bound, each with p and
///     with the neighbour p - 1 or p + 1 on the side of x.
///
/// Found is 0 if x or eps is NaN. With an infinite bound only the powers of ten are tried, and
/// found is 0 if none fits.
///
/// Source of the second search: the recurrence of convergents, for example Hardy and Wright, An
/// Introduction to the Theory of Numbers, chapter X. The cost grows with the logarithm of the
/// bound. A pure function, callable from any thread.
ZKTARN_API void get_rational_rep(const double& x, const double& eps, const double& max_den,
                                 flag& found, double& num, double& den) noexcept;

} // namespace zktarn::util
