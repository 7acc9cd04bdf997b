#pragma once
/// matrix/int_solve.h: systems of linear equations over the integers.
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
/// det times the solution of m X = right, *det := the determinant of m, which is not 0 (Cramer's rule).
IntGrid cramer_numerators(const IntGrid& m, const IntGrid& right, IntEntry* det);
/// The X with m X = right, whose entries are integers, for a lower triangular m; by substitution.
IntGrid solve_lower(const IntGrid& m, const IntGrid& right);
}  // namespace tolvex
