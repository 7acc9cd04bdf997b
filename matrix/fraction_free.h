#pragma once
/// matrix/fraction_free.h: fraction-free decomposition, L D^-1 U with entries that are minors.
///
/// Purpose    reductions of the record of matrix/reduction.h: m becomes U; extra[0] the pivots, a column;
///            extra[1] L, whose entry (i, k) is that of m just before step k. With the permutations P, Q of
///            rows and columns P A Q = L D^-1 U, D = diag(p1, p1 p2, p2 p3, ...), U its first rank rows.
///            Cost: rank m n products and exact divisions.
///            Source: W. Zhou, D. J. Jeffrey, "Fraction-free matrix factors: new forms for LU and QR
///            factors", Frontiers of Computer Science in China 2 (2008); E. H. Bareiss, Math. Comp. 22
///            (1968).
/// Raises     186: an entry has a denominator; 85: entries are left, none of which is a unit.
#include "matrix/reduction.h"
namespace tolvex {
/// Pivots are taken from the first open column; at an empty one it stops.
void fract_free_lu(Reduction* r, const ReductionOptions* options);
/// Pivots are taken from the whole open block.
void fract_free_lu_columns(Reduction* r, const ReductionOptions* options);
/// True if exact_echelon() can serve: a dense matrix, exact quotients, and alphinv is not asked for.
bool fits_exact_echelon(const Reduction& r);
/// The reduced row echelon form without fractions in between: all rows are cleared at each step, so that the
/// pivots stay equal, and are divided once at the end. Returns the rank.
int32_t exact_echelon(Reduction* r);
}  // namespace tolvex
