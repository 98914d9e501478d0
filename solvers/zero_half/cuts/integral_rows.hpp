#pragma once

#include "cuts/mixed_integer_rows.hpp"
#include "cuts/row_pool.hpp"

namespace zero_half {

/// The rows of the model that can be scaled to integers. A range gives two rows, an equation only
/// its upper side: modulo 2 the lower side is the same row.
///
/// A continuous column is eliminated from a row if it has a suitable bound: a variable bound, by
/// adding the row of the model that states it, or else a constant one. Then both sides of an
/// equation are kept, because they differ.
row_pool integral_rows_of(const mixed_integer_rows& model);

} // namespace zero_half
