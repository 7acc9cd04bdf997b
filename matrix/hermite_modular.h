#pragma once
/// matrix/hermite_modular.h: the lower triangular form of a lattice, modulo a multiple of its determinant.
///
/// Purpose    no entry grows beyond the modulus.
///            Cost: n^2 c / 2 products of residues of a matrix of n rows and c columns, and one inverse a
///            row.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "matrix/int_grid.h"
namespace tolvex {
/// The Hermite form, square, of the lattice that the columns of a generate; they have the full rank a.rows,
/// and the determinant of the lattice divides the positive d.
IntGrid modular_hermite(const IntGrid& a, const IntEntry& d);
}  // namespace tolvex
