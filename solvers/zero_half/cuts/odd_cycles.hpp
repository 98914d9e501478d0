#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Exact separation for systems in which no row has more than two odd columns (Caprara and
/// Fischetti 1996). The columns are the nodes of a graph, the rows its edges, and the slacks their
/// lengths. For each column the shortest closed walk with an odd number of odd rows is the sum with
/// the least slack of those that contain it. Odd cycle inequalities of stable sets and blossom
/// inequalities of matchings are such sums.
///
/// Adds one sum for each column at most. Dijkstra's method is run once for each column.
void find_odd_cycles(const parity_system& system, const stop_predicate& should_stop,
                     odd_sums& sums);

} // namespace zero_half
