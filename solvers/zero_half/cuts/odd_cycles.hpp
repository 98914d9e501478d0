#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Odd cycle separation (Caprara and Fischetti 1996). The columns are the nodes of a graph with one
/// further node 0. A row with at most two odd columns is an edge between them, of the length of its
/// slack. A row with more odd columns is weakened to each pair of them: the values of the other
/// columns are added to the length, and the parity of the edge may be changed at the cost of one of
/// these columns. A bound of a column is an edge to node 0.
///
/// Adds for each column the sum of the rows on the shortest closed walk through the column with an
/// odd number of odd edges. Where no row has more than two odd columns that is exact. Dijkstra's
/// method is run once for each column, up to half the slack limit.
void find_odd_cycles(const parity_system& system, const stop_predicate& should_stop,
                     odd_sums& sums);

} // namespace zero_half
