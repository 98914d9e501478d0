#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/function_ref.hpp"
#include "zktarn/types.hpp"

/// The search for a scalar that makes a set of reals integral.

namespace zktarn::util {

/// Supplies the elements of a set: index (in, 1..n), value (out), marked (out), selected (out). It
/// gives the same answers for the same index every time, and is called in the order 1, 2, ..., n,
/// pass after pass, up to four times.
using element_supplier =
    function_ref<void(const std::int32_t& index, double& value, flag& marked, flag& selected)>;

/// A positive scalar, at most max_scalar, by which every element becomes integral within eps.
///
/// @param n              in. Number of elements; below 1 there are none.
/// @param get_element    in. Their supplier.
/// @param eps            in. Tolerance of integrality and of the divisors' remainders; elements of
///                       at most that magnitude do not take part.
/// @param max_den        in. Denominator bound of `get_rational_rep`.
/// @param max_scalar     in. Largest scalar wanted.
/// @param found          out. 1 when a scalar was found, else 0.
/// @param scalar         out. The scalar; 0.0 when found is 0.
/// @param skip_marked    in, optional. True leaves marked elements out.
/// @param selected_only  in, optional. True leaves out the elements that are not selected.
///
/// First two quick trials, from the reciprocal of the smallest magnitude above eps (of all
/// elements, left out or not) and from 1.0: each element multiplies the scalar by the first of 3,
/// 5, ..., 19 that makes it integral, or else by 2, until it is integral and at least 0.5 in
/// magnitude. Elements that were integral before stay so up to their grown error, and are not
/// looked at again. Then the exact way: the common multiple of the denominators over the common
/// divisor of the numerators of the fractions that `get_rational_rep` finds.
///
/// With no element to take part the first trial succeeds at once with 5.562684646268003e-309, the
/// reciprocal of the largest real; below that max_scalar the exact way answers 1.0, though it is
/// above the bound. Found is 0 when an element has no fraction or the scalar would exceed
/// max_scalar, and also when a trial would go on for ever, as it might without a finite bound.
///
/// Nothing is allocated or copied. Callable from any thread from which the supplier is.
ZKTARN_API void find_scalar_integral(const std::int32_t& n, element_supplier get_element,
                                     const double& eps, const double& max_den,
                                     const double& max_scalar, flag& found, double& scalar,
                                     optional_ref<const flag> skip_marked = {},
                                     optional_ref<const flag> selected_only = {}) noexcept;

} // namespace zktarn::util
