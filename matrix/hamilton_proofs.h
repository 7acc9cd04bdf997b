#pragma once
/// matrix/hamilton_proofs.h: what decides about Hamiltonian paths without an expansion.
///
/// Raises     poll_interrupt: only scratch memory is under way then.
#include <cstdint>
namespace tolvex {
/// False if a path through all vertices is impossible because no n - 1 edges leave and enter different
/// vertices each. edge as in hamilton_path_driver. Time n^3 (augmenting paths).
bool has_path_matching(const bool* edge, int32_t n);
/// False if a path through all vertices is impossible because the strong components do not follow one
/// another, each with an edge to the next: a vertex without edges, parts that nothing joins. edge as above.
/// Time n^2.
bool components_in_line(const bool* edge, int32_t n);
inline constexpr int32_t k_most_subset_vertices = 24;
/// True if there is a path through all of at most k_most_subset_vertices vertices: by the ends of the paths
/// through each set of vertices. 2^n n steps, 4 2^n bytes. Source: M. Held, R. M. Karp, "A dynamic
/// programming approach to sequencing problems", J. SIAM 10 (1962).
bool path_by_subsets(const bool* edge, int32_t n);
}  // namespace tolvex
