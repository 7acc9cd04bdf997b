#pragma once
/// matrix/sparse_determinant.h: the determinant of a sparse matrix, by the method that fits its entries.
///
///   few rows (3, or what `detcutoff` says)      minors expansion                  matrix/sparse_minors.h
///   residues                                    elimination on words              matrix/sparse_words.h
///   integers, rational numbers                  the same modulo many primes
///   polynomials, `gauss_cutoff` 1               elimination without fractions     matrix/sparse_elim.h
///   polynomials, `rat_det_method_cut` 1         interpolation                     matrix/interpolation.h
///   else                                        elimination, its end on dense rows
///
/// Purpose    one entry for `Det` of sparse matrices. A composite modulus allows no division: polynomials go
///            by minors, or, of more than 8 rows, are lifted to the integers.
/// Modes      detcutoff, gauss_cutoff, rat_det_method_cut, pseudet_heur.
/// Raises     309, 310 minors; 375: more than 50000 rows to be eliminated; poll_interrupt. request.fault as
///            in matrix/interpolation.h.
#include "matrix/interpolation.h"
#include "matrix/sparse.h"
namespace tolvex {
/// *det := the determinant of the m by m matrix, m >= 1, divided by request.fct. Its entries may be used up:
/// the chain is a private one, and stays one. What *det held is given back.
void sparse_determinant(sparseptr spar, int32_t m, const DeterminantRequest& request, quolyptr det);
}  // namespace tolvex
