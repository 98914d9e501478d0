#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/function_ref.hpp"
#include "zktarn/types.hpp"

/// A search for one scalar that makes a set of reals integral.

namespace zktarn::util {

/// Supplies the elements of a set: index (in, 1..n), value (out), marked (out), selected (out).
///
/// It is called for the indices 1, 2, ..., n in this order, in up to four passes, of which each but
/// the first may end early. It must write the same values in each pass. An output that it does not
/// write is 0.
using element_supplier =
    function_ref<void(const std::int32_t& index, double& value, flag& marked, flag& selected)>;

/// Finds a positive scalar, at most max_scalar, that makes each element integral within eps.
///
/// @param n              in. Number of elements; below 1 there are none.
/// @param get_element    in. Their supplier.
/// @param eps            in. Tolerance of integrality and remainder tolerance of `xgcd_r8`. An
///                       element of at most this magnitude does not take part.
/// @param max_den        in. Denominator bound of `get_rational_rep`.
/// @param max_scalar     in. Largest scalar allowed.
/// @param found          out. 1 if a scalar was found, else 0.
/// @param scalar         out. The scalar; 0.0 if found is 0.
/// @param skip_marked    in, optional. When true, marked elements do not take part.
/// @param selected_only  in, optional. When true, elements that are not selected do not take part.
///
/// Up to three attempts, until one succeeds:
///
///  1. Trial from 1/s, where s is the smallest magnitude above eps of all elements, also of those
///     that do not take part; the largest real if there is none. Element by element, while value *
///     scalar is not integral or is below 1/2 in magnitude, the scalar is multiplied by the first
///     of 3, 5, 7, ..., 19 that makes the product integral, or by 2 if none does. The trial fails
///     when the scalar exceeds max_scalar. Elements already integral are not rechecked; their error
///     grows with the scalar.
///  2. The same trial from 1.0.
///  3. Construction: the least common multiple of the denominators over the greatest common divisor
///     of the numerators of the fractions that `get_rational_rep` gives.
///
/// Special results:
///
///     no element takes part, 1/s <= max_scalar          found 1, scalar 1/s; for an empty set this
///                                                       is 5.562684646268003e-309
///     no element takes part, 1/s > max_scalar           found 1, scalar 1.0, even above max_scalar
///     an element has no fraction in attempt 3           found 0
///     the scalar of attempt 3 exceeds max_scalar        found 0
///     a trial would never end (infinite max_scalar)     found 0
///
/// Allocates and copies nothing. Cost: up to 4 n calls of the supplier; in a trial, up to ten tests
/// of integrality for each doubling of the scalar; in attempt 3, a `get_rational_rep` and two
/// `xgcd_r8` an element. May be called from any thread from which the supplier may be.
ZKTARN_API void find_scalar_integral(const std::int32_t& n, element_supplier get_element,
                                     const double& eps, const double& max_den,
                                     const double& max_scalar, flag& found, double& scalar,
                                     optional_ref<const flag> skip_marked = {},
                                     optional_ref<const flag> selected_only = {}) noexcept;

} // namespace zktarn::util
