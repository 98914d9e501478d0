#pragma once

#include "cuts/odd_sums.hpp"
#include "zktarn/zktarn_util.hpp"

/// The searches for sums of rows whose halves cut the point off.

namespace zero_half {

/// Gaussian elimination modulo 2. After a column is eliminated, no remaining row contains it; the
/// remaining rows are sums of rows of the system. Adds the violated ones of all sums that occur.
///
/// Columns are eliminated in the order of their values, the greatest first, and the pivot is a row
/// with little slack. The order and the pivot are perturbed at random, so each call finds other
/// sums. A row is a string of bits, one for each column and one for each row in the sum; the work
/// of a call is limited by leaving out the rows with the greatest slacks of a large system.
void find_by_elimination(const parity_system& system, const zktarn::random::rng_state& random,
                         const stop_predicate& should_stop, odd_sums& sums);

/// Odd cycle separation (Caprara and Fischetti 1996). The columns are the nodes of a graph with one
/// further node 0. A row with at most two odd columns is an edge between them, of the length of its
/// slack. A row with more odd columns is weakened to each pair of them: the values of the other
/// columns are added to the length, and the parity of the edge may be changed at the cost of one of
/// these columns. A bound of a column is an edge to node 0.
///
/// A sum is odd if its edges form a closed walk with an odd number of odd edges. (A walk is a cycle
/// that may pass a node twice.) Adds for each column the sum of the rows on the shortest such walk
/// through the column. Where no row has more than two odd columns that is exact. Dijkstra's
/// method is run once for each column, up to half the slack limit.
void find_odd_cycles(const parity_system& system, const stop_predicate& should_stop,
                     odd_sums& sums);

/// Starts from each row and repeats a few times: adds the row that gives the sum with the least
/// slack. Finds sums with odd columns, which elimination misses. Each step tests every row, so the
/// cost is quadratic in the number of rows: use it for small systems.
void find_by_greedy_search(const parity_system& system, const stop_predicate& should_stop,
                           odd_sums& sums);

/// Whether every column is odd in at most two rows.
bool is_column_graph(const parity_system& system);

/// Exact blossom separation for such systems (Padberg and Rao 1982; Letchford, Reinelt and Theis
/// 2008). The rows are the nodes of a graph, the columns its edges, and a slack is an edge to one
/// further node. The slack of a sum of rows is the capacity of a cut. If a violated sum exists, one
/// is a cut of a Gomory-Hu tree of the graph. Computes the part of that tree whose cuts have a
/// capacity below the limit, by one maximum flow for each row, and adds all its violated sums.
void find_blossoms(const parity_system& system, const stop_predicate& should_stop, odd_sums& sums);

} // namespace zero_half
