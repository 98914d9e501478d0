#pragma once

#include "cuts/mixed_integer_rows.hpp"
#include "cuts/row_pool.hpp"

namespace zero_half {

/// The rows of the model that can be scaled to integers. A range gives two rows, an equation only
/// its upper side: modulo 2 the lower side is the same row.
///
/// A continuous column is taken out of a row where a bound of the column allows it: a variable
/// bound, by adding the row of the model that states it, or else a constant one. Both sides of an
/// equation with continuous columns are kept then, because they differ.
row_pool integral_rows_of(const mixed_integer_rows& model);

} // namespace zero_half
