#pragma once
/// matrix/int_solve.h: systems of linear equations over the integers whose solutions are integers.
///
/// Purpose    the transformations of normal forms, whose entries are known to be integers.
///            Cost: 2 n^2 (n + columns) products of words modulo each prime of a bound on the solution
///            (Cramer's rule).
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "matrix/int_grid.h"
namespace tolvex {
/// The X with m X = right, whose entries are integers; m is square and its determinant det, not 0. In scratch
/// memory of the caller.
IntGrid solve_integers(const IntGrid& m, const IntGrid& right, const IntEntry& det);
/// The same for a lower triangular m, by substitution.
IntGrid solve_lower(const IntGrid& m, const IntGrid& right);
}  // namespace tolvex
