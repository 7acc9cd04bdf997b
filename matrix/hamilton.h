#pragma once
/// matrix/hamilton.h: directed paths that visit every vertex of a graph once.
///
/// Purpose    a path is a term of the determinant of a matrix of side n^2 + 1 whose rows and columns are the
///            pairs of a vertex and a place in the path, and one more row and column for the two ends. The
///            search expands that determinant along the line with the fewest entries left; entries carry the
///            vertex that they use, and go as long as that vertex is used.
///            Cost: a step changes the lines that meet the entry and the entries of its vertex; choosing the
///            next line looks at the counts of all lines. The number of steps may be exponential in n; up to
///            24 vertices the sets of vertices bound it (matrix/hamilton_proofs.h).
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
inline constexpr int32_t k_most_vertices = 100;
/// True while a search runs.                                 writers: the built-in function
inline boolean path_search_running = 0;
/// True if there is a path; edge[i n + j]: an edge leads from i to j, 1 <= n <= 100. limit: a try ends when
/// so many complete expansions have failed, and another one begins in another order.
bool hamilton_path_driver(const bool* edge, int32_t n, int32_t limit);
}  // namespace tolvex
