#pragma once
/// matrix/sparse_minors.h: determinants of sparse matrices by expansion, every minor being computed once.
///
/// Purpose    for matrices that are small, or whose rows have very few entries each. Each level expands along
///            the row or column with the fewest entries. No division takes place, so that any commutative
///            ring will do.
/// Invariant  a minor is told by the sets of its rows and columns. Minors whose rows are as many as the
///            window min_stash_row..max_stash_row says are kept in a table and looked up; when memory runs
///            short the newest of each bucket go, and the window shrinks.
/// Ownership  entries are only read.
/// Modes      sp_total_cnt above 0: an expansion is under way. minorprime, minor_total, sp_lowcnt,
///            purged_hits, minor_memory are its figures; they stay until the next one.
/// Raises     309 an expansion is under way; 310 more than 32766 rows. poll_interrupt: minors that are under
///            way then are lost if the computation is given up, and the caller clears sp_total_cnt.
#include "matrix/entries.h"
namespace tolvex {
inline constexpr int32_t k_most_minor_rows = 32766;
/// *det := the determinant; what *det held is given back. Words are used where all entries are residues.
void sparse_minors_det(const MatrixEntries& m, quolyptr det);
}  // namespace tolvex
