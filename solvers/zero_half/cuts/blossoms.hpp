#pragma once

#include "cuts/odd_sums.hpp"

namespace zero_half {

/// Whether every column is odd in at most two rows.
bool is_column_graph(const parity_system& system);

/// Exact blossom separation for such systems (Padberg and Rao 1982; Letchford, Reinelt and Theis
/// 2008). The rows are the nodes of a graph, the columns its edges, and a slack is an edge to one
/// further node. The slack of a sum of rows is the capacity of a cut. If a violated sum exists, one
/// is a cut of a Gomory-Hu tree of the graph. Computes the part of that tree whose cuts have a
/// capacity below the limit, by one maximum flow for each row, and adds all its violated sums.
void find_blossoms(const parity_system& system, const stop_predicate& should_stop, odd_sums& sums);

} // namespace zero_half
