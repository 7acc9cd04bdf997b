#pragma once
/// matrix/smith.h: Smith normal forms of matrices of integers.
///
///   alpha A beta = diag(d1, ..., dr, 0, ...), d1 | d2 | ... | dr, all positive
///
/// Purpose    the diagonal alone is computed modulo twice a multiple of d1 ... dr. With transformations
///            Hermite forms by columns and by rows are taken in turn until the matrix is diagonal; each is
///            found modulo the determinant and its transformation solves a system of equations, so that no
///            entries grow.
///            Source: R. Kannan, A. Bachem, "Polynomial algorithms for computing the Smith and Hermite normal
///            forms of an integer matrix", SIAM J. Comput. 8 (1979).
/// Raises     254 other entries than integers; poll_interrupt: only scratch memory is under way then.
#include "matrix/int_grid.h"
namespace tolvex {
/// The reduction of a record.
void intnormal(Reduction* r, const ReductionOptions* options);
/// The same by the modular method alone; options->number: a multiple of d1 ... dr, nil: it is found. Error
/// 227 if it is no integer.
void modular_smith(Reduction* r, const ReductionOptions* options);
}  // namespace tolvex
