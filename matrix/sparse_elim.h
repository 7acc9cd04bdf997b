#pragma once
/// matrix/sparse_elim.h: determinants of sparse matrices of values by elimination.
///
/// Purpose    for matrices that stay sparse while they are eliminated.
///            Cost: what fill-in makes of it; the pivots are those of matrix/sparse_pivot.h.
/// Ownership  the entries are used up: the chain is empty afterwards, its blocks stay. It is whole at every
///            safe point.
/// Raises     poll_interrupt.
#include "matrix/sparse.h"
namespace tolvex {
/// *det := the determinant of the m by m matrix, m >= 1, over the field of fractions. As soon as a third of
/// what is left has entries, the dense methods take over. What *det held is given back.
void sparse_gauss_elim(sparseptr spar, int32_t m, quolyptr det);
/// The same without fractions (Bareiss); entries are numbers and polynomials, and a modulus is a prime.
void sparse_gauss_Bareiss(sparseptr spar, int32_t m, quolyptr det);
}  // namespace tolvex
