#pragma once
/// matrix/smith_modular.h: the diagonal of the Smith form, modulo a multiple of its product.
///
/// Purpose    no entry grows beyond the modulus.
///            Cost: n^3 / 3 products of residues where units are found among the entries, which is the rule.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "matrix/int_grid.h"
namespace tolvex {
/// diagonal[0..rank) := d1 | d2 | ... of a matrix of that rank; the positive m is a proper multiple of a
/// number that d1 ... divide. In scratch memory of the caller.
void smith_diagonal(const IntGrid& a, int32_t rank, const IntEntry& m, IntEntry* diagonal);
}  // namespace tolvex
