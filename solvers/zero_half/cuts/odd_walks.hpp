#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Notes the best sum through each column, of those made of rows with at most two odd columns:
/// a shortest walk from the column back to itself that has an odd number of odd rows, in the graph
/// whose nodes are the columns and whose edges the rows (Caprara and Fischetti 1996). Odd cycles
/// of stable sets and blossoms of matchings are such sums.
void find_odd_walks(const parity_system& in, odd_sums& found);

} // namespace zero_half
