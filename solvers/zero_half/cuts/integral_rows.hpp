#pragma once

#include "cuts/mixed_integer_rows.hpp"
#include "cuts/row_pool.hpp"

namespace zero_half {

/// The rows of the model that can be scaled to integers. A range gives two rows. An equation whose
/// coefficients are all of one magnitude gives only its upper side, because its lower side gives
/// the same cuts: modulo 2 both are the same row. Divided by other integers, both sides of an
/// equation differ.
///
/// A continuous column is eliminated from a row if it has a suitable bound: a variable bound, by
/// adding the row of the model that states it, or else a constant one. Then both sides of an
/// equation are kept, because they differ.
row_pool integral_rows_of(const mixed_integer_rows& model);

} // namespace zero_half
