#pragma once

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Fractions with a bounded denominator that represent a real within a tolerance.

namespace zktarn::util {

/// A fraction num/den within eps of x, its denominator at most max_den.
///
/// @param x        in. Any real.
/// @param eps      in. Tolerance, inclusive.
/// @param max_den  in. Denominator bound; the larger of its magnitude and 1 counts, and 1 when it
///                 is not a number.
/// @param found    out. 1 when there is one, else 0.
/// @param num      out. Its numerator, integral; 0.0 when found is 0.
/// @param den      out. Its denominator, integral and positive; 0.0 when found is 0.
///
/// Denominators that are friendly to decimals come first: for k = 1, 2, ..., 9, 11, 13, 15, 17, 19,
/// 23 in turn, k, 10 k, 100 k, ... up to the bound. The first that fits wins, with the lower
/// numerator where two fit, though a smaller denominator might fit as well: 0.25 is 25/100. Where
/// none fits, the convergents of the continued fraction of x are tried, each with its numerator and
/// with the ones beside it.
///
/// Found is 0 for an x or an eps that is not a number; and, with an infinite bound, when none of
/// 1, 10, 100, ... fits. Pure, and callable from any thread.
ZKTARN_API void get_rational_rep(const double& x, const double& eps, const double& max_den,
                                 flag& found, double& num, double& den) noexcept;

} // namespace zktarn::util
